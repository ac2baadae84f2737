#include "media/choice/numbered_pictures.h"

#include <algorithm>
#include <array>

#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::array<std::string_view, 14> sizeMarks{"p",     "g",   "s",     "m",     "l",       "xl",      "mini",
                                                     "small", "big", "large", "thumb", "piccola", "piccolo", "grande"};

bool isSizeMark(std::string_view word) {
  const auto same = [&](std::string_view mark) { return equalsIgnoringCase(word, mark); };
  return std::ranges::any_of(sizeMarks, same);
}

}  // namespace

std::string_view pictureSubject(std::string_view name) {
  const std::string_view stem = name.substr(0, name.rfind('.'));
  const std::size_t dash = stem.find_last_of("-_");
  const bool isMarked = dash != std::string_view::npos && isSizeMark(stem.substr(dash + 1));
  return isMarked ? stem.substr(0, dash) : stem;
}

std::vector<std::string> numberedPictures(std::string_view name,
                                          const std::function<bool(const std::string& file)>& isThere) {
  std::vector<std::string> found;
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos || name.find_first_of("/\\:*?[") != std::string_view::npos) return found;
  const std::string start = std::string(pictureSubject(name)) + "-";
  for (int number = 2; number <= mostPictures; ++number) {
    std::string file = start + std::to_string(number) + std::string(name.substr(dot));
    if (!isThere(file)) break;
    found.push_back(std::move(file));
  }
  return found;
}

}  // namespace kv
