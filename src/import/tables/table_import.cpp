#include "import/tables/table_import.h"

#include "platform/files/files.h"

namespace kv {
namespace {

constexpr std::string_view writingRows = "Importazione del foglio...";
constexpr std::string_view notImported = "Non è stato possibile importare il foglio";
constexpr std::size_t rowsPerTurn = 64;  // between two looks at the user

/// Writes the rows of a plan; Cancelled when the user ends it.
Result<> writePlanned(Environment& env, TableWriter& writer, const TablePlan& plan) {
  for (std::size_t i = 0; i < plan.rows.size(); ++i) {
    if (i % rowsPerTurn == 0) {
      env.user.progress({writingRows, static_cast<double>(i), static_cast<double>(plan.rows.size())});
      if (!env.user.yield()) return fail(ErrorKind::Cancelled, "", "cancelled");
    }
    if (auto done = writer.write(plan.rows[i]); !done) return done;
  }
  return writer.writeUnlisted();
}

void tellTableFailure(Environment& env, const Error& error) {
  if (error.kind == ErrorKind::Told) return;
  env.user.message(std::string(notImported) + "\n\n" + error.what, Icon::Critical);
}

std::string mappingText(const OpenSheet& open) {
  std::string text;
  const auto headers = open.sheet.headers();
  for (std::size_t i = 0; i < headers.size(); ++i) {
    text += "  " + headers[i] + " = " +
            (open.mapping[i] ? open.table.columns[*open.mapping[i]].name : std::string("(non importata)")) + "\n";
  }
  return text;
}

}  // namespace

Result<OpenSheet> openTableSheet(Session& session, const Settings& settings, const std::string& path,
                                 std::string_view table, const SheetChoice& choice) {
  auto columns = sheetTable(session.catalogue, session.languageCount, table);
  if (!columns) return fail(columns.error());
  auto sheet = readSheetFile(path, choice);
  if (!sheet) return fail(sheet.error());
  const auto headers = sheet->headers();
  auto mapping = keptMapping(settings, *columns, headers);
  if (!mapping) mapping = mappingByHeaders(*columns, headers);
  OpenSheet open{path, std::move(*sheet), std::move(*columns), std::move(*mapping)};
  open.sheet.reading.csv = signsOf(open.sheet, open.table, open.mapping, choice.csv);
  return open;
}

TableEnd importPlannedTable(Session& session, Environment& env, TablePlan& plan, const ReadSheet& sheet,
                            const TableRequest& request) {
  if (auto begun = session.catalogue.begin(); !begun) {
    tellTableFailure(env, begun.error());
    return TableEnd::Failed;
  }
  PictureTaking pictures(env.settings, env.user, request.shopFolder, request.sheetFolder);
  Result<> written;
  {
    TableWriter writer({session.catalogue, plan, sheet, request, pictures});
    written = writePlanned(env, writer, plan);
  }
  if (!written) {
    session.catalogue.rollback();
  } else {
    written = session.catalogue.commit();  // one that fails has rolled back
  }
  env.user.progress({});
  if (written) return TableEnd::Done;
  pictures.drop();
  if (written.error().kind == ErrorKind::Cancelled) return TableEnd::Cancelled;
  tellTableFailure(env, written.error());
  return TableEnd::Failed;
}

std::string sumsText(const TablePlan& plan) {
  const TableSums sums = plan.sums();
  const auto count = [](std::size_t number) { return std::to_string(number); };
  std::string text = plan.table.caption + ": " + count(sums.added) + " nuovi, " + count(sums.changed) +
                     " modificati, " + count(sums.same) + " invariati, " + count(sums.refused) + " tralasciati";
  if (sums.unlisted > 0) text += ", " + count(sums.unlisted) + " fuori catalogo";
  return text;
}

Result<std::string> tablePreviewText(Session& session, const OpenSheet& open, const TablePlan& plan) {
  SheetReading reading = open.sheet.reading;
  reading.csv = plan.signs;
  std::string text =
      std::string(baseName(open.path)) + ": " + readingText(reading) + "\n" + mappingText(open) + sumsText(plan) + "\n";
  for (const PlannedRow& row : plan.rows) {
    if (row.fate == RowFate::Same) continue;
    text += "riga " + std::to_string(open.sheet.cells.line(row.row)) + "\t" + fateWord(row.fate) + "\t" +
            rowLabel(plan, open.sheet, row) + (row.reason.empty() ? "" : "\t" + row.reason) + "\n";
    if (row.fate != RowFate::Changed) continue;
    const auto changes = shownChanges(session.catalogue, plan, open.sheet, row);
    if (!changes) return fail(changes.error());
    for (const ShownChange& change : *changes) {
      text += "\t" + change.column + ": \"" + change.before + "\" -> \"" + change.after + "\"\n";
    }
  }
  return text;
}

}  // namespace kv
