#include "tags/syntax/tag_index.h"

#include <algorithm>

#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr std::string_view indexClosing = ">>";
constexpr std::size_t numberDigits = 3;

bool isDigit(char character) { return character >= '0' && character <= '9'; }

}  // namespace

void TagIndex::add(std::string_view tag) {
  text_ += formatNumber(static_cast<std::int64_t>(starts_.size() + 1), "000");
  const std::size_t start = text_.size();
  starts_.push_back(start);
  text_ += tag;
  // A name may itself hold the start of a tag, and then the search could stop inside it.
  for (std::size_t position = start; position != std::string::npos; position = text_.find(prefix_, position + 1)) {
    const std::size_t name = position + prefix_.size();
    const std::size_t end = text_.find(indexClosing, name);
    if (end == std::string::npos) break;
    positions_.try_emplace(text_.substr(name, end - name), position);
    longest_ = std::max(longest_, end - name);
  }
}

void TagIndex::clear() {
  text_.clear();
  starts_.clear();
  positions_.clear();
  longest_ = 0;
}

std::size_t TagIndex::sectionAt(std::size_t position) const {
  const auto start = std::lower_bound(starts_.begin(), starts_.end(), position);
  if (start != starts_.end() && *start == position) return static_cast<std::size_t>(start - starts_.begin());
  if (position < numberDigits) return none;
  std::size_t number = 0;
  for (std::size_t i = position - numberDigits; i < position; ++i) {
    if (!isDigit(text_[i])) return none;
    number = number * 10 + static_cast<std::size_t>(text_[i] - '0');
  }
  return number >= 1 && number <= starts_.size() ? number - 1 : none;
}

std::size_t TagIndex::findName(std::string_view name) const {
  if (name.size() > longest_) return none;
  const auto position = positions_.find(name);
  return position == positions_.end() ? none : sectionAt(position->second);
}

std::size_t TagIndex::find(std::string_view bareOrWhole, bool isWhole) const {
  if (isWhole) return findTag(bareOrWhole);
  // A name with a ">>" of its own can match across two tags, which the hash table doesn't know.
  const bool isPlain = bareOrWhole.find(indexClosing) == std::string_view::npos && !bareOrWhole.ends_with('>');
  return isPlain ? findName(bareOrWhole) : findTag(whole(bareOrWhole));
}

std::size_t TagIndex::findTag(std::string_view tag) const {
  const std::size_t position = text_.find(tag);
  return position == std::string::npos ? none : sectionAt(position);
}

std::string TagIndex::whole(std::string_view name) const {
  std::string tag;
  tag.reserve(prefix_.size() + name.size() + indexClosing.size());
  return tag.append(prefix_).append(name).append(indexClosing);
}

bool TagIndex::isWhole(std::string_view text) const {
  return text.size() >= prefix_.size() + indexClosing.size() && text.starts_with(prefix_) &&
         text.ends_with(indexClosing);
}

std::vector<TagSection> readSections(std::string_view text, TagIndex& index, bool (*skips)(std::string_view line)) {
  std::vector<TagSection> sections;
  bool hasLine = false;
  for (const std::string_view line : splitLines(text)) {
    if (const std::string_view tag = trim(line); index.isWhole(tag)) {
      index.add(tag);
      sections.push_back({std::string(tag), {}});
      hasLine = false;
    } else if (!sections.empty() && !skips(line)) {
      std::string& joined = sections.back().text;
      if (hasLine) joined += "\r\n";
      joined += line;
      hasLine = true;
    }
  }
  return sections;
}

}  // namespace kv
