#include "import/tables/table_plan.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "import/sheets/number_signs.h"
#include "import/tables/cell_reading.h"
#include "import/tables/picture_source.h"
#include "media/choice/picture_box.h"
#include "platform/image/pixels.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t rowsPerLook = 256;  // between two looks at the user

/// The making of a plan.
class TablePlanner {
 public:
  TablePlanner(Database& catalogue, TablePlan& plan, const ReadSheet& sheet, const TableRequest& request,
               const TableStep& step)
      : catalogue_(catalogue),
        plan_(plan),
        sheet_(sheet),
        request_(request),
        step_(step),
        reader_(plan.signs, plan.names) {}

  Result<> run(const TableKey& key) {
    for (const std::string& name : key.columns) {
      const std::size_t column = *plan_.table.columnIndex(name);
      keys_.push_back({column, *sourceOf(request_.mapping, column)});
    }
    isByID_ = key.name == "id";
    plan_.rows.reserve(sheet_.cells.rows());
    byKey_.reserve(sheet_.cells.rows());
    for (std::size_t row = 1; row < sheet_.cells.rows(); ++row) {
      if (!goesOn(row)) return cancelled();
      addRow(row);
    }
    if (auto matched = matchRows(); !matched) return matched;
    std::size_t planned = 2 * sheet_.cells.rows();
    for (PlannedRow& row : plan_.rows) {
      if (!goesOn(++planned)) return cancelled();
      if (row.fate == RowFate::New) planNew(row);
    }
    return {};
  }

 private:
  static tl::unexpected<Error> cancelled() { return fail(ErrorKind::Cancelled, "", "cancelled"); }
  /// Looks at the user now and then. The three runs over the rows have come as far, counted in rows of the sheet.
  bool goesOn(std::size_t done) const {
    return !step_ || done % rowsPerLook != 0 || step_(done, 3 * sheet_.cells.rows());
  }
  const TableColumn& columnAt(const MappedColumn& mapped) const { return plan_.table.columns[mapped.column]; }
  SheetCell cellOf(const PlannedRow& row, const MappedColumn& mapped) const {
    return sheet_.cells.cell(row.row, mapped.source);
  }
  static void refuse(PlannedRow& row, std::string reason) {
    row.fate = RowFate::LeftOut;
    row.changed.clear();
    row.reason = std::move(reason);
  }

  /// Enters a row of the sheet under its key.
  void addRow(std::size_t index) {
    PlannedRow row;
    row.row = index;
    std::string key, empty;
    for (const MappedColumn& mapped : keys_) {
      const std::string text = reader_.keyText(columnAt(mapped), sheet_.cells.cell(index, mapped.source));
      if (text.empty()) empty = columnAt(mapped).italian;
      key += text + '\n';
    }
    if (!empty.empty()) {
      if (!isByID_) refuse(row, "manca " + empty);
    } else if (const auto [found, added] = byKey_.try_emplace(std::move(key), plan_.rows.size()); !added) {
      refuse(row, "ripete la riga " + std::to_string(sheet_.cells.line(plan_.rows[found->second].row)));
    } else if (isByID_) {
      // Until it is found in the catalogue.
      row.reason = "nel catalogo non c'è ID " + std::string(sheet_.cells.cell(index, keys_[0].source).text);
    }
    plan_.rows.push_back(std::move(row));
  }

  /// Reads the catalogue once, and decides on the rows that it has.
  Result<> matchRows() {
    auto rows = catalogue_.prepare(selection());
    if (!rows) return fail(rows.error());
    std::int64_t last = 0;
    for (std::size_t count = 1;; ++count) {
      const auto row = rows->step();
      if (!row) return fail(after(last, row.error()));
      if (!*row) return {};
      last = rows->integer(0);
      if (!goesOnReading(count)) return cancelled();
      matchRow(*rows);
    }
  }
  /// Shows how much of the catalogue is read; false once the user has cancelled.
  bool goesOnReading(std::size_t count) const {
    if (count % rowsPerLook != 0 || !step_) return true;
    // The catalogue may have more rows than the sheet.
    const std::size_t most = sheet_.cells.rows();
    return step_(most + std::min(count, most), 3 * most);
  }
  /// Decides on the row of the sheet with the key of a row of the catalogue, or on the latter where there is none.
  void matchRow(const Statement& row) {
    const std::string key = keyOf(row);
    if (key.empty()) return;
    if (const auto found = byKey_.find(key); found != byKey_.end()) {
      decideFate(plan_.rows[found->second], row);
    } else if (request_.unlistedOut && !row.flag(1)) {
      plan_.unlisted.push_back({row.integer(0)});
    }
  }
  /// A failure with the row of the catalogue before it.
  Error after(std::int64_t row, Error error) const {
    error.where = plan_.table.rows + (row == 0 ? "" : ", dopo la riga " + std::to_string(row));
    return error;
  }
  /// The key of a row of the catalogue; empty where a part of it is missing, so that no sheet can name the row.
  std::string keyOf(const Statement& row) {
    std::string key;
    for (std::size_t i = 0; i < keys_.size(); ++i) {
      const std::string text = reader_.keyText(columnAt(keys_[i]), row, static_cast<int>(i) + firstKey);
      if (text.empty()) return {};
      key += text + '\n';
    }
    return key;
  }
  std::string selection() const {
    const bool hasFlag = plan_.table.columnIndex("fuoricatalogo").has_value();
    std::string sql = "SELECT " + plan_.table.rowKey + (hasFlag ? ", fuoricatalogo" : ", 1");
    for (const MappedColumn& mapped : keys_) sql += ", " + columnAt(mapped).stored;
    for (const MappedColumn& mapped : plan_.columns) sql += ", " + columnAt(mapped).stored;
    return sql + " FROM " + plan_.table.from;
  }

  void decideFate(PlannedRow& row, const Statement& found) {
    amounts_.clear();
    if (row.key != 0) return refuse(row, "nel catalogo c'è più volte");
    row.key = found.integer(0);
    if (row.fate == RowFate::LeftOut) return;
    row.reason.clear();
    if (request_.mode == TableMode::OnlyAdd) return refuse(row, "già presente");
    row.fate = RowFate::Same;
    const int first = firstKey + static_cast<int>(keys_.size());
    for (std::size_t i = 0; i < plan_.columns.size(); ++i) {
      const MappedColumn& mapped = plan_.columns[i];
      if (reader_.isSame(columnAt(mapped), found, first + static_cast<int>(i), cellOf(row, mapped))) continue;
      row.fate = RowFate::Changed;
      row.changed.push_back(static_cast<std::uint16_t>(i));
      if (std::string why = refusalOf(i, row); !why.empty()) return refuse(row, std::move(why));
    }
    noteAmounts(row, &found);
  }

  /// Enters the amounts among those read that a row would change.
  void noteAmounts(const PlannedRow& row, const Statement* found) {
    const int first = firstKey + static_cast<int>(keys_.size());
    for (PlannedAmount& amount : amounts_) {
      if (!std::ranges::binary_search(row.changed, amount.mapped)) continue;
      amount.row = static_cast<std::uint32_t>(&row - plan_.rows.data());
      if (found != nullptr) amount.before = found->money(first + amount.mapped);
      plan_.amounts.push_back(amount);
    }
  }

  /// Why the cell of a mapped column can't be written; empty when it can. An amount is kept for noteAmounts.
  std::string refusalOf(std::size_t index, const PlannedRow& row) {
    const MappedColumn& mapped = plan_.columns[index];
    const TableColumn& column = columnAt(mapped);
    const SheetCell cell = cellOf(row, mapped);
    const bool isOwner = column.field == CellField::Department || column.field == CellField::OwnVariant;
    if (isOwner && trim(cell.text).empty()) return "manca " + column.italian;
    if (column.field == CellField::Picture && !trim(cell.text).empty()) return pictureRefusal(cell.text);
    if (column.field == CellField::OwnVariant && plan_.names.variant(cell.text).ID.empty()) return {};
    if (column.field != CellField::Money) return reader_.refusal(column, cell);
    CellValue read = reader_.read(column, cell);
    amounts_.push_back({0, static_cast<std::uint16_t>(index), {}, isNull(read.value) ? Money() : asMoney(read.value)});
    return std::move(read.refusal);
  }

  std::string pictureRefusal(std::string_view text) const {
    const auto found = findPicture(text, request_.shopFolder, request_.sheetFolder);
    if (!found) return "l'immagine \"" + std::string(text) + "\" non si trova";
    const std::string picture = "l'immagine \"" + std::string(text) + "\" ";
    const auto size = shownSize(found->path);
    if (!size) return picture + "non può essere letta";
    // In the shop it stays as it is.
    if (found->name.empty() && !canBeDecoded(*size)) return picture + "ha più di 64 milioni di punti";
    const bool isReduced = request_.fitsPictures && found->name.empty();
    return isReduced || canBeStored(*size) ? "" : picture + "ha un lato di oltre 32767 punti";
  }

  void planNew(PlannedRow& row) {
    amounts_.clear();
    if (!row.reason.empty()) return refuse(row, std::move(row.reason));
    if (request_.mode == TableMode::OnlyChange || !plan_.table.canAdd) return refuse(row, "non è nel catalogo");
    row.changed.reserve(plan_.columns.size());
    for (std::size_t i = 0; i < plan_.columns.size(); ++i) {
      if (std::string why = refusalOf(i, row); !why.empty()) return refuse(row, std::move(why));
      if (!cellOf(row, plan_.columns[i]).text.empty()) row.changed.push_back(static_cast<std::uint16_t>(i));
    }
    if (std::string why = missingOf(row); !why.empty()) return refuse(row, std::move(why));
    noteAmounts(row, nullptr);
  }

  /// What a new row can't do without; empty when it has it.
  std::string missingOf(const PlannedRow& row) {
    const std::string& table = plan_.table.name;
    if (table == "articoli") return isMapped("reparto") || !request_.department.empty() ? "" : "manca Reparto";
    if (table == "varianti") return isGiven("nome", row) ? "" : "manca Nome";
    if (table == "valori") return isGiven("variante", row) ? "" : "manca Variante";
    if (table == "paesi") return isGiven("paese", row) ? "" : "manca Paese";
    return missingParent(row);
  }
  bool isMapped(std::string_view column) const {
    const auto index = plan_.table.columnIndex(column);
    return index && sourceOf(request_.mapping, *index);
  }
  bool isGiven(std::string_view column, const PlannedRow& row) const { return !textOf(column, row).empty(); }
  std::string_view textOf(std::string_view column, const PlannedRow& row) const {
    const auto index = plan_.table.columnIndex(column);
    const auto source = index ? sourceOf(request_.mapping, *index) : std::nullopt;
    return source ? trim(sheet_.cells.cell(row.row, *source).text) : std::string_view();
  }
  /// The department above a new one is in the catalogue, or in a row before.
  std::string missingParent(const PlannedRow& row) {
    const std::string_view path = textOf("percorso", row);
    const SplitPath split = splitPath(path);
    if (split.title.empty()) return "manca Percorso";
    const TableColumn& title = plan_.table.columns[*plan_.table.columnIndex("titolo")];
    if (characterCount(split.title) > title.size) return "Titolo: più di " + std::to_string(title.size) + " caratteri";
    const bool isKnown = split.parent.empty() || !plan_.names.department(split.parent).ID.empty() ||
                         newPaths_.contains(plainPath(split.parent));
    if (!isKnown) return missingDepartment(split.parent);
    newPaths_.insert(plainPath(path));
    return {};
  }

  static constexpr int firstKey = 2;  // index of the first key column in a row of the selection
  Database& catalogue_;
  TablePlan& plan_;
  const ReadSheet& sheet_;
  const TableRequest& request_;
  const TableStep& step_;
  CellReader reader_;
  std::vector<MappedColumn> keys_;
  bool isByID_ = false;
  std::unordered_map<std::string, std::size_t> byKey_;  // index in the rows of the plan
  std::unordered_set<std::string> newPaths_;            // plain paths of rows before
  std::vector<PlannedAmount> amounts_;                  // of the row that is being planned
};

std::string keyNames(const SheetTable& table) {
  std::string names;
  for (const TableKey& key : table.keys) names += (names.empty() ? "" : ", ") + key.caption;
  return names;
}

}  // namespace

TableSums TablePlan::sums() const {
  TableSums sums;
  for (const PlannedRow& row : rows) {
    if (row.fate == RowFate::LeftOut) ++sums.refused;
    if (row.fate == RowFate::Same) ++sums.same;
    if (row.fate == RowFate::New && row.isChosen) ++sums.added;
    if (row.fate == RowFate::Changed && row.isChosen) ++sums.changed;
  }
  sums.unlisted = static_cast<std::size_t>(std::ranges::count(unlisted, true, &UnlistedArticle::isChosen));
  return sums;
}

std::vector<AmountSums> TablePlan::amountSums() const {
  std::vector<AmountSums> sums;
  const auto addTo = [](std::optional<Money>& sum, Money amount) { sum = sum ? add(*sum, amount) : sum; };
  for (const PlannedAmount& amount : amounts) {
    const PlannedRow& row = rows[amount.row];
    if (!row.isChosen || (row.fate != RowFate::New && row.fate != RowFate::Changed)) continue;
    auto found = std::ranges::find(sums, amount.mapped, &AmountSums::mapped);
    if (found == sums.end()) found = sums.insert(sums.end(), AmountSums{amount.mapped});
    ++found->count;
    addTo(found->before, amount.before);
    addTo(found->after, amount.after);
  }
  return sums;
}

void TablePlan::choose(const ReadSheet& sheet, std::size_t row, bool isChosen) {
  rows[row].isChosen = isChosen;
  const auto index = table.columnIndex("percorso");
  const auto mapped = index ? std::ranges::find(columns, *index, &MappedColumn::column) : columns.end();
  if (mapped == columns.end() || rows[row].fate != RowFate::New) return;
  const auto pathOf = [&](const PlannedRow& each) {
    return plainPath(sheet.cells.cell(each.row, mapped->source).text);
  };
  const std::string path = pathOf(rows[row]);
  for (PlannedRow& other : rows) {
    if (other.fate != RowFate::New || other.isChosen == isChosen) continue;
    const std::string otherPath = pathOf(other);
    if (isChosen ? isBelow(path, otherPath) : isBelow(otherPath, path)) other.isChosen = isChosen;
  }
}

CsvReading signsOf(const ReadSheet& sheet, const SheetTable& table, const ColumnMapping& mapping,
                   const CsvChoice& choice) {
  CsvReading signs = sheet.reading.csv;
  NumberSigns numbers;
  for (std::size_t source = 0; source < mapping.size(); ++source) {
    if (!mapping[source] || !isNumberField(table.columns[*mapping[source]].field)) continue;
    for (std::size_t row = 1; row < sheet.cells.rows(); ++row) {
      const SheetCell cell = sheet.cells.cell(row, source);
      if (!cell.isNumber && !cell.text.empty()) numbers.see(cell.text);
    }
  }
  numbers.fill(signs, choice);
  return signs;
}

Result<TablePlan> planTable(Database& catalogue, SheetTable table, const ReadSheet& sheet, const TableRequest& request,
                            const TableStep& step) {
  auto names = CatalogueNames::read(catalogue);
  if (!names) return fail(names.error());
  const TableKey* const key = request.key.empty() ? keyFor(table, request.mapping) : table.key(request.key);
  const bool isMapped = key != nullptr && std::ranges::all_of(key->columns, [&](const std::string& column) {
                          return sourceOf(request.mapping, *table.columnIndex(column)).has_value();
                        });
  if (!isMapped) {
    return fail(ErrorKind::Malformed, table.name,
                "Nessuna colonna del foglio dice quali sono gli " + table.rows + ": serve " + keyNames(table),
                noKeyMapped);
  }
  const TableKey used = *key;
  TablePlan plan;
  plan.signs = signsOf(sheet, table, request.mapping, request.signs);
  plan.names = std::move(*names);
  for (std::size_t source = 0; source < request.mapping.size(); ++source) {
    if (request.mapping[source]) plan.columns.push_back({*request.mapping[source], source});
  }
  plan.table = std::move(table);
  if (auto run = TablePlanner(catalogue, plan, sheet, request, step).run(used); !run) return fail(run.error());
  return plan;
}

}  // namespace kv
