#include "builder/doctor/text_flaws.h"

#include <algorithm>

#include "platform/text/text.h"
#include "store/catalogue/shop_identity.h"
#include "tags/engine/tag_engine.h"

namespace kv {
namespace {

constexpr std::string_view counterTag = "/COUNTER/";
constexpr std::size_t shownOfEndless = 30;  // characters

bool isReplacedIn(char kind, TextHome home) {
  if (home == TextHome::ArticleText) return false;
  if (kind == '2') return home == TextHome::ModelPage;
  if (kind == '3') return home == TextHome::ResultsPage;
  return true;
}

bool isTagStart(std::string_view text, std::size_t at) {
  return text.size() - at > 3 && text[at + 2] >= '1' && text[at + 2] <= '5' && text[at + 3] == '-';
}

void addFlaw(std::vector<TagFlaw>& flaws, TagFlaw flaw) {
  const auto same = [&](const TagFlaw& other) { return other.tag == flaw.tag; };
  if (std::ranges::none_of(flaws, same)) flaws.push_back(std::move(flaw));
}

bool endsAddress(char c, char quote) {
  return quote != 0 ? c == quote : c == ' ' || c == '>' || c == '\t' || c == '\r' || c == '\n';
}

std::string_view withoutSpaces(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

/// The value of the attribute whose name ends at `at`; empty when there is none.
std::string_view attributeValue(std::string_view html, std::size_t at) {
  std::string_view rest = withoutSpaces(html.substr(at));
  if (!rest.starts_with('=')) return {};
  rest = withoutSpaces(rest.substr(1));
  const char quote = rest.starts_with('"') || rest.starts_with('\'') ? rest.front() : '\0';
  if (quote != 0) rest.remove_prefix(1);
  const auto end = std::ranges::find_if(rest, [&](char c) { return endsAddress(c, quote); });
  return rest.substr(0, static_cast<std::size_t>(end - rest.begin()));
}

}  // namespace

bool KnownTags::knows(char kind, std::string_view name, TextHome home, int language) const {
  if (!isReplacedIn(kind, home)) return false;
  // Those of articles are passed on to the shop's scripts, which know more names than the build.
  if (name == counterTag || kind == '2') return true;
  if (kind == '4') return words[static_cast<std::size_t>(language - 1)].find(name) != nullptr;
  if (kind == '5') return customOn && custom.find(name) != nullptr;
  return pageColumns.contains(foldCase(name));
}

KnownTags shippedTags() {
  KnownTags tags;
  for (const std::string_view column : pageTagColumns()) tags.pageColumns.insert(foldCase(column));
  for (const std::string_view column : identityColumns) tags.pageColumns.insert(foldCase(column));
  return tags;
}

std::vector<TagFlaw> findTagFlaws(std::string_view text, const KnownTags& known, TextHome home, int language) {
  std::vector<TagFlaw> flaws;
  std::string normalized;
  if (needsNormalizzaTag(text)) {
    normalized = NormalizzaTag(text);
    text = normalized;
  }
  for (auto at = text.find("<<"); at != std::string_view::npos; at = text.find("<<", at + 1)) {
    if (!isTagStart(text, at)) continue;
    const char kind = text[at + 2];
    const auto end = text.find(">>", at + 4);
    if (end == std::string_view::npos) {
      // Only a kind that is expanded at all makes the build fail.
      const std::string_view start = firstCharacters(text.substr(at), shownOfEndless);
      addFlaw(flaws, {isReplacedIn(kind, home), std::string(start)});
      break;
    }
    if (!known.knows(kind, text.substr(at + 4, end - at - 4), home, language)) {
      addFlaw(flaws, {false, std::string(text.substr(at, end + 2 - at))});
    }
    at = end;
  }
  return flaws;
}

std::string_view firstReference(std::string_view text) {
  char encoded[widestWindows1252];
  for (std::size_t at = 0; at < text.size();) {
    if (static_cast<unsigned char>(text[at]) < 0x80) {
      ++at;
      continue;
    }
    const EncodedCharacter one = encodeWindows1252(text, at, encoded);
    if (one.written > 1) return text.substr(at, one.read);
    at += std::max<std::size_t>(one.read, 1);
  }
  return {};
}

bool isDeadLink(std::string_view address, const NameSet& pages) {
  if (address.starts_with("./")) address.remove_prefix(2);
  if (address.find_first_of(":/<$") != std::string_view::npos) return false;
  const std::string name = foldCase(trim(address.substr(0, address.find_first_of("?#"))));
  const bool isPage = name.ends_with(".php") || name.ends_with(".htm") || name.ends_with(".html");
  return isPage && !pages.contains(name);
}

std::string firstDeadLink(std::string_view html, const NameSet& pages) {
  constexpr std::string_view attribute = "href";
  if (html.find('<') == std::string_view::npos) return {};
  for (auto at = findIgnoringCase(html, attribute); at != std::string_view::npos;
       at = findIgnoringCase(html, attribute, at + attribute.size())) {
    const std::string_view address = attributeValue(html, at + attribute.size());
    if (isDeadLink(address, pages)) return std::string(address);
  }
  return {};
}

}  // namespace kv
