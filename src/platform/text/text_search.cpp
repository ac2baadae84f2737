#include "platform/text/text_search.h"

#include <re2/re2.h>
#include <utf8proc.h>

#include <array>
#include <utility>

#include "platform/text/utf8.h"

namespace kv {
namespace {

constexpr std::size_t mostGroups = 10;  // "$0" to "$9"
constexpr std::int64_t engineMemory = std::int64_t{8} << 20;

using Groups = std::array<re2::StringPiece, mostGroups>;

bool isWordCharacter(char32_t character) {
  if (character == U'_') return true;
  const auto kind = utf8proc_category(static_cast<utf8proc_int32_t>(character));
  return (kind >= UTF8PROC_CATEGORY_LU && kind <= UTF8PROC_CATEGORY_LO) || kind == UTF8PROC_CATEGORY_ND;
}

/// Whether a character of a word is before `at`.
bool isWordBefore(std::string_view text, std::size_t at) {
  if (at == 0) return false;
  std::size_t start = at - 1;
  while (start > 0 && (static_cast<unsigned char>(text[start]) & 0xC0U) == 0x80) --start;
  return isWordCharacter(utf8::unitAt(text, start).character);
}

bool isWordAfter(std::string_view text, std::size_t at) {
  return at < text.size() && isWordCharacter(utf8::unitAt(text, at).character);
}

/// What a replacement says, with its groups filled in.
void appendReplacement(std::string& out, std::string_view replacement, const Groups& groups) {
  for (std::size_t i = 0; i < replacement.size(); ++i) {
    const char c = replacement[i];
    const char next = i + 1 < replacement.size() ? replacement[i + 1] : '\0';
    const bool isSign = c == '$' || c == '\\';
    if (isSign && next >= '0' && next <= '9') {
      const re2::StringPiece& group = groups[static_cast<std::size_t>(next - '0')];
      out.append(group.data() == nullptr ? "" : group.data(), group.size());
      ++i;
      continue;
    }
    out += c;
    if (isSign && next == c) ++i;
  }
}

}  // namespace

struct TextSearch::Engine {
  Engine(const std::string& expression, const RE2::Options& options, const SearchWords& searched)
      : pattern(expression, options), words(searched), groups(pattern.NumberOfCapturingGroups() + 1) {}

  /// The first hit at or after `from`, with its groups; false when there is none.
  bool findFrom(std::string_view text, std::size_t from, TextHit& hit, Groups& found) const {
    const re2::StringPiece piece(text.data(), text.size());
    const int wanted = static_cast<int>(std::min<std::size_t>(mostGroups, static_cast<std::size_t>(groups)));
    while (from <= text.size() && pattern.Match(piece, from, text.size(), RE2::UNANCHORED, found.data(), wanted)) {
      hit = {static_cast<std::size_t>(found[0].data() - text.data()), found[0].size()};
      const bool isWhole =
          !words.wholeWords || (!isWordBefore(text, hit.at) && !isWordAfter(text, hit.at + hit.length));
      if (hit.length > 0 && isWhole) return true;
      if (hit.at >= text.size()) return false;
      from = hit.at + utf8::unitAt(text, hit.at).length;
    }
    return false;
  }

  RE2 pattern;
  SearchWords words;
  int groups;
};

TextSearch::TextSearch(std::unique_ptr<Engine> engine) : engine_(std::move(engine)) {}
TextSearch::TextSearch(TextSearch&&) noexcept = default;
TextSearch& TextSearch::operator=(TextSearch&&) noexcept = default;
TextSearch::~TextSearch() = default;

tl::expected<TextSearch, std::string> TextSearch::prepare(const SearchWords& words) {
  if (words.text.empty()) return tl::unexpected<std::string>("il testo da cercare è vuoto");
  RE2::Options options;
  options.set_log_errors(false);
  options.set_case_sensitive(words.matchesCase);
  options.set_literal(!words.isExpression);
  options.set_max_mem(engineMemory);
  auto engine = std::make_unique<Engine>(words.text, options, words);
  if (!engine->pattern.ok()) return tl::unexpected<std::string>(engine->pattern.error());
  return TextSearch(std::move(engine));
}

std::vector<TextHit> TextSearch::find(std::string_view text) const {
  std::vector<TextHit> hits;
  TextHit hit;
  Groups groups;
  for (std::size_t at = 0; engine_->findFrom(text, at, hit, groups); at = hit.at + hit.length) hits.push_back(hit);
  return hits;
}

std::string TextSearch::replace(std::string_view text, std::string_view replacement) const {
  std::string out;
  TextHit hit;
  Groups groups;
  std::size_t at = 0;
  for (; engine_->findFrom(text, at, hit, groups); at = hit.at + hit.length) {
    out += text.substr(at, hit.at - at);
    if (engine_->words.isExpression) {
      appendReplacement(out, replacement, groups);
    } else {
      out += replacement;
    }
  }
  return out += text.substr(at);
}

}  // namespace kv
