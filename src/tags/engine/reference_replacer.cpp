// One pass for a whole list of names. Every reference found in the original text is a candidate; a candidate counts
// unless the replacement of an earlier one, in the order of list, form, delimiters and position, has put a tag inside
// it. The inserted text can't make a reference of its own, because "<" is in no name; a list with a "<" in a name is
// processed name by name.
#include <algorithm>
#include <array>
#include <bitset>
#include <set>
#include <tuple>
#include <unordered_map>

#include "tags/engine/reference_name.h"
#include "tags/engine/tag_engine.h"
#include "tags/syntax/tag_index.h"

namespace kv {

namespace {

constexpr std::string_view delimiterCharacters = "\"' =>";

constexpr std::array<bool, 256> delimiterTable() {
  std::array<bool, 256> table{};
  for (const char character : delimiterCharacters) table[static_cast<unsigned char>(character)] = true;
  return table;
}
constexpr std::array<bool, 256> delimiters = delimiterTable();
constexpr auto isDelimiter = [](char character) { return delimiters[static_cast<unsigned char>(character)]; };

/// The index of a pair in referenceDelimiters; its size when they are no pair.
std::size_t pairOf(char open, char close) {
  const auto same = [&](const Delimiters& pair) { return pair.open == open && pair.close == close; };
  const auto at = std::find_if(referenceDelimiters.begin(), referenceDelimiters.end(), same);
  return static_cast<std::size_t>(at - referenceDelimiters.begin());
}

struct Candidate {
  std::size_t form;
  std::size_t pair;
  std::size_t position;  ///< of the character before the name
};

}  // namespace

struct ReferenceReplacer::Index {
  std::vector<std::string> names;
  std::string pageExtension;
  bool oneWalk = true;
  std::vector<ReferenceForm> forms;  ///< in the order in which they are replaced
  bool hasDelimiters = false;        ///< in a form: candidates may then overlap
  /// Forms by their text up to the first delimiter.
  std::unordered_map<std::string, std::vector<std::size_t>, TextHash, std::equal_to<>> byStart;
  std::bitset<8192> starts;  ///< which lengths and last bytes of a start occur

  static std::size_t mark(std::string_view start) {
    return start.empty() ? 0 : (start.size() & 31U) * 256 + static_cast<unsigned char>(start.back());
  }
  void addForm(ReferenceForm form);
  void addCandidates(std::string_view folded, std::size_t open, std::size_t end, std::vector<Candidate>& found) const;
  std::vector<Candidate> candidates(std::string_view folded) const;
  void dropBroken(std::vector<Candidate>& found) const;
  std::string replaced(std::string text, std::vector<Candidate>& found) const;
};

void ReferenceReplacer::Index::addForm(ReferenceForm form) {
  const auto firstDelimiter = std::find_if(form.folded.begin(), form.folded.end(), isDelimiter);
  hasDelimiters = hasDelimiters || firstDelimiter != form.folded.end();
  const std::string start(form.folded.begin(), firstDelimiter);
  std::vector<std::size_t>& sameStart = byStart[start];
  // The first of equal forms has replaced what the others would look for.
  const auto same = [&](std::size_t other) { return forms[other].folded == form.folded; };
  if (std::any_of(sameStart.begin(), sameStart.end(), same)) return;
  sameStart.push_back(forms.size());
  starts.set(mark(start));
  forms.push_back(std::move(form));
}

/// Adds the candidates whose names begin after the delimiter at `open`; `end` is the next delimiter.
void ReferenceReplacer::Index::addCandidates(std::string_view folded, std::size_t open, std::size_t end,
                                             std::vector<Candidate>& found) const {
  const std::string_view start = folded.substr(open + 1, end - open - 1);
  if (!starts.test(mark(start))) return;
  const auto sameStart = byStart.find(start);
  if (sameStart == byStart.end()) return;
  for (const std::size_t number : sameStart->second) {
    const std::string& name = forms[number].folded;
    const std::size_t close = open + 1 + name.size();
    if (close >= folded.size() || folded.compare(open + 1, name.size(), name) != 0) continue;
    const std::size_t pair = pairOf(folded[open], folded[close]);
    if (pair < referenceDelimiters.size()) found.push_back({number, pair, open});
  }
}

std::vector<Candidate> ReferenceReplacer::Index::candidates(std::string_view folded) const {
  std::vector<Candidate> found;
  auto open = std::find_if(folded.begin(), folded.end(), isDelimiter);
  while (open != folded.end()) {
    const auto end = std::find_if(open + 1, folded.end(), isDelimiter);
    if (end == folded.end()) break;
    addCandidates(folded, static_cast<std::size_t>(open - folded.begin()),
                  static_cast<std::size_t>(end - folded.begin()), found);
    open = end;
  }
  return found;
}

/// Removes the candidates that don't count and sorts the rest by the order of replacement.
void ReferenceReplacer::Index::dropBroken(std::vector<Candidate>& found) const {
  std::sort(found.begin(), found.end(), [](const Candidate& a, const Candidate& b) {
    return std::tie(a.form, a.pair, a.position) < std::tie(b.form, b.pair, b.position);
  });
  std::set<std::size_t> tags;  // the offsets at which a tag was inserted
  const auto isBroken = [&](const Candidate& candidate) {
    const auto next = tags.upper_bound(candidate.position);
    if (next != tags.end() && *next <= candidate.position + 1 + forms[candidate.form].folded.size()) return true;
    tags.insert(candidate.position + 1 + forms[candidate.form].baseLength);
    return false;
  };
  found.erase(std::remove_if(found.begin(), found.end(), isBroken), found.end());
}

/// Makes the replacements: first the names, of which a later one may begin after the base of an earlier one, then the
/// tags.
std::string ReferenceReplacer::Index::replaced(std::string text, std::vector<Candidate>& found) const {
  for (const auto& [number, pair, position] : found) {
    const std::string& name = forms[number].name;
    std::copy(name.begin(), name.end(), text.begin() + static_cast<std::ptrdiff_t>(position) + 1);
  }
  const auto tagPosition = [this](const Candidate& c) { return c.position + 1 + forms[c.form].baseLength; };
  std::sort(found.begin(), found.end(),
            [&](const Candidate& a, const Candidate& b) { return tagPosition(a) < tagPosition(b); });
  std::string result;
  result.reserve(text.size() + found.size() * (languageTag.size() + pageExtension.size()));
  std::size_t done = 0;
  for (const Candidate& candidate : found) {
    const std::size_t at = tagPosition(candidate);
    result.append(text, done, at - done).append(languageTag);
    const bool renamesPage = forms[candidate.form].renamesPage;
    if (renamesPage) result += pageExtension;
    done = at + (renamesPage ? pageEnding : 0);
  }
  return result.append(text, done);
}

ReferenceReplacer::ReferenceReplacer(const std::vector<std::string>& names, std::string_view pageExtension)
    : index_(new Index) {
  index_->names = names;
  index_->pageExtension = pageExtension;
  const auto holdsBracket = [](const std::string& name) { return name.find('<') != std::string::npos; };
  index_->oneWalk = std::none_of(names.begin(), names.end(), holdsBracket) &&
                    pageExtension.find_first_of("\"' =><") == std::string_view::npos;
  if (!index_->oneWalk) return;
  for (const std::string& name : names) {
    for (ReferenceForm& form : referenceForms(name, pageExtension)) index_->addForm(std::move(form));
  }
}

ReferenceReplacer::~ReferenceReplacer() { delete index_; }

std::string ReferenceReplacer::apply(std::string_view testo) const {
  std::string text(testo);
  if (!index_->oneWalk) {
    for (const std::string& name : index_->names) text = ReplaceString(text, name, index_->pageExtension);
    return text;
  }
  std::vector<Candidate> found = index_->candidates(foldKeepingLength(testo));
  if (found.empty()) return text;
  if (index_->hasDelimiters) index_->dropBroken(found);
  return index_->replaced(std::move(text), found);
}

}  // namespace kv
