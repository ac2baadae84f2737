#pragma once
// The names of all pictures that the catalogue refers to.

#include <functional>
#include <string>
#include <string_view>

#include "platform/database/database.h"

namespace kv {

/// Hands out the pictures of the first row of `generale`, of all departments in every language, and of all articles, as
/// stored; names may come twice, empty ones don't. Variants, showcase, clipboard and templates name no pictures that
/// count. Failures: as prepare, with what was read by then handed out.
Result<> usedPictures(Database& catalogue, const std::function<void(std::string_view name)>& read);

/// Hands out every text of the catalogue but those of the clipboard, as stored, row by row. Failures: as prepare.
Result<> readAllTexts(Database& catalogue, const std::function<void(std::string_view text)>& read);
/// Hands out the files of a template package, byte by byte. A failure when some couldn't be read; the others are handed
/// out all the same.
Result<> readTemplateTexts(const std::string& package, const std::function<void(std::string_view text)>& read);

}  // namespace kv
