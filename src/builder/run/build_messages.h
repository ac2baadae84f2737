#pragma once
// What a build that failed tells the merchant. Each text is complete, in Italian, its lines parted by "\n".

#include <string>
#include <vector>

#include "platform/ports/result.h"

namespace kv {

/// The lines that close every message of a site left incomplete: what not to do with the folder, and what to do next.
std::string closingLines(const std::string& onlineFolder);

/// The message of a failure that nobody has told of yet: what happened with its number, and the closing lines. Running
/// out of text space has a text of its own, which names the setting to change.
std::string buildFailureText(const Error& error, const std::string& onlineFolder);

/// The message of a shop without a first language, for which no page can be made.
std::string noLanguageText();

/// The message of language modules that the program doesn't have, by their codes.
std::string missingModulesText(const std::vector<std::string>& codes);

}  // namespace kv
