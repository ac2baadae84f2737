// Writing by libxlsxwriter, which keeps one row in memory and puts the rest into a file of its own.
#include <xlsxwriter.h>

#include <charconv>

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
};

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
