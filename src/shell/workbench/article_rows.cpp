#include "shell/workbench/article_rows.h"

#include <algorithm>
#include <tuple>

#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "store/schema/schema.h"

namespace kv {
namespace {

/// What a row is sorted by: a text or a number, the other being equal in all rows.
struct SortKey {
  std::string text;
  double number = 0;
  std::int64_t ID = 0;
};

SortKey sortKeyOf(const ArticleRow& row, ArticleArrangement::By by) {
  using enum ArticleArrangement::By;
  // What has no number comes before all that have.
  const auto number = [&](const std::string& text) { return SortKey{{}, toNumber(text).value_or(-1), row.ID}; };
  switch (by) {
    case Code:
      return {foldCase(row.codice), 0, row.ID};
    case Title:
      return {foldCase(row.titolo), 0, row.ID};
    case Price:
      return number(row.prezzo);
    case Offer:
      return number(row.offerta);
    case Weight:
      return number(row.peso);
    case Showcase:
      return {{}, row.inelenco ? 0.0 : 1.0, row.ID};
    case ShopOrder:
      break;
  }
  return {{}, 0, row.ID};
}

bool isSortedBefore(const SortKey& one, const SortKey& other) {
  return std::tie(one.text, one.number) < std::tie(other.text, other.number);
}

/// The row of a statement made by ArticleRows::query().
ArticleRow readRow(const Statement& row) {
  ArticleRow read;
  read.ID = row.integer(0);
  read.codice = row.text(1);
  read.titolo = row.text(2);
  read.prezzo = asText(row.value(3));
  if (asFlag(row.value(4))) read.offerta = asText(row.value(5));
  read.peso = asText(row.value(6));
  read.inelenco = asFlag(row.value(7));
  if (trim(read.titolo).empty()) read.primo = row.text(8);
  return read;
}

}  // namespace

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
  readAll();
  const std::string wanted = foldCase(arrangement_.filter);
  std::erase_if(keys_, [&](std::int64_t ID) {
    const ArticleRow& row = rowOf(ID);
    if (arrangement_.untranslated && !trim(row.titolo).empty()) return true;
    return foldCase(row.codice).find(wanted) == std::string::npos &&
           foldCase(row.titolo).find(wanted) == std::string::npos;
  });
  if (arrangement_.by == ArticleArrangement::By::ShopOrder) return;
  std::vector<SortKey> sorted;
  for (const std::int64_t ID : keys_) sorted.push_back(sortKeyOf(rowOf(ID), arrangement_.by));
  std::ranges::stable_sort(sorted, [&](const SortKey& one, const SortKey& other) {
    return arrangement_.descending ? isSortedBefore(other, one) : isSortedBefore(one, other);
  });
  std::ranges::transform(sorted, keys_.begin(), &SortKey::ID);
}

const ArticleRow& ArticleRows::at(std::size_t index) {
  static const ArticleRow none;
  return index < keys_.size() ? rowOf(keys_[index]) : none;
}

std::string ArticleRows::query(std::string_view condition) const {
  const std::string_view language = languageSuffixes[static_cast<std::size_t>(sets_.session().currentLanguage - 1)];
  const std::string list(listinoSuffixes[static_cast<std::size_t>(listino_)]);
  return "SELECT ID, codice, titolo" + std::string(language) + ", prezzo" + list + ", offerta" + list +
         ", offertaprezzo" + list + ", peso, inelenco, titolo FROM articoli WHERE " + std::string(condition);
}

const ArticleRow& ArticleRows::rowOf(std::int64_t ID) {
  static const ArticleRow none;
  if (const auto known = rows_.find(ID); known != rows_.end()) return known->second;
  auto row = sets_.session().catalogue.prepare(query("ID = ?"));
  if (!row) return none;
  row->bind(1, ID);
  const auto found = row->step();
  if (!found || !*found) return none;
  return rows_[ID] = readRow(*row);
}

void ArticleRows::readAll() {
  auto row = sets_.session().catalogue.prepare(query("catID = ?"));
  if (!row) return;
  const std::string department = sets_.department();
  row->bind(1, department);
  for (;;) {
    const auto found = row->step();
    if (!found || !*found) return;
    rows_[row->integer(0)] = readRow(*row);
  }
}

std::optional<std::size_t> ArticleRows::indexOf(std::int64_t ID) const {
  const auto found = std::ranges::find(keys_, ID);
  if (found == keys_.end()) return std::nullopt;
  return static_cast<std::size_t>(found - keys_.begin());
}

}  // namespace kv
