// korvane-cli import-table and export-table.
#include "shell/cli/table_command.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "import/tables/cell_reading.h"
#include "import/tables/export_shapes.h"
#include "import/tables/shown_plan.h"
#include "import/tables/table_export.h"
#include "import/tables/table_import.h"
#include "media/choice/picture_box.h"
#include "platform/files/files.h"
#include "platform/ports/failure_text.h"
#include "platform/text/text.h"
#include "shell/cli/cli_session.h"
#include "store/shop/session_facts.h"

namespace kv {
namespace {

/// A word of --mode.
struct ModeWord {
  std::string_view word;
  TableMode mode;
  bool unlistedOut;
};
constexpr std::array<ModeWord, 4> modeWords{{{"all", TableMode::AddAndChange, false},
                                             {"change", TableMode::OnlyChange, false},
                                             {"add", TableMode::OnlyAdd, false},
                                             {"sync", TableMode::AddAndChange, true}}};

CliOutcome tableRefused(Environment& env, const std::string& text, CliOutcome outcome = CliOutcome::Failed) {
  env.user.message(text, Icon::Exclamation);
  return outcome;
}

/// Tells why nothing can be imported; a user who ended it knows.
CliOutcome notRead(Environment& env, const Error& error, const std::string& text) {
  return error.kind == ErrorKind::Cancelled ? CliOutcome::Cancelled : tableRefused(env, text);
}

CliOutcome wrongValue(Environment& env, const std::string& option, const std::string& value) {
  return tableRefused(env, "valore non ammesso per " + option + ": " + value, CliOutcome::WrongUsage);
}

std::string tableName(const CommandLine& line) { return line.has("--table") ? line.option("--table") : "articoli"; }

bool isTableName(const std::string& name) {
  const auto names = sheetTableNames();
  return std::ranges::find(names, name) != names.end();
}

/// Mode and key of the arguments; nothing when one of them is wrong, which the user is told.
std::optional<TableRequest> tableRequestOf(const CommandLine& line, Environment& env) {
  TableRequest request;
  request.key = line.option("--key");
  const std::string mode = line.has("--mode") ? line.option("--mode") : "all";
  const auto found = std::ranges::find(modeWords, mode, &ModeWord::word);
  if (found == modeWords.end()) {
    ignore(wrongValue(env, "--mode", mode), "nothing tells the same");
    return std::nullopt;
  }
  request.mode = found->mode;
  request.unlistedOut = found->unlistedOut && tableName(line) == "articoli";
  return request;
}

/// Whether a word may follow --shape; none is said when it is empty.
bool isShapeChoice(const std::string& shape) {
  return shape.empty() || shape == "no" || !exportShapeCaption(shape).empty();
}

/// What an import works with: what is wanted, the sheet, and what would happen.
struct TableJob {
  const TableRequest& request;
  OpenSheet& sheet;
  TablePlan& plan;
};

/// Puts the lines of --map over the columns that were found; false when the user has been told why not.
bool mapColumns(const CommandLine& line, Environment& env, OpenSheet& open) {
  if (!line.has("--map")) return true;
  const std::string path = absolutePath(line.option("--map"));
  constexpr std::size_t mostBytes = std::size_t{1} << 20, mostShown = 80;
  const auto lines = readStart(path, mostBytes);
  // An editor may have put the mark of an encoding at its start.
  const std::string text = lines ? decodedCsv(*lines, csvEncodingOf(*lines)) : std::string();
  const auto mapped = lines ? applyMapping(text, open.table, open.sheet.headers(), open.mapping) : Result<>();
  if (lines && mapped) return true;
  ignore(tableRefused(env, lines ? "Riga non valida in " + path + ": " + beginningOf(mapped.error().what, mostShown)
                                 : "Il file " + path + " non può essere letto"),
         "nothing tells the same");
  return false;
}

void printWritten(const OpenSheet& open, const TablePlan& plan, std::ostream& out) {
  out << sumsText(plan) << '\n';
  for (const PlannedRow& row : plan.rows) {
    if (row.fate != RowFate::LeftOut) continue;
    out << "riga " << open.sheet.cells.line(row.row) << '\t' << rowLabel(plan, open.sheet, row) << '\t' << row.reason
        << '\n';
  }
}

/// Shows what the import would do, or does it.
CliOutcome previewOrImport(CliSession& open, const CommandLine& line, Environment& env, const TableJob& job,
                           std::ostream& out) {
  if (line.has("--dry-run")) {
    const auto text = tablePreviewText(open.session, job.sheet, job.plan);
    if (!text) return tableRefused(env, failureText(text.error()));
    out << *text;
    return CliOutcome::Done;
  }
  const TableEnd end = importPlannedTable(open.session, env, job.plan, job.sheet.sheet, job.request);
  if (end != TableEnd::Done) return end == TableEnd::Cancelled ? CliOutcome::Cancelled : CliOutcome::Failed;
  printWritten(job.sheet, job.plan, out);
  return CliOutcome::Done;
}

/// The number after --header; nothing when there is none, or it is none.
std::optional<std::uint32_t> headerLineOf(const CommandLine& line) {
  const std::string text = line.option("--header");
  std::uint32_t number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool isNumber = !text.empty() && read.ec == std::errc() && read.ptr == text.data() + text.size();
  return isNumber ? std::optional(number) : std::nullopt;
}

/// Whether the line of the headers that was asked for isn't one of the sheet.
bool isHeaderLost(const CommandLine& line, const SheetChoice& choice, const OpenSheet& open) {
  return line.has("--header") && open.sheet.cells.line(0) != choice.headerLine;
}

CliOutcome runTableImport(CliSession& open, const CommandLine& line, Environment& env, std::ostream& out) {
  auto request = tableRequestOf(line, env);
  if (!request) return CliOutcome::WrongUsage;
  const std::string path = absolutePath(line.object);
  SheetChoice choice;
  choice.shape = line.option("--shape");
  if (!isShapeChoice(choice.shape)) return wrongValue(env, "--shape", choice.shape);
  choice.headerLine = headerLineOf(line);
  choice.goOn = [&env] { return env.user.yield(); };
  auto sheet = openTableSheet(open.session, env.settings, path, tableName(line), choice);
  if (!sheet) return notRead(env, sheet.error(), openingFailureText(sheet.error(), path));
  if (isHeaderLost(line, choice, *sheet)) return wrongValue(env, "--header", line.option("--header"));
  if (!request->key.empty() && sheet->table.key(request->key) == nullptr) {
    return wrongValue(env, "--key", request->key);
  }
  if (!mapColumns(line, env, *sheet)) return CliOutcome::Failed;
  request->mapping = sheet->mapping;
  request->shopFolder = open.session.ShopFolder;
  request->sheetFolder = folderOf(path);
  request->fitsPictures = readLoadImage(env.settings).fits;
  request->model = open.session.models.empty() ? std::string(fallbackModel) : open.session.models.front();
  auto plan = planTable(open.session.catalogue, sheet->table, sheet->sheet, *request,
                        [&env](std::size_t, std::size_t) { return env.user.yield(); });
  if (!plan) return notRead(env, plan.error(), planFailureText(plan.error(), path));
  return previewOrImport(open, line, env, {*request, *sheet, *plan}, out);
}

std::vector<std::string> columnNames(std::string_view text) {
  std::vector<std::string> names;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(','), text.size());
    const std::string_view name = trim(text.substr(0, end));
    if (!name.empty()) names.emplace_back(name);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return names;
}

}  // namespace

CliOutcome importTable(const std::string& shop, const CommandLine& line, Environment& env, std::ostream& out) {
  if (!isTableName(tableName(line))) return wrongValue(env, "--table", tableName(line));
  CliSession open(env);
  if (!(line.has("--dry-run") ? open.openToLook(shop) : open.open(shop))) return CliOutcome::Failed;
  return runTableImport(open, line, env, out);
}

CliOutcome exportTableOf(const std::string& shop, const CommandLine& line, Environment& env, std::ostream& out) {
  if (!isTableName(tableName(line))) return wrongValue(env, "--table", tableName(line));
  CliSession open(env);
  if (!open.openToLook(shop)) return CliOutcome::Failed;
  const auto table = sheetTable(open.session.catalogue, open.session.languageCount, tableName(line));
  if (!table) return tableRefused(env, failureText(table.error()));
  TableExport what;
  what.columns = columnNames(line.option("--columns"));
  if (line.has("--columns") && what.columns.empty()) return wrongValue(env, "--columns", line.option("--columns"));
  what.goOn = [&](std::size_t, std::size_t) { return env.user.yield(); };
  const std::string path = absolutePath(line.object);
  const auto written = exportTable(open.session.catalogue, *table, path, what);
  if (written) {
    out << path << ": " << *written << ' ' << table->rows << '\n';
    return CliOutcome::Done;
  }
  const Error& error = written.error();
  if (error.kind == ErrorKind::Missing && error.where == table->name) {
    return wrongValue(env, "--columns", error.what);
  }
  if (error.kind == ErrorKind::Cancelled) return CliOutcome::Cancelled;
  return tableRefused(env, sheetWritingFailureText(error, path));
}

}  // namespace kv
