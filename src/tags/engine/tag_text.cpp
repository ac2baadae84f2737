// Small replacements in a whole text that belong to tags: brackets repaired, quotes and codes of variant values.
#include <algorithm>

#include "platform/text/text.h"
#include "tags/engine/tag_engine.h"

namespace kv {

namespace {

struct Rewriting {
  std::string_view what;
  std::string_view env;
};

constexpr Rewriting entityOpenings[] = {{"&lt;&lt;", "<<"}, {"<&lt;", "<<"}, {"&lt;<", "<<"}};
constexpr Rewriting entityClosings[] = {{"&gt;&gt;", ">>"}, {">&gt;", ">>"}, {"&gt;>", ">>"}};
constexpr Rewriting codes[] = {{"%3c", "%3C"}, {"%3e", "%3E"},   {"%3C%3C", "<<"}, {"<%3C", "<<"},
                               {"%3C<", "<<"}, {"%3E%3E", ">>"}, {">%3E", ">>"},   {"%3E>", ">>"}};

template <std::size_t N>
void rewrite(std::string& text, const Rewriting (&rewritings)[N]) {
  for (const auto& [what, env] : rewritings) {
    if (text.find(what) != std::string::npos) text = replaceAll(text, what, env);
  }
}

/// Whether `what` occurs in `text`; its first character is rare, so searching for that character alone is fastest.
bool holds(std::string_view text, std::string_view what) {
  for (std::size_t at = text.find(what.front()); at != std::string_view::npos; at = text.find(what.front(), at + 1)) {
    if (text.compare(at, what.size(), what) == 0) return true;
  }
  return false;
}

}  // namespace

bool needsNormalizzaTag(std::string_view testo) {
  return holds(testo, "&lt;") || holds(testo, "&gt;") || holds(testo, "%3");
}

std::string NormalizzaTag(std::string_view testo) {
  std::string text(testo);
  // No step creates a character that an earlier or a later guard looks for.
  if (holds(testo, "&lt;")) rewrite(text, entityOpenings);
  if (holds(testo, "&gt;")) rewrite(text, entityClosings);
  if (holds(testo, "%3")) rewrite(text, codes);
  return text;
}

std::string MettiVirgolette(std::string_view testo) {
  std::string text(testo);
  std::replace(text.begin(), text.end(), '|', '"');
  return text;
}

std::string NoVirgolette(std::string_view testo) {
  std::string text(testo);
  std::replace(text.begin(), text.end(), '"', '\'');
  return text;
}

std::string InterpretaCodice(std::string_view testo) {
  constexpr std::string_view coded = "%[]|?#=<>";
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text;
  text.reserve(testo.size());
  for (const char c : testo) {
    if (coded.find(c) == std::string_view::npos) {
      text += c;
    } else {
      const auto code = static_cast<unsigned char>(c);
      text += '%';
      text += digits[code >> 4U];
      text += digits[code & 15U];
    }
  }
  return text;
}

std::string StripCodice(std::string_view testo) {
  constexpr std::string_view removed = "?#=<>\"";
  std::string text;
  text.reserve(testo.size());
  for (const char c : testo) {
    if (removed.find(c) == std::string_view::npos) text += c == '|' ? ' ' : c;
  }
  return text;
}

}  // namespace kv
