#include "shell/workbench/article_rows.h"

#include <algorithm>
#include <tuple>

#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "store/schema/schema.h"

namespace kv {

void ArticleRows::refresh(int listino) {
  listino_ = listino;
  keys_.clear();
  rows_.clear();
  if (!sets_.isBound() || !sets_.onDepartment()) return;
  // The order of the article cursor, which leaves equal order numbers in the order of the rows.
  auto rows = sets_.session().catalogue.prepare("SELECT ID FROM articoli WHERE catID = ? ORDER BY ordinamento, ID");
  if (!rows) return;
  const std::string department = sets_.department();
  rows->bind(1, department);
  for (;;) {
    const auto row = rows->step();
    if (!row || !*row) break;
    keys_.push_back(rows->integer(0));
  }
  if (!arrangement_.isPlain()) applyArrangement();
}

void ArticleRows::applyArrangement() {
  using enum ArticleArrangement::By;
  const std::string wanted = foldCase(arrangement_.filter);
  std::erase_if(keys_, [&](std::int64_t ID) {
    const ArticleRow& row = rowOf(ID);
    if (arrangement_.untranslated && !trim(row.titolo).empty()) return true;
    return foldCase(row.codice).find(wanted) == std::string::npos &&
           foldCase(row.titolo).find(wanted) == std::string::npos;
  });
  if (arrangement_.by == ShopOrder) return;
  struct SortKey {
    std::string text;
    double number = 0;
    std::int64_t ID = 0;
  };
  std::vector<SortKey> sorted;
  for (const std::int64_t ID : keys_) {
    const ArticleRow& row = rowOf(ID);
    const bool byPrice = arrangement_.by == Price;
    sorted.push_back({byPrice ? std::string() : foldCase(arrangement_.by == Code ? row.codice : row.titolo),
                      byPrice ? toNumber(row.prezzo).value_or(-1) : 0, ID});
  }
  const auto isBefore = [](const SortKey& one, const SortKey& other) {
    return std::tie(one.text, one.number) < std::tie(other.text, other.number);
  };
  std::ranges::stable_sort(sorted, [&](const SortKey& one, const SortKey& other) {
    return arrangement_.descending ? isBefore(other, one) : isBefore(one, other);
  });
  std::ranges::transform(sorted, keys_.begin(), &SortKey::ID);
}

const ArticleRow& ArticleRows::at(std::size_t index) {
  static const ArticleRow none;
  return index < keys_.size() ? rowOf(keys_[index]) : none;
}

const ArticleRow& ArticleRows::rowOf(std::int64_t ID) {
  static const ArticleRow none;
  if (const auto known = rows_.find(ID); known != rows_.end()) return known->second;
  const Session& session = sets_.session();
  const std::string title =
      "titolo" + std::string(languageSuffixes[static_cast<std::size_t>(session.currentLanguage - 1)]);
  const std::string price = "prezzo" + std::string(listinoSuffixes[static_cast<std::size_t>(listino_)]);
  auto row =
      sets_.session().catalogue.prepare("SELECT codice, " + title + ", " + price + " FROM articoli WHERE ID = ?");
  if (!row) return none;
  row->bind(1, ID);
  const auto found = row->step();
  if (!found || !*found) return none;
  return rows_[ID] = {ID, std::string(row->text(0)), std::string(row->text(1)), asText(row->value(2))};
}

std::optional<std::size_t> ArticleRows::indexOf(std::int64_t ID) const {
  const auto found = std::ranges::find(keys_, ID);
  if (found == keys_.end()) return std::nullopt;
  return static_cast<std::size_t>(found - keys_.begin());
}

}  // namespace kv
