#include "import/tables/table_guide.h"

#include <algorithm>

#include "platform/files/files.h"

namespace kv {

TableGuide::TableGuide(Session& session, const Settings& settings, std::string department, std::string model)
    : session_(session), settings_(settings) {
  request.department = std::move(department);
  request.model = std::move(model);
  request.shopFolder = session.ShopFolder;
}

std::string TableGuide::read() {
  open_.reset();
  plan_.reset();
  auto opened = openTableSheet(session_, settings_, path, tableName, choice);
  if (!opened) return sheetFailureText(opened.error(), path);
  open_ = std::move(*opened);
  request.mapping = open_->mapping;
  request.key = usualKey();
  request.sheetFolder = folderOf(path);
  request.signs = choice.csv;
  return {};
}

std::string TableGuide::reading() const {
  if (!open_) return {};
  const std::size_t rows = open_->sheet.cells.rows();
  return readingText(open_->sheet.reading) +
         (open_->shape.empty() ? "" : ", esportazione " + std::string(open_->shape)) + ", " +
         std::to_string(rows == 0 ? 0 : rows - 1) + " righe";
}

std::vector<std::vector<std::string>> TableGuide::firstRows(std::size_t count) const {
  std::vector<std::vector<std::string>> rows;
  if (!open_) return rows;
  const CellTable& cells = open_->sheet.cells;
  for (std::size_t row = 0; row < std::min(count, cells.rows()); ++row) {
    rows.emplace_back();
    for (std::size_t i = 0; i < cells.width(); ++i) rows.back().emplace_back(cells.cell(row, i).text);
  }
  return rows;
}

void TableGuide::map(std::size_t source, std::string_view column) {
  const auto index = open_->table.columnIndex(column);
  if (index) std::ranges::replace(request.mapping, index, std::optional<std::size_t>());
  request.mapping[source] = index;
}

std::string TableGuide::example(std::size_t source) const {
  const CellTable& cells = open_->sheet.cells;
  for (std::size_t row = 1; row < cells.rows(); ++row) {
    const std::string_view text = cells.cell(row, source).text;
    if (!text.empty()) return std::string(text);
  }
  return {};
}

std::string TableGuide::usualKey() const {
  const TableKey* const key = keyFor(open_->table, request.mapping);
  return key == nullptr ? std::string() : key->name;
}

std::string TableGuide::makePlan(const TableStep& step) {
  plan_.reset();
  if (!open_) return "Scegliere il foglio da importare";
  auto plan = planTable(session_.catalogue, open_->table, open_->sheet, request, step);
  if (!plan) return plan.error().what;
  plan_ = std::move(*plan);
  return {};
}

std::vector<std::size_t> TableGuide::rowsOf(RowFilter filter) const {
  std::vector<std::size_t> rows;
  if (!plan_) return rows;
  for (std::size_t i = 0; i < plan_->rows.size(); ++i) {
    const bool isShown = filter == RowFilter::All || static_cast<int>(plan_->rows[i].fate) ==
                                                         static_cast<int>(filter) - static_cast<int>(RowFilter::New);
    if (isShown) rows.push_back(i);
  }
  return rows;
}

GuideRow TableGuide::row(std::size_t index) const {
  const PlannedRow& row = plan_->rows[index];
  const bool canChoose = row.fate == RowFate::New || row.fate == RowFate::Changed;
  return {std::to_string(open_->sheet.cells.line(row.row)),
          fateWord(row.fate),
          rowLabel(*plan_, open_->sheet, row),
          row.reason,
          canChoose,
          canChoose && row.isChosen};
}

void TableGuide::choose(std::size_t index, bool isChosen) {
  if (row(index).canChoose) plan_->rows[index].isChosen = isChosen;
}

std::vector<ShownChange> TableGuide::changes(std::size_t index) const {
  auto changes = shownChanges(session_.catalogue, *plan_, open_->sheet, plan_->rows[index]);
  return changes ? std::move(*changes) : std::vector<ShownChange>();
}

std::string TableGuide::sums() const {
  if (!plan_) return {};
  const std::string amounts = amountsText(*plan_);
  return sumsText(*plan_) + (amounts.empty() ? "" : "\n" + amounts);
}

bool TableGuide::canImport() const {
  if (!plan_) return false;
  const TableSums sums = plan_->sums();
  return sums.added + sums.changed + sums.unlisted > 0;
}

}  // namespace kv
