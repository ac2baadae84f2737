#include "shell/dialogs/picture_import.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include "platform/files/files.h"
#include "platform/image/image.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t tailLength = 5;  // "_" and four hexadecimal digits
constexpr int hexadecimal = 16;

bool isHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); }

bool hasTail(std::string_view stem) {
  if (stem.size() <= tailLength || stem[stem.size() - tailLength] != '_') return false;
  return std::ranges::all_of(stem.substr(stem.size() - tailLength + 1), isHexDigit);
}

struct NameParts {
  std::string stem, extension;
};

NameParts partsOf(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  NameParts parts{foldCase(name.substr(0, dot)), dot == std::string_view::npos ? "" : foldCase(name.substr(dot))};
  std::string plain;
  for (std::string_view rest = parts.stem; !rest.empty();) {
    const std::string_view letter = firstCharacters(rest, 1);
    const char c = letter.size() == 1 ? letter[0] : ' ';
    const bool kept = (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
    plain += kept ? c : '_';
    rest.remove_prefix(letter.size());
  }
  if (hasTail(plain)) plain.resize(plain.size() - tailLength);
  parts.stem = std::move(plain);
  return parts;
}

}  // namespace

std::string uniquePictureName(const std::string& folder, const std::string& source) {
  const NameParts parts = partsOf(baseName(source));
  unsigned highest = 0;
  for (const std::string& name : listFiles(folder, parts.stem + "_????" + parts.extension)) {
    const std::string stem = foldCase(name.substr(0, name.size() - parts.extension.size()));
    if (!hasTail(stem)) continue;
    unsigned number = 0;
    std::from_chars(stem.data() + stem.size() - tailLength + 1, stem.data() + stem.size(), number, hexadecimal);
    highest = std::max(highest, number);
  }
  std::array<char, 9> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), highest + 1, hexadecimal).ptr;
  std::string tail(digits.data(), end);
  if (tail.size() < tailLength - 1) tail.insert(0, tailLength - 1 - tail.size(), '0');
  return parts.stem + "_" + tail + parts.extension;
}

Result<std::string> importPicture(const std::string& folder, const std::string& source) {
  if (auto size = imageSize(source); !size) return fail(size.error());
  if (folderOf(source) == folder) return std::string(baseName(source));
  std::string name = uniquePictureName(folder, source);
  if (auto made = createFolder(folder); !made) return fail(made.error());
  if (auto copied = copyFile(source, joinPath(folder, name)); !copied) return fail(copied.error());
  return name;
}

}  // namespace kv
