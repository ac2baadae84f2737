// Writing by libxlsxwriter, which keeps one row in memory and puts the rest into a file of its own.
#include <xlsxwriter.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <optional>

#include "platform/files/files.h"
#include "platform/files/working_folder.h"
#include "platform/sheet/cell_value.h"
#include "platform/sheet/spreadsheet.h"

namespace kv {

struct SheetWriter::State {
  std::string path;
  WorkingFolder folder;
  std::string written;
  lxw_workbook* workbook = nullptr;  // gone once it is closed
  lxw_worksheet* sheet = nullptr;
  lxw_row_t next = 0;
  // Made when the first cell of the kind is written; the workbook owns them.
  lxw_format* amount = nullptr;
  lxw_format* moment = nullptr;
};

namespace {

/// The format of this code, made where there is none yet.
lxw_format* formatIn(lxw_workbook* workbook, lxw_format*& kept, const char* code) {
  if (kept == nullptr) {
    kept = workbook_add_format(workbook);
    format_set_num_format(kept, code);
  }
  return kept;
}

/// The number of the digits of a text from `at` on; nothing when one of them is none.
std::optional<int> digitsOf(std::string_view text, std::size_t at, std::size_t count) {
  int value = 0;
  const char* end = text.data() + std::min(at + count, text.size());
  const auto [stop, error] = std::from_chars(text.data() + std::min(at, text.size()), end, value);
  if (at + count > text.size() || error != std::errc() || stop != end || value < 0) return std::nullopt;
  return value;
}

/// The day at the start of a text; nothing when there is none, or one that isn't.
std::optional<std::chrono::year_month_day> dayOf(std::string_view text) {
  const auto year = digitsOf(text, 0, 4), month = digitsOf(text, 5, 2), day = digitsOf(text, 8, 2);
  if (!year || !month || !day) return {};
  const std::chrono::year_month_day date(std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*day)));
  return date.ok() ? std::optional(date) : std::nullopt;
}

/// "2024-05-31 13:45:00" or "2024-05-31" as a date of the library; nothing for any other text, or a day that isn't.
std::optional<lxw_datetime> momentOf(std::string_view text) {
  constexpr std::size_t dayLength = 10, momentLength = 19;
  constexpr int firstYear = 1900;  // of what a sheet can hold
  if (text.size() != dayLength && text.size() != momentLength) return {};
  const auto date = dayOf(text);
  if (!date || date->year() < std::chrono::year(firstYear)) return {};
  lxw_datetime moment{
      int{date->year()}, static_cast<int>(unsigned{date->month()}), static_cast<int>(unsigned{date->day()}), 0, 0, 0};
  if (text.size() == dayLength) return moment;
  const auto hour = digitsOf(text, 11, 2), minute = digitsOf(text, 14, 2), second = digitsOf(text, 17, 2);
  if (!hour || !minute || !second) return {};
  moment.hour = *hour;
  moment.min = *minute;
  moment.sec = *second;
  return moment;
}

}  // namespace

SheetWriter::SheetWriter(std::unique_ptr<State> state) : state_(std::move(state)) {}
SheetWriter::SheetWriter(SheetWriter&&) noexcept = default;
SheetWriter::~SheetWriter() {
  if (state_ && state_->workbook != nullptr) ignore(workbook_close(state_->workbook), "it was not finished");
}

Result<SheetWriter> SheetWriter::create(const std::string& path, const std::string& sheetName) {
  if (!folderExists(std::string(folderOf(absolutePath(path))))) return fail(ErrorKind::Missing, path, "no folder");
  auto folder = WorkingFolder::make();
  if (!folder) return fail(folder.error());
  auto state = std::make_unique<State>(State{path, std::move(*folder), {}});
  state->written = joinPath(state->folder.path(), "foglio.xlsx");
  std::string temporary = state->folder.path();
  lxw_workbook_options options{};
  options.constant_memory = LXW_TRUE;
  options.tmpdir = temporary.data();
  options.use_zip64 = LXW_TRUE;
  state->workbook = workbook_new_opt(state->written.c_str(), &options);
  if (state->workbook != nullptr) state->sheet = workbook_add_worksheet(state->workbook, sheetName.c_str());
  if (state->sheet == nullptr) return fail(ErrorKind::Other, path, "no workbook");
  worksheet_freeze_panes(state->sheet, 1, 0);
  return SheetWriter(std::move(state));
}

Result<> SheetWriter::row(const std::vector<SheetCell>& cells) {
  State& state = *state_;
  const lxw_row_t row = state.next++;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const auto column = static_cast<lxw_col_t>(i);
    if (cells[i].text.empty()) continue;
    const std::string text = withEscapes(cells[i].text);
    double value = 0;
    if (cells[i].isNumber) ignore(std::from_chars(text.data(), text.data() + text.size(), value).ec, "digits");
    const lxw_error error = cells[i].isNumber ? worksheet_write_number(state.sheet, row, column, value, nullptr)
                                              : worksheet_write_string(state.sheet, row, column, text.c_str(), nullptr);
    if (error == LXW_NO_ERROR) continue;
    return fail(ErrorKind::Malformed, state.path, lxw_strerror(error), TooLargeSheet);
  }
  return {};
}

Result<> SheetWriter::dressedRow(const std::vector<DressedCell>& cells) {
  State& state = *state_;
  const lxw_row_t row = state.next++;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const auto column = static_cast<lxw_col_t>(i);
    const DressedCell& cell = cells[i];
    if (cell.text.empty()) continue;
    lxw_error error = LXW_NO_ERROR;
    auto moment = cell.look == CellLook::Moment ? momentOf(cell.text) : std::nullopt;
    if (cell.look == CellLook::Number || cell.look == CellLook::Amount) {
      double value = 0;
      ignore(std::from_chars(cell.text.data(), cell.text.data() + cell.text.size(), value).ec, "digits");
      lxw_format* format = cell.look == CellLook::Amount ? formatIn(state.workbook, state.amount, "#,##0.00") : nullptr;
      error = worksheet_write_number(state.sheet, row, column, value, format);
    } else if (moment) {
      lxw_format* format = formatIn(state.workbook, state.moment, "dd/mm/yyyy hh:mm");
      error = worksheet_write_datetime(state.sheet, row, column, &*moment, format);
    } else {
      error = worksheet_write_string(state.sheet, row, column, withEscapes(cell.text).c_str(), nullptr);
    }
    if (error != LXW_NO_ERROR) return fail(ErrorKind::Malformed, state.path, lxw_strerror(error), TooLargeSheet);
  }
  return {};
}

void SheetWriter::setWidths(const std::vector<int>& characters) {
  for (std::size_t i = 0; i < characters.size(); ++i) {
    const auto column = static_cast<lxw_col_t>(i);
    ignore(worksheet_set_column(state_->sheet, column, column, characters[i], nullptr), "the usual width does");
  }
}

Result<> SheetWriter::finish() {
  State& state = *state_;
  const lxw_error error = workbook_close(std::exchange(state.workbook, nullptr));
  if (error != LXW_NO_ERROR) {
    return fail(error == LXW_ERROR_CREATING_XLSX_FILE ? ErrorKind::ReadOnly : ErrorKind::Full, state.path,
                lxw_strerror(error));
  }
  return copyFile(state.written, state.path);
}

}  // namespace kv
