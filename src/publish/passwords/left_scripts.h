#pragma once
// kvotp.dat of a shop folder: the scripts with passwords that may still be on a server. A run that failed or was
// killed leaves its script there; the next one removes it. Lines "host/folder/name" with CR LF, in bytes of UTF-8,
// readable by the owner alone; without scripts there is no file.

#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/result.h"

namespace kv {

inline constexpr std::string_view leftScriptsFile = "kvotp.dat";

/// One script.
struct LeftScript {
  std::string serverFolder;  ///< "host/folder"
  std::string name;          ///< one of passwordScriptName
};

/// The lines of a text that name a script; others are skipped.
std::vector<LeftScript> parseLeftScripts(std::string_view text);
/// The scripts of a shop, oldest first; none where the file is missing or can't be read.
std::vector<LeftScript> leftScripts(const std::string& shopFolder);
/// Adds a script. Failures as writePrivateBytes, and the file stays as it was.
Result<> rememberScript(const std::string& shopFolder, const LeftScript& script);
/// Takes a script off the list; one that isn't there is no failure. Failures as rememberScript.
Result<> forgetScript(const std::string& shopFolder, std::string_view name);

}  // namespace kv
