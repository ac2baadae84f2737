#include "import/tables/picture_source.h"

#include <charconv>

#include "platform/files/files.h"
#include "platform/image/picture_file.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::string_view fileScheme = "file://";

/// "%20" and the like as the bytes they mean.
std::string withoutPercents(std::string_view address) {
  constexpr int hexadecimal = 16;
  std::string plain;
  for (std::size_t at = 0; at < address.size(); ++at) {
    unsigned byte = 0;
    const bool isEscape =
        address[at] == '%' && at + 2 < address.size() &&
        std::from_chars(&address[at + 1], &address[at] + 3, byte, hexadecimal).ptr == &address[at] + 3;
    plain += isEscape ? static_cast<char>(static_cast<unsigned char>(byte)) : address[at];
    if (isEscape) at += 2;
  }
  return plain;
}

}  // namespace

std::optional<PictureSource> findPicture(std::string_view cell, const std::string& shopFolder,
                                         const std::string& sheetFolder) {
  std::string text(trim(cell));
  if (startsWithIgnoringCase(text, fileScheme))
    text = withoutPercents(std::string_view(text).substr(fileScheme.size()));
  text = replaceAll(text, "\\", "/");
  if (!isPictureName(text)) return std::nullopt;
  if (text.find('/') == std::string::npos) {
    if (auto inShop = findEntry(entryPath(shopFolder, "work"), text)) {
      return PictureSource{std::string(baseName(*inShop)), *inShop};
    }
  }
  const std::string path = text.starts_with('/') ? text : joinPath(sheetFolder, text);
  return fileExists(path) ? std::optional(PictureSource{"", path}) : std::nullopt;
}

}  // namespace kv
