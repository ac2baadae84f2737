#include "commerce/gateways/template_filling.h"

#include <vector>

#include "platform/text/text.h"

namespace kv {
namespace {

std::string replacePlaceholders(std::string text, std::span<const Placeholder> values) {
  for (const auto& [key, value] : values) text = replaceAll(text, "#" + key, value);
  return text;
}

/// The end words of the text blocks of a template.
std::vector<std::string> endWords(std::string_view text) {
  constexpr std::string_view opening = "<<<'";
  std::vector<std::string> words;
  for (auto at = text.find(opening); at != std::string_view::npos; at = text.find(opening, at + 1)) {
    const auto from = at + opening.size();
    const auto end = text.find('\'', from);
    if (end != std::string_view::npos && end > from) words.emplace_back(text.substr(from, end - from));
  }
  return words;
}

std::size_t occurrences(std::string_view text, std::string_view word) {
  std::size_t count = 0;
  for (auto at = text.find(word); at != std::string_view::npos; at = text.find(word, at + 1)) ++count;
  return count;
}

}  // namespace

std::string ElaboraPG(std::string_view text, std::span<const Placeholder> values) {
  std::string source(text);
  for (const std::string& word : endWords(text)) {
    // Values can make up the word together, so it is the filled text that is looked at.
    std::string used = word;
    const std::size_t expected = occurrences(source, word);
    for (int n = 1; occurrences(replacePlaceholders(replaceAll(source, word, used), values), used) != expected; ++n) {
      used = word + "_" + std::to_string(n);
    }
    source = replaceAll(source, word, used);
  }
  return replacePlaceholders(std::move(source), values);
}

}  // namespace kv
