// Copying and pasting through the clipboard tables of the catalogue, which outlive the session.

#include <algorithm>
#include <array>

#include "platform/database/recordset.h"
#include "platform/database/rows.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "store/catalogue/side_fields.h"
#include "store/catalogue/tree_change.h"
#include "store/catalogue/tree_editing.h"
#include "store/shop/order_numbers.h"

namespace kv {
namespace {

constexpr std::array<std::string_view, 4> articleOwn{"ID", "catID", "inelenco", "ordinamento"};
constexpr std::array<std::string_view, 7> departmentOwn{"ID",      "pagina",    "genitore",   "hafigli",
                                                        "livello", "contatore", "ordinamento"};

/// The columns that a copy carries, joined by commas: all of the table but its own.
Result<std::string> carriedColumns(Database& catalogue, std::string_view table) {
  auto info = catalogue.table(table);
  if (!info) return fail(info.error());
  const bool articles = table == "articoli";
  std::string names;
  for (const ColumnInfo& column : info->columns) {
    const auto same = [&](std::string_view own) { return equalsIgnoringCase(own, column.name); };
    if (articles ? std::ranges::any_of(articleOwn, same) : std::ranges::any_of(departmentOwn, same)) continue;
    names += (names.empty() ? "\"" : ", \"") + column.name + "\"";
  }
  return names;
}

/// Leaves the department alone in its clipboard table, with the word whether its articles are pasted with it.
Result<> copyDepartmentRow(Database& catalogue, const Value& ID, bool withArticles) {
  auto names = carriedColumns(catalogue, "categorie");
  if (!names) return fail(names.error());
  if (auto emptied = catalogue.execute("DELETE FROM clipcategorie"); !emptied) return emptied;
  return runWith(catalogue,
                 "INSERT INTO clipcategorie (" + *names + ", incolla_articoli) SELECT " + *names +
                     ", ? FROM categorie WHERE ID = ?",
                 {Value(withArticles), ID});
}

/// Numbers `count` new articles, each after the one before it; the first after element `current`. `keys` has 0 for a
/// new one.
OrderedList roomFor(OrderedList list, std::optional<std::size_t> current, std::size_t count) {
  for (std::size_t n = 0; n < count; ++n) {
    const OrderPlan plan = planAfter(list.orders, current);
    for (std::size_t i = 0; i < plan.moved.size(); ++i) list.orders[plan.firstMoved + i] = plan.moved[i];
    const std::size_t index = current ? *current + 1 : list.orders.size();
    list.orders.insert(list.orders.begin() + static_cast<std::ptrdiff_t>(index), plan.order);
    list.keys.insert(list.keys.begin() + static_cast<std::ptrdiff_t>(index), 0);
    current = index;
  }
  return list;
}

constexpr const char* clipboardRows = "SELECT rowid, 0 FROM cliparticoli WHERE ? = 0 ORDER BY rowid";

/// The articles of a condition with the rows of the clipboard that they have just become.
Result<std::vector<CopiedRow>> clippedRows(Database& catalogue, const std::string& condition, const Value& value) {
  auto articles =
      readOrder(catalogue, "SELECT ID, 0 FROM articoli WHERE " + condition + " ORDER BY ordinamento, ID", value);
  if (!articles) return fail(articles.error());
  auto clipped = readOrder(catalogue, clipboardRows, Value(0));
  if (!clipped) return fail(clipped.error());
  std::vector<CopiedRow> copies;
  for (std::size_t i = 0; i < std::min(articles->keys.size(), clipped->keys.size()); ++i) {
    copies.push_back({articles->keys[i], clipped->keys[i]});
  }
  return copies;
}

/// Runs a statement that inserts one row; the number of the row.
Result<std::int64_t> insertedRow(Database& catalogue, Statement& insert) {
  if (auto done = insert.execute(); !done) return fail(done.error());
  auto number = catalogue.scalar("SELECT last_insert_rowid()");
  if (!number) return fail(number.error());
  return asInteger(*number);
}

/// Writes a list with room for copies: a copy of the next row where it has no key, else the order that has changed.
struct CopyWriter {
  Database& catalogue;
  Statement& insert;
  const std::vector<std::int64_t>& rows;
  std::vector<CopiedRow> copies;

  Result<> write(const OrderedList& wanted, const std::vector<std::int64_t>& oldOrders) {
    OrderWriter orders(catalogue, writeArticleOrder);
    std::size_t old = 0;
    for (std::size_t i = 0; i < wanted.keys.size(); ++i) {
      Result<> done;
      if (wanted.keys[i] == 0) {
        done = copyNext(wanted.orders[i]);
      } else if (wanted.orders[i] != oldOrders[old++]) {
        done = orders.write(wanted.keys[i], wanted.orders[i]);
      }
      if (!done) return done;
    }
    return {};
  }

 private:
  Result<> copyNext(std::int64_t order) {
    const std::int64_t from = rows[copies.size()];
    insert.bind(2, order);
    insert.bind(3, from);
    auto made = insertedRow(catalogue, insert);
    if (!made) return fail(made.error());
    copies.push_back({from, *made});
    return {};
  }
};

}  // namespace

Result<std::vector<TreeEditing::ClippedDepartment>> TreeEditing::clippedDepartments() {
  std::vector<ClippedDepartment> clipped;
  auto read = forEachRow(sets_.session().catalogue,
                         "SELECT rowid, ID, genitore, incolla_articoli FROM clipcategorie ORDER BY rowid",
                         [&](const Statement& row) {
                           clipped.push_back({row.integer(0), asText(row.value(1)), asText(row.value(2)), row.flag(3)});
                         });
  if (!read) return fail(read.error());
  return clipped;
}

/// Leaves the departments alone in their clipboard table. It says what hung where only for several: one department is
/// pasted wherever the cursor is.
Result<> TreeEditing::copyDepartments(const std::string& group, bool withArticles) {
  Database& catalogue = sets_.session().catalogue;
  auto names = carriedColumns(catalogue, "categorie");
  if (!names) return fail(names.error());
  if (auto emptied = catalogue.execute("DELETE FROM clipcategorie"); !emptied) return emptied;
  return runWith(catalogue,
                 "INSERT INTO clipcategorie (" + *names + ", ID, genitore, incolla_articoli) SELECT " + *names +
                     ", ID, genitore, ?1 FROM categorie WHERE ID IN (SELECT value FROM json_each(?2)) "
                     "ORDER BY (SELECT scelto.key FROM json_each(?2) AS scelto WHERE scelto.value = categorie.ID)",
                 {Value(withArticles), Value(group)});
}

Result<> TreeEditing::copyArticles(const std::string& condition, const Value& value) {
  Database& catalogue = sets_.session().catalogue;
  auto names = carriedColumns(catalogue, "articoli");
  if (!names) return fail(names.error());
  if (auto emptied = catalogue.execute("DELETE FROM cliparticoli"); !emptied) return emptied;
  auto copied = runWith(catalogue,
                        "INSERT INTO cliparticoli (" + *names + ") SELECT " + *names + " FROM articoli WHERE " +
                            condition + " ORDER BY ordinamento, ID",
                        {value});
  if (!copied) return copied;
  auto copies = clippedRows(catalogue, condition, value);
  return copies ? copySideRowsToClipboard(catalogue, *copies) : fail(copies.error());
}

Result<> TreeEditing::CopiaArticolo() {
  if (!sets_.onArticle()) return {};
  auto at = sets_.cursors();
  if (!at) return fail(at.error());
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  if (auto copied = copyArticles("ID = ?", Value(at->article)); !copied) return copied;
  if (auto kept = change.keep(); !kept) return kept;
  enablePasteOfArticles();
  return {};
}

void TreeEditing::enablePasteOfArticles() const {
  if (!hooks_.StatoComando) return;
  hooks_.StatoComando("incolla articolo", true);
  hooks_.StatoComando("incolla categoria", false);
}

Result<> TreeEditing::CopiaReparto() {
  if (!sets_.onDepartment()) return {};
  const bool withArticles =
      sets_.departmentArticles() > 0 && ask("Copiare anche tutti gli articoli del reparto?", Answer::Yes);
  auto at = sets_.cursors();
  if (!at) return fail(at.error());
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  Database& catalogue = sets_.session().catalogue;
  const Value ID(at->department);
  if (withArticles) {
    if (auto copied = copyArticles("catID = ?", ID); !copied) return copied;
  }
  if (auto copied = copyDepartmentRow(catalogue, ID, withArticles); !copied) return copied;
  if (auto kept = change.keep(); !kept) return kept;
  enablePasteOfDepartment(withArticles);
  return {};
}

void TreeEditing::enablePasteOfDepartment(bool withArticles) const {
  if (!hooks_.StatoComando) return;
  if (withArticles) hooks_.StatoComando("incolla articolo", true);
  hooks_.StatoComando("incolla categoria", true);
}

/// Fills one row of a table with the carried columns of a row of its clipboard; rows by the engine's number.
Result<> TreeEditing::fill(std::string_view table, std::string_view clipboard, std::int64_t from, std::int64_t to) {
  Database& catalogue = sets_.session().catalogue;
  auto names = carriedColumns(catalogue, table);
  if (!names) return fail(names.error());
  return runWith(catalogue,
                 "UPDATE " + std::string(table) + " SET (" + *names + ") = (SELECT " + *names + " FROM " +
                     std::string(clipboard) + " WHERE rowid = ?) WHERE rowid = ?",
                 {Value(from), Value(to)});
}

/// Pastes all rows of the clipboard, which holds some, after an article of a department, or after all when it has none
/// such; the ID of the last one.
Result<std::int64_t> TreeEditing::pasteArticles(const CatalogueCursors& at) {
  Database& catalogue = sets_.session().catalogue;
  auto clipped = readOrder(catalogue, clipboardRows, Value(0));
  if (!clipped) return fail(clipped.error());
  return insertCopies(at, "cliparticoli", clipped->keys);
}

Result<std::int64_t> TreeEditing::insertCopies(const CatalogueCursors& at, const std::string& source,
                                               const std::vector<std::int64_t>& rows) {
  Database& catalogue = sets_.session().catalogue;
  auto list = readOrder(catalogue, articlesInOrder, Value(at.department));
  if (!list) return fail(list.error());
  const auto current = list->positionOf(at.article);
  const std::vector<std::int64_t> oldOrders = list->orders;
  const OrderedList wanted = roomFor(std::move(*list), current, rows.size());
  auto names = carriedColumns(catalogue, "articoli");
  if (!names) return fail(names.error());
  auto insert = catalogue.prepare("INSERT INTO articoli (catID, ordinamento, " + *names + ") SELECT ?, ?, " + *names +
                                  " FROM " + source + " WHERE rowid = ?");
  if (!insert) return fail(insert.error());
  insert->bind(1, at.department);
  CopyWriter writer{catalogue, *insert, rows, {}};
  if (auto written = writer.write(wanted, oldOrders); !written) return fail(written.error());
  const bool clipped = source == "cliparticoli";
  auto sides = clipped ? copySideRowsFromClipboard(catalogue, writer.copies) : copySideRows(catalogue, writer.copies);
  if (!sides) return fail(sides.error());
  return writer.copies.empty() ? 0 : writer.copies.back().to;
}

/// Whether the articles of the clipboard are to be pasted: there are some, and of several the merchant says so.
Result<bool> TreeEditing::wantsArticles() {
  auto count = sets_.session().catalogue.scalar("SELECT COUNT(*) FROM cliparticoli");
  if (!count) return fail(count.error());
  if (asInteger(*count) < 2) return asInteger(*count) > 0;
  return ask("Saranno incollati" + plainNumber(asInteger(*count)) + " articoli. Procedere?", Answer::Yes);
}

Result<> TreeEditing::IncollaArticoli() {
  if (!sets_.onDepartment()) {
    user_.message("Per incollare gli articoli è necessario selezionare un reparto.", Icon::Exclamation);
    return {};
  }
  auto wanted = wantsArticles();
  if (!wanted) return fail(wanted.error());
  if (!*wanted) return {};
  auto at = sets_.cursors();
  if (!at) return fail(at.error());
  const WaitPointer pointer(hooks_);
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  auto last = pasteArticles(*at);
  if (!last) return fail(last.error());
  return change.keepAndShowArticle(at->department, *last);
}

Result<> TreeEditing::IncollaReparto() {
  auto all = clippedDepartments();
  if (!all) return fail(all.error());
  if (all->empty()) return {};
  auto wanted = all->front().withArticles ? wantsArticles() : Result<bool>(false);
  if (!wanted) return fail(wanted.error());
  std::optional<WaitPointer> pointer;
  if (*wanted) pointer.emplace(hooks_);
  return all->size() > 1 ? pasteDepartments(*all, *wanted) : pasteDepartment(all->front(), *wanted);
}

Result<> TreeEditing::pasteDepartment(const ClippedDepartment& clipped, bool withArticles) {
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  auto made = sets_.onDepartment() ? NuovoReparto(false) : addUnderCurrent();
  if (!made) return fail(made.error());
  if (auto filled = fill("categorie", "clipcategorie", clipped.row, made->contatore); !filled) return filled;
  auto pasted = withArticles ? pasteArticles({made->ID, 0}) : Result<std::int64_t>(0);
  if (!pasted) return fail(pasted.error());
  return change.keepAndShow(made->ID, withArticles);
}

}  // namespace kv
