#include "platform/text/typed_notes.h"

#include <algorithm>
#include <vector>

#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t mostNamed = 5;
using Test = std::function<bool(std::string_view character)>;

/// The characters of which something holds, each once, in the order of the text.
std::vector<std::string_view> charactersThat(std::string_view utf8, const Test& holds) {
  std::vector<std::string_view> found;
  while (!utf8.empty()) {
    const std::string_view character = firstCharacters(utf8, 1);
    utf8.remove_prefix(character.size());
    if (holds(character) && std::ranges::find(found, character) == found.end()) found.push_back(character);
  }
  return found;
}

bool isReference(std::string_view character) { return character.size() > 1 && toWindows1252(character).size() > 1; }

/// The characters in quotes, parted by commas.
std::string quoted(const std::vector<std::string_view>& characters) {
  std::string names;
  for (std::size_t i = 0; i < std::min(characters.size(), mostNamed); ++i) {
    names += (i == 0 ? "\"" : ", \"") + std::string(characters[i]) + "\"";
  }
  return characters.size() > mostNamed ? names + " ..." : names;
}

}  // namespace

std::string referenceNote(std::string_view utf8) {
  const std::vector<std::string_view> found = charactersThat(utf8, isReference);
  if (found.empty()) return {};
  const std::string reference = "\"" + toWindows1252(found.front()) + "\"";
  if (found.size() == 1) {
    return "Il carattere " + quoted(found) + " non è fra quelli dei file del negozio: vi sarà scritto come " +
           reference + ".";
  }
  return "I caratteri " + quoted(found) + " non sono fra quelli dei file del negozio: vi saranno scritti come " +
         reference + " e simili.";
}

std::string droppedNote(std::string_view utf8, const Test& takes) {
  const std::vector<std::string_view> found =
      charactersThat(utf8, [&](std::string_view character) { return !takes(character); });
  if (found.empty()) return {};
  if (found.size() == 1) return "Il carattere " + quoted(found) + " non è ammesso in questo campo: è stato tolto.";
  return "I caratteri " + quoted(found) + " non sono ammessi in questo campo: sono stati tolti.";
}

}  // namespace kv
