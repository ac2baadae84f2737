#include "import/accounting/accounting_writer.h"

#include "platform/text/text.h"
#include "store/catalogue/catalogue_lists.h"
#include "store/schema/schema.h"

namespace kv {
namespace {

// The fields of an article in both statements; its key or its department come before and after them.
enum ArticleParameter { Code = 1, Title, Price, Offer, Vat, Last };

/// One statement with texts and numbers in its parameters.
Result<> runBound(Database& catalogue, std::string_view sql, const std::vector<Value>& values) {
  auto statement = catalogue.prepare(sql);
  if (!statement) return fail(statement.error());
  for (std::size_t i = 0; i < values.size(); ++i) statement->bind(static_cast<int>(i) + 1, values[i]);
  return statement->execute();
}

Result<Value> firstField(Database& catalogue, std::string_view sql, const std::string& text) {
  auto statement = catalogue.prepare(sql);
  if (!statement) return fail(statement.error());
  statement->bind(1, text);
  const auto row = statement->step();
  if (!row) return fail(row.error());
  return *row ? statement->value(0) : Value(Null{});
}

}  // namespace

Result<> AccountingWriter::start(const std::string& department, const std::string& model) {
  model_ = model;
  parent_ = treeRoot;
  if (!department.empty()) {
    auto row = catalogue_.prepare("SELECT genitore, livello, ordinamento FROM categorie WHERE ID = ?1");
    if (!row) return fail(row.error());
    row->bind(1, department);
    const auto found = row->step();
    if (!found) return fail(found.error());
    if (*found) {
      if (!row->isNull(0)) parent_ = std::string(row->text(0));
      level_ = row->integer(1);
      order_ = row->integer(2);
      row->reset();
      return makeRoom(static_cast<std::int64_t>(plan_.countDepartments(RowFate::New)));
    }
  }
  const auto last =
      firstField(catalogue_, "SELECT MAX(ordinamento) FROM categorie WHERE COALESCE(genitore, '###') = ?1", parent_);
  if (!last) return fail(last.error());
  order_ = asInteger(*last);
  return {};
}

/// Moves the siblings after the current department up, when they leave no room for the new ones.
Result<> AccountingWriter::makeRoom(std::int64_t count) {
  if (count == 0) return {};
  auto next = catalogue_.prepare(
      "SELECT MIN(ordinamento) FROM categorie WHERE COALESCE(genitore, '###') = ?1 AND ordinamento > ?2");
  if (!next) return fail(next.error());
  next->bind(1, parent_);
  next->bind(2, order_);
  const auto row = next->step();
  if (!row) return fail(row.error());
  const bool hasRoom = !*row || next->isNull(0) || next->integer(0) > order_ + count;
  const std::int64_t shift = hasRoom ? 0 : order_ + count + 1 - next->integer(0);
  next->reset();
  if (hasRoom) return {};
  return runBound(catalogue_,
                  "UPDATE categorie SET ordinamento = ordinamento + ?3 "
                  "WHERE COALESCE(genitore, '###') = ?1 AND ordinamento > ?2",
                  {parent_, order_, shift});
}

Result<> AccountingWriter::writeDepartment(const PlannedDepartment& department) {
  if (department.fate != RowFate::New) return {};
  auto written =
      runBound(catalogue_,
               "INSERT INTO categorie (ID, pagina, titolo, descrizione, genitore, livello, ordinamento, "
               "template, affiancati) VALUES (?1, ?1, ?2, ?3, ?4, ?5, ?6, ?7, ' ')",
               {department.ID, department.titolo, department.descrizione, parent_, level_, order_ + 1, model_});
  if (written) ++order_;
  return written;
}

Result<> AccountingWriter::prepareArticles() {
  const std::string suffix(listinoSuffixes[static_cast<std::size_t>(options_.listino)]);
  std::string columns = "codice, titolo, prezzo" + suffix, values = "?1, ?2, ?3";
  std::string changes = "codice = ?1, titolo = ?2, prezzo" + suffix + " = ?3";
  const auto add = [&](const std::string& column, const std::string& parameter) {
    columns += ", " + column;
    values += ", " + parameter;
    changes += ", " + column + " = " + parameter;
  };
  if (options_.offer > 0) add("offertaprezzo" + suffix, "?4");
  if (plan_.hasVat) add("iva", "?5");
  auto insert =
      catalogue_.prepare("INSERT INTO articoli (" + columns + ", catID, ordinamento) VALUES (" + values + ", ?6, ?7)");
  if (!insert) return fail(insert.error());
  auto update = catalogue_.prepare("UPDATE articoli SET " + changes + " WHERE ID = ?6");
  if (!update) return fail(update.error());
  insert_ = std::move(*insert);
  update_ = std::move(*update);
  return {};
}

Result<> AccountingWriter::writeArticle(const PlannedArticle& article) {
  const bool written = article.fate == RowFate::New || article.fate == RowFate::Changed;
  if (!written) return {};
  if (!insert_) {
    if (auto prepared = prepareArticles(); !prepared) return prepared;
  }
  return article.fate == RowFate::New ? insertArticle(article) : updateArticle(article);
}

Result<std::int64_t> AccountingWriter::nextOrder(const std::string& department) {
  const auto [found, added] = orders_.try_emplace(foldCase(department), 0);
  if (added) {
    const auto last = firstField(catalogue_, "SELECT MAX(ordinamento) FROM articoli WHERE catID = ?1", department);
    if (!last) return fail(last.error());
    found->second = asInteger(*last);
  }
  return ++found->second;
}

void AccountingWriter::bindFields(Statement& statement, const PlannedArticle& article) const {
  statement.bind(Code, article.codice);
  statement.bind(Title, article.titolo);
  statement.bind(Price, article.prezzo);
  if (options_.offer > 0) statement.bind(Offer, article.offertaprezzo);
  if (plan_.hasVat) statement.bind(Vat, article.iva);
}

Result<> AccountingWriter::insertArticle(const PlannedArticle& article) {
  const auto order = nextOrder(article.catID);
  if (!order) return fail(order.error());
  bindFields(*insert_, article);
  insert_->bind(Last, article.catID);
  insert_->bind(Last + 1, *order);
  if (auto written = insert_->execute(); !written) return written;
  const auto ID = catalogue_.scalar("SELECT last_insert_rowid()");
  if (!ID) return fail(ID.error());
  plan_.keys[article.of] = asInteger(*ID);
  return {};
}

Result<> AccountingWriter::updateArticle(const PlannedArticle& article) {
  bindFields(*update_, article);
  update_->bind(Last, plan_.keys[article.of]);
  return update_->execute();
}

}  // namespace kv
