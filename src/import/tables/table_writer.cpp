#include "import/tables/table_writer.h"

#include <algorithm>
#include <span>

#include "platform/text/text.h"
#include "store/catalogue/catalogue_lists.h"

namespace kv {
namespace {

constexpr std::size_t mostStatements = 64;  // kept for rows to come
constexpr std::size_t rowsPerInsert = 20;   // their values stay below the engine's 32766 for any columns

using FieldList = std::vector<std::pair<std::string_view, Value>>;

const Value* fieldIn(const FieldList& fields, std::string_view column) {
  const auto found = std::ranges::find(fields, column, &FieldList::value_type::first);
  return found == fields.end() ? nullptr : &found->second;
}

/// "immagine1_l2" -> "imgX1_l2".
std::string sizeColumn(std::string_view picture, char axis) {
  constexpr std::string_view start = "immagine";
  return std::string("img") + axis + std::string(picture.substr(start.size()));
}

/// Whether two names of columns are equal; mostly they are one.
bool isSameName(std::string_view one, std::string_view other) {
  return one.data() == other.data() ? one.size() == other.size() : one == other;
}

/// The statement that adds a number of rows with these columns.
std::string insertOf(std::string_view table, std::span<const std::string_view> names, std::size_t rows) {
  std::string columns, values;
  for (const std::string_view name : names) {
    columns += (columns.empty() ? "" : ", ") + std::string(name);
    values += values.empty() ? "(?" : ", ?";
  }
  std::string sql = "INSERT INTO " + std::string(table) + " (" + columns + ") VALUES " + values + ")";
  for (std::size_t row = 1; row < rows; ++row) sql += ", " + values + ")";
  return sql;
}

}  // namespace

Result<Statement*> TableWriter::prepared(const std::string& sql) {
  const auto found = statements_.find(sql);
  if (found != statements_.end()) return &found->second;
  if (statements_.size() >= mostStatements) statements_.clear();
  auto statement = work_.catalogue.prepare(sql);
  if (!statement) return fail(statement.error());
  return &statements_.emplace(sql, std::move(*statement)).first->second;
}

Result<> TableWriter::run(const std::string& sql, const Fields& fields, std::int64_t key) {
  const auto statement = prepared(sql);
  if (!statement) return fail(statement.error());
  int index = 0;
  for (const auto& [column, value] : fields) (*statement)->bind(++index, value);
  if (key != 0) (*statement)->bind(++index, key);
  return (*statement)->execute();
}

Result<Value> TableWriter::ask(std::string_view sql, const std::string& text) {
  auto statement = work_.catalogue.prepare(sql);
  if (!statement) return fail(statement.error());
  statement->bind(1, text);
  const auto row = statement->step();
  if (!row) return fail(row.error());
  return *row ? statement->value(0) : Value(Null{});
}

Result<> TableWriter::insert(std::string_view table, const Fields& fields) {
  std::vector<std::string_view> names;
  for (const auto& [column, value] : fields) names.push_back(column);
  return run(insertOf(table, names, 1), fields, 0);
}

Result<> TableWriter::addWaiting(Fields fields) {
  if (!std::ranges::equal(fields, waitingColumns_, isSameName, &FieldList::value_type::first)) {
    if (auto written = writeWaiting(); !written) return written;
    waitingColumns_.clear();
    for (const auto& [column, value] : fields) waitingColumns_.push_back(column);
    fullInsert_ = insertOf("articoli", waitingColumns_, rowsPerInsert);
  }
  for (auto& [column, value] : fields) waiting_.push_back(std::move(value));
  return waiting_.size() == rowsPerInsert * fields.size() ? writeWaiting() : Result<>();
}

Result<> TableWriter::writeWaiting() {
  if (waiting_.empty()) return {};
  const std::size_t rows = waiting_.size() / waitingColumns_.size();
  auto statement = prepared(rows == rowsPerInsert ? fullInsert_ : insertOf("articoli", waitingColumns_, rows));
  if (!statement) return fail(statement.error());
  int index = 0;
  for (const Value& value : waiting_) (*statement)->bind(++index, value);
  auto done = (*statement)->execute();
  waiting_.clear();
  return done;
}

Result<> TableWriter::update(const PlannedRow& row, const Fields& fields) {
  if (fields.empty()) return {};
  const SheetTable& table = work_.plan.table;
  std::string changes;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    changes += (i > 0 ? ", " : "") + std::string(fields[i].first) + " = ?" + std::to_string(i + 1);
  }
  // Each zone is a table of one row.
  if (!table.canAdd) return run("UPDATE zona" + std::to_string(row.key) + " SET " + changes, fields, 0);
  return run("UPDATE " + table.from + " SET " + changes + " WHERE " + table.rowKey + " = ?" +
                 std::to_string(fields.size() + 1),
             fields, row.key);
}

Result<> TableWriter::addPicture(Fields& fields, const TableColumn& column, const std::string& cell) {
  TakenPicture picture;
  if (!trim(cell).empty()) {
    auto taken = work_.pictures.take(cell);
    if (!taken) return fail(taken.error());
    picture = std::move(*taken);
  }
  const bool isNone = picture.name.empty();
  const auto sized = [&](int pixels) { return isNone ? Value() : Value(std::in_place_type<std::int64_t>, pixels); };
  fields.emplace_back(column.stored, isNone ? Value() : Value(picture.name));
  fields.emplace_back(*names_.insert(sizeColumn(column.stored, 'X')).first, sized(picture.size.width));
  fields.emplace_back(*names_.insert(sizeColumn(column.stored, 'Y')).first, sized(picture.size.height));
  return {};
}

Result<Value> TableWriter::ownVariant(std::string_view name) {
  const CatalogueName found = work_.plan.names.variant(name);
  if (!found.ID.empty()) return Value(static_cast<std::int64_t>(std::stoll(found.ID)));
  const std::string added(trim(name));
  if (auto done = run("INSERT INTO opzioni (nome) VALUES (?1)", {{"nome", added}}, 0); !done) return fail(done.error());
  const auto ID = work_.catalogue.scalar("SELECT last_insert_rowid()");
  if (!ID) return fail(ID.error());
  work_.plan.names.addVariant(asInteger(*ID), added);
  return *ID;
}

Result<TableWriter::Fields> TableWriter::fieldsOf(const PlannedRow& row) {
  Fields fields;
  constexpr std::size_t others = 2;  // that a new row gets beside
  fields.reserve(row.changed.size() + others);
  for (const std::uint16_t index : row.changed) {
    const MappedColumn& mapped = work_.plan.columns[index];
    const TableColumn& column = work_.plan.table.columns[mapped.column];
    const SheetCell cell = work_.sheet.cells.cell(row.row, mapped.source);
    if (column.field == CellField::RowKey || column.field == CellField::OwnPath) continue;
    if (column.field == CellField::Picture) {
      if (auto taken = addPicture(fields, column, std::string(cell.text)); !taken) return fail(taken.error());
    } else if (column.field == CellField::OwnVariant) {
      auto variant = ownVariant(cell.text);
      if (!variant) return fail(variant.error());
      fields.emplace_back(column.stored, std::move(*variant));
    } else {
      fields.emplace_back(column.stored, reader_.read(column, cell).value);
    }
  }
  return fields;
}

Result<> TableWriter::moveToEnd(Fields& fields) {
  const Value* const held = fieldIn(fields, "catID");
  if (held == nullptr || fieldIn(fields, "ordinamento") != nullptr) return {};
  const std::string department = asText(*held);
  const auto [found, added] = orders_.try_emplace(foldCase(department), 0);
  if (added) {
    const auto last = ask("SELECT MAX(ordinamento) FROM articoli WHERE catID = ?1", department);
    if (!last) return fail(last.error());
    found->second = asInteger(*last);
  }
  fields.emplace_back("ordinamento", ++found->second);
  return {};
}

Result<> TableWriter::insertArticle(Fields fields) {
  if (fieldIn(fields, "catID") == nullptr) fields.emplace_back("catID", work_.request.department);
  if (auto moved = moveToEnd(fields); !moved) return moved;
  return addWaiting(std::move(fields));
}

Result<> TableWriter::insertDepartment(const PlannedRow& row, Fields fields) {
  const auto index = *work_.plan.table.columnIndex("percorso");
  const auto mapped = std::ranges::find(work_.plan.columns, index, &MappedColumn::column);
  const std::string path(work_.sheet.cells.cell(row.row, mapped->source).text);
  const SplitPath split = splitPath(path);
  const std::string parent =
      split.parent.empty() ? std::string(treeRoot) : work_.plan.names.department(split.parent).ID;
  if (parent.empty()) return fail(ErrorKind::Missing, "categorie", missingDepartment(split.parent));
  const auto level = ask("SELECT livello FROM categorie WHERE ID = ?1", parent);
  const auto last = ask("SELECT MAX(ordinamento) FROM categorie WHERE COALESCE(genitore, '###') = ?1", parent);
  const auto next = work_.catalogue.scalar("SELECT seq FROM sqlite_sequence WHERE name = 'categorie'");
  const auto highest = work_.catalogue.scalar("SELECT MAX(contatore) FROM categorie");
  for (const auto* each : {&level, &last, &next, &highest}) {
    if (!*each) return fail(each->error());
  }
  const std::int64_t contatore = std::max(asInteger(*next), asInteger(*highest)) + 1;
  const std::string key = departmentKey(contatore);
  const std::pair<std::string_view, Value> own[] = {{"contatore", contatore},
                                                    {"ID", key},
                                                    {"pagina", key},
                                                    {"genitore", parent},
                                                    {"livello", asInteger(*level) + 1},
                                                    {"ordinamento", asInteger(*last) + 1}};
  fields.insert(fields.end(), std::begin(own), std::end(own));
  if (fieldIn(fields, "titolo") == nullptr) fields.emplace_back("titolo", split.title);
  if (fieldIn(fields, "template") == nullptr) fields.emplace_back("template", work_.request.model);
  if (auto done = insert("categorie", fields); !done) return done;
  work_.plan.names.addDepartment(key, path);
  if (parent == treeRoot) return {};
  return run("UPDATE categorie SET hafigli = 1 WHERE ID = ?1", {{"ID", parent}}, 0);
}

Result<> TableWriter::write(const PlannedRow& row) {
  const bool isWritten = row.isChosen && (row.fate == RowFate::New || row.fate == RowFate::Changed);
  if (!isWritten) return {};
  auto fields = fieldsOf(row);
  if (!fields) return fail(fields.error());
  const std::string& table = work_.plan.table.name;
  if (row.fate == RowFate::Changed) {
    if (table == "articoli") {
      if (auto moved = moveToEnd(*fields); !moved) return moved;
    }
    return update(row, *fields);
  }
  if (table == "articoli") return insertArticle(std::move(*fields));
  if (table == "reparti") return insertDepartment(row, std::move(*fields));
  return insert(work_.plan.table.from, *fields);
}

Result<> TableWriter::finish() {
  if (auto written = writeWaiting(); !written) return written;
  for (const auto& [ID, isChosen] : work_.plan.unlisted) {
    if (!isChosen) continue;
    if (auto done = run("UPDATE articoli SET fuoricatalogo = 1 WHERE ID = ?1", {}, ID); !done) return done;
  }
  return {};
}

}  // namespace kv
