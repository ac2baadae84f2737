#include "media/choice/picture_names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <set>

#include "platform/files/files.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t tailDigits = 4;
constexpr std::size_t tailLength = tailDigits + 1;  // with its "_"
constexpr int hexadecimal = 16;
constexpr std::size_t longestName = 255;  // bytes, of most file systems
constexpr std::size_t cutName = 240;      // leaves room for what a build appends
constexpr std::string_view tailPattern =
    "?*[_][abcdef0123456789][abcdef0123456789][abcdef0123456789][abcdef0123456789]";
constexpr std::array<std::string_view, 5> extensions{"*.gif", "*.jpg", "*.jpeg", "*.png", "*.webp"};

bool isPlain(char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_'; }

/// Lower case, "_" for each character that isn't plain.
std::string plainStem(std::string_view text) {
  const std::string folded = foldCase(text);
  std::string plain;
  for (std::string_view rest = folded; !rest.empty();) {
    const std::string_view character = firstCharacters(rest, 1);
    plain += character.size() == 1 && isPlain(character[0]) ? character[0] : '_';
    rest.remove_prefix(character.size());
  }
  return plain;
}

/// Lower case. A line end, a quote or a byte that is no text would go into the catalogue and into pages.
std::string plainExtension(std::string_view text) {
  std::string folded = foldCase(text);
  std::string plain;
  for (std::string_view rest = folded; !rest.empty();) {
    const std::string_view character = firstCharacters(rest, 1);
    const auto byte = static_cast<unsigned char>(character[0]);
    const bool isHarmful = character.size() == 1 && (byte < ' ' || byte == '"' || byte > '~');
    plain += isHarmful ? std::string_view("_") : character;
    rest.remove_prefix(character.size());
  }
  return plain;
}

struct NameParts {
  std::string stem, extension;
};

NameParts partsOf(std::string_view name, bool forceJpg) {
  const std::size_t dot = name.rfind('.');
  NameParts parts{plainStem(name.substr(0, dot)), forceJpg ? ".jpg" : ""};
  if (!forceJpg && dot != std::string_view::npos) parts.extension = plainExtension(name.substr(dot));
  if (matchesLike(parts.stem, tailPattern)) parts.stem.resize(parts.stem.size() - tailLength);
  const std::size_t added = tailLength + parts.extension.size();
  if (parts.stem.size() + added > longestName && added < cutName) parts.stem.resize(cutName - added);
  return parts;
}

std::string tailOf(unsigned number) {
  std::array<char, 9> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, hexadecimal).ptr;
  std::string tail(digits.data(), end);
  if (tail.size() < tailDigits) tail.insert(0, tailDigits - tail.size(), '0');
  return tail;
}

/// The number of a tail; 0 when the four characters are no hexadecimal digits.
unsigned tailNumber(std::string_view digits) {
  unsigned number = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), number, hexadecimal);
  return read.ptr == digits.data() + digits.size() ? number : 0;
}

}  // namespace

std::string uniquePictureName(const std::string& folder, std::string_view source, bool forceJpg) {
  const NameParts parts = partsOf(baseName(source), forceJpg);
  const std::string start = parts.stem + "_";
  std::set<std::string> taken;
  unsigned highest = 0;
  for (const std::string& name : listFiles(folder, "*")) {
    std::string folded = foldCase(name);
    if (!folded.starts_with(start) || !folded.ends_with(parts.extension)) continue;
    if (folded.size() == start.size() + tailDigits + parts.extension.size()) {
      highest = std::max(highest, tailNumber(std::string_view(folded).substr(start.size(), tailDigits)));
    }
    taken.insert(std::move(folded));
  }
  for (unsigned number = highest + 1;; ++number) {
    std::string name = start + tailOf(number) + parts.extension;
    // The list may have failed.
    if (!taken.contains(name) && !fileExists(joinPath(folder, name))) return name;
  }
}

bool canBeNamed(std::string_view name) {
  const auto isHarmful = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '"'; };
  return std::ranges::none_of(name, isHarmful) && fromWindows1252(toWindows1252(name)) == name;
}

std::vector<std::string> pictureFiles(const std::string& folder) {
  std::vector<std::string> names = listFiles(folder, "*");
  std::erase_if(names, [](const std::string& name) {
    return std::ranges::none_of(extensions, [&](std::string_view one) { return matchesWildcard(name, one); });
  });
  return names;
}

}  // namespace kv
