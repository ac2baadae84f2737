#include "store/catalogue/article_move.h"

#include "store/catalogue/tree_change.h"

namespace kv {

Result<> appendToDepartment(Database& catalogue, const std::string& department,
                            const std::vector<std::int64_t>& articles) {
  auto last = scalarWith(catalogue, "SELECT MAX(ordinamento) FROM articoli WHERE catID = ?", {Value(department)});
  if (!last) return fail(last.error());
  auto update = catalogue.prepare("UPDATE articoli SET catID = ?, ordinamento = ? WHERE ID = ?");
  if (!update) return fail(update.error());
  std::int64_t order = asInteger(*last);
  for (const std::int64_t ID : articles) {
    update->bind(1, department);
    update->bind(2, ++order);
    update->bind(3, ID);
    if (auto done = update->execute(); !done) return done;
  }
  return {};
}

}  // namespace kv
