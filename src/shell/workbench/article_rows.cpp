#include "shell/workbench/article_rows.h"

#include <algorithm>

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
    if (!row || !*row) return;
    keys_.push_back(rows->integer(0));
  }
}

const ArticleRow& ArticleRows::at(std::size_t index) {
  static const ArticleRow none;
  if (index >= keys_.size()) return none;
  const std::int64_t ID = keys_[index];
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
