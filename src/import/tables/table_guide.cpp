#include "import/tables/table_guide.h"

#include <algorithm>

#include "import/sheets/sheet_number.h"
#include "import/tables/cell_reading.h"
#include "media/choice/picture_box.h"
#include "platform/files/files.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr std::size_t rowsWithExample = 50;  // looked at for a number
constexpr std::size_t mostOfCell = 200;      // characters of a cell
constexpr std::size_t longestNumber = 30;
constexpr std::string_view outWord = "fuori catalogo";  // the fate of an article that the sheet doesn't list

/// Whether a text is of digits with at least one sign that numbers have inside.
bool isSignedNumberText(std::string_view text) {
  if (text.size() > longestNumber) return false;
  const bool isNumber = text.find_first_not_of("0123456789.,' -+") == std::string_view::npos;
  const std::size_t sign = text.find_first_of(".,' ", 1);
  return isNumber && sign != std::string_view::npos && sign + 1 < text.size() && text.back() >= '0' &&
         text.back() <= '9';
}

/// Whether a column of the sheet fills one of numbers; the signs are found out from these alone.
bool isNumberColumn(const SheetTable& table, const ColumnMapping& mapping, std::size_t source) {
  return source < mapping.size() && mapping[source] && isNumberField(table.columns[*mapping[source]].field);
}

}  // namespace

TableGuide::TableGuide(Session& session, const Settings& settings, std::string department, std::string model)
    : session_(session), settings_(settings) {
  request.department = std::move(department);
  request.model = std::move(model);
  request.shopFolder = session.ShopFolder;
  request.fitsPictures = readLoadImage(settings).fits;
}

std::string TableGuide::read(const std::function<bool()>& goOn) {
  open_.reset();
  plan_.reset();
  SheetChoice watched = choice;
  watched.goOn = goOn;
  auto opened = openTableSheet(session_, settings_, path, tableName, watched);
  if (!opened && opened.error().kind == ErrorKind::Cancelled) return {};
  if (!opened) return openingFailureText(opened.error(), path);
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
  return readingText(open_->sheet.reading) + headerRowText(open_->headerRows, open_->sheet) +
         (open_->shape.empty() ? "" : ", esportazione " + std::string(open_->shape)) + ", " +
         std::to_string(rows == 0 ? 0 : rows - 1) + " righe" + numberNote();
}

std::string TableGuide::numberNote() const {
  const CellTable& cells = open_->sheet.cells;
  for (std::size_t row = 1; row < std::min(rowsWithExample, cells.rows()); ++row) {
    for (std::size_t i = 0; i < cells.width(row); ++i) {
      const SheetCell cell = cells.cell(row, i);
      const std::string_view text = trim(cell.text);
      const bool isExample = !cell.isNumber && !text.empty() && isNumberColumn(open_->table, request.mapping, i);
      if (!isExample || !isSignedNumberText(text)) continue;
      const auto number = sheetNumber(text, open_->sheet.reading.csv);
      return ", \"" + std::string(text) + "\" " +
             (number ? "vale " + replaceAll(*number, ".", ",") : "non è un numero");
    }
  }
  return {};
}

bool TableGuide::isNumber(std::size_t row, std::size_t column) const {
  const SheetCell cell = open_->sheet.cells.cell(row, column);
  const bool mayBe = cell.text.size() <= longestNumber && isNumberColumn(open_->table, request.mapping, column);
  return cell.isNumber || (mayBe && sheetNumber(cell.text, open_->sheet.reading.csv));
}

std::vector<std::vector<std::string>> TableGuide::firstRows(std::size_t count) const {
  std::vector<std::vector<std::string>> rows;
  if (!open_) return rows;
  const CellTable& cells = open_->sheet.cells;
  for (std::size_t row = 0; row < std::min(count, cells.rows()); ++row) {
    rows.emplace_back();
    for (std::size_t i = 0; i < cells.width(); ++i)
      rows.back().push_back(beginningOf(cells.cell(row, i).text, mostOfCell));
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
    if (!text.empty()) return beginningOf(text, mostOfCell);
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
  if (!plan && plan.error().kind == ErrorKind::Cancelled) return {};
  if (!plan) return planFailureText(plan.error(), path);
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
  for (std::size_t i = 0; i < plan_->unlisted.size(); ++i) {
    if (filter == RowFilter::All || filter == RowFilter::Unlisted) rows.push_back(plan_->rows.size() + i);
  }
  return rows;
}

const UnlistedArticle* TableGuide::unlistedAt(std::size_t index) const {
  return index < plan_->rows.size() ? nullptr : &plan_->unlisted[index - plan_->rows.size()];
}

GuideRow TableGuide::row(std::size_t index) const {
  if (const UnlistedArticle* const article = unlistedAt(index)) {
    const auto label = unlistedLabel(session_.catalogue, *article);
    return {"-", std::string(outWord), label.value_or(""), "il foglio non lo elenca", true, article->isChosen};
  }
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
  if (unlistedAt(index) != nullptr) {
    plan_->unlisted[index - plan_->rows.size()].isChosen = isChosen;
  } else if (row(index).canChoose) {
    plan_->choose(open_->sheet, index, isChosen);
  }
}

std::vector<ShownChange> TableGuide::changes(std::size_t index) const {
  if (unlistedAt(index) != nullptr) return {{"Fuori catalogo", "no", "sì"}};
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
