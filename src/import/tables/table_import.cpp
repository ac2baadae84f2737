#include "import/tables/table_import.h"

#include <algorithm>

#include "import/tables/cell_reading.h"
#include "import/tables/export_shapes.h"
#include "import/tables/shown_plan.h"
#include "platform/files/files.h"
#include "platform/ports/failure_text.h"

namespace kv {
namespace {

constexpr std::string_view writingRows = "Importazione del foglio...";
constexpr std::string_view ofCatalogue = "catalogo";  // where a failure is that isn't the sheet's
constexpr std::string_view notImported = "Non è stato possibile importare il foglio";

/// How many rows are written between two looks at the user. A picture that is taken over may take seconds.
std::size_t rowsPerTurnOf(const TablePlan& plan) {
  constexpr std::size_t usual = 64;
  const auto isPicture = [&](const MappedColumn& mapped) {
    return plan.table.columns[mapped.column].field == CellField::Picture;
  };
  return std::ranges::any_of(plan.columns, isPicture) ? 1 : usual;
}

/// Writes the rows of a plan; Cancelled when the user ends it.
Result<> writePlanned(Environment& env, TableWriter& writer, const TablePlan& plan) {
  const std::size_t rowsPerTurn = rowsPerTurnOf(plan);
  for (std::size_t i = 0; i < plan.rows.size(); ++i) {
    if (i % rowsPerTurn == 0) {
      env.user.progress({writingRows, static_cast<double>(i), static_cast<double>(plan.rows.size())});
      if (!env.user.yield()) return fail(ErrorKind::Cancelled, "", "cancelled");
    }
    if (auto done = writer.write(plan.rows[i]); !done) return done;
  }
  return writer.finish();
}

void showTableError(Environment& env, const Error& error) {
  if (error.kind == ErrorKind::Told) return;
  env.user.message(std::string(notImported) + "\n\n" + failureText(error), Icon::Critical);
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

/// Turns the cells of a known export into ours, and finds the columns.
Result<> findColumns(OpenSheet& open, const Settings& settings, const SheetChoice& choice) {
  ColumnMapping byShape;
  const bool isArticles = open.table.name == "articoli" && choice.shape != "no";
  const std::string asked = choice.shape.empty() ? std::string(exportShapeOf(open.sheet.headers())) : choice.shape;
  if (isArticles && !asked.empty()) {
    auto mapping = applyExportShape(asked, open.table, choice, open.sheet);
    if (!mapping) return fail(mapping.error());
    byShape = std::move(*mapping);
    open.shape = exportShapeCaption(asked);
  }
  const auto headers = open.sheet.headers();
  auto kept = keptMapping(settings, open.table, headers);
  const bool isShaped = !open.shape.empty();
  open.mapping = kept ? std::move(*kept) : isShaped ? std::move(byShape) : mappingByHeaders(open.table, headers);
  return {};
}

/// Reads a text again with each other separator; it stays as it was read where none of them names columns.
Result<> tryOtherSeparators(OpenSheet& open, const Settings& settings, SheetChoice choice, HeaderFound& found) {
  const char before = open.sheet.reading.csv.separator;
  for (const char separator : csvSeparators) {
    if (separator == before) continue;
    choice.csv.separator = separator;
    auto sheet = readSheetFile(open.path, choice);
    if (!sheet && sheet.error().kind == ErrorKind::Cancelled) return fail(sheet.error());
    if (!sheet) continue;
    const HeaderFound other = headerRowOf(open.table, *sheet, settings);
    if (other.named < fewestNames || other.named <= found.named) continue;
    open.sheet = std::move(*sheet);
    found = other;
  }
  return {};
}

/// Leaves out the rows above the headers.
Result<> findHeaders(OpenSheet& open, const Settings& settings, const SheetChoice& choice) {
  HeaderFound found = headerRowOf(open.table, open.sheet, settings);
  const bool mayBeAnother = open.sheet.reading.form == SheetForm::Text && !choice.csv.separator;
  if (mayBeAnother && found.named < fewestNames) {
    if (auto tried = tryOtherSeparators(open, settings, choice, found); !tried) return tried;
  }
  open.headerRows = headerRowsOf(open.sheet);
  open.sheet.cells.dropRows(choice.headerLine ? rowOfLine(open.sheet, *choice.headerLine).value_or(found.row)
                                              : found.row);
  return {};
}

std::string shownSum(std::optional<Money> sum) { return sum ? shownAmount(*sum) : "(troppo grande)"; }

}  // namespace

Result<OpenSheet> openTableSheet(Session& session, const Settings& settings, const std::string& path,
                                 std::string_view table, const SheetChoice& choice) {
  auto columns = sheetTable(session.catalogue, session.languageCount, table);
  if (!columns) return fail(columns.error().kind, std::string(ofCatalogue), columns.error().what);
  // The signs of numbers are those of the mapped columns alone, which are known below.
  SheetChoice withSigns = choice;
  if (!withSigns.csv.decimalSeparator) withSigns.csv.decimalSeparator = ',';
  if (!withSigns.csv.thousands) withSigns.csv.thousands = '\0';
  auto sheet = readSheetFile(path, withSigns);
  if (!sheet) return fail(sheet.error());
  OpenSheet open{path, std::move(*sheet), std::move(*columns), {}, {}, {}};
  if (auto headers = findHeaders(open, settings, withSigns); !headers) return fail(headers.error());
  if (auto mapped = findColumns(open, settings, choice); !mapped) return fail(mapped.error());
  open.sheet.reading.csv = signsOf(open.sheet, open.table, open.mapping, choice.csv);
  return open;
}

std::string openingFailureText(const Error& error, const std::string& path) {
  return error.where == ofCatalogue ? planFailureText(error, path) : sheetFailureText(error, path);
}

std::string planFailureText(const Error& error, const std::string& path) {
  if (error.number == noKeyMapped) return error.what;
  return "Non è stato possibile confrontare il foglio \"" + std::string(baseName(path)) + "\" col catalogo\n\n" +
         failureText(error);
}

TableEnd importPlannedTable(Session& session, Environment& env, TablePlan& plan, const ReadSheet& sheet,
                            const TableRequest& request) {
  if (auto begun = session.catalogue.begin(); !begun) {
    showTableError(env, begun.error());
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
  showTableError(env, written.error());
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

std::string amountsText(const TablePlan& plan) {
  std::string text;
  for (const AmountSums& sums : plan.amountSums()) {
    text += (text.empty() ? "" : "\n") + plan.table.columns[plan.columns[sums.mapped].column].italian + ": " +
            std::to_string(sums.count) + (sums.count == 1 ? " importo cambia" : " importi cambiano") +
            ", in tutto da " + shownSum(sums.before) + " a " + shownSum(sums.after);
  }
  return text;
}

namespace {

/// A row of the sheet that is not the catalogue's already, with what changes in it, on lines of their own.
Result<std::string> plannedText(Session& session, const OpenSheet& open, const TablePlan& plan, const PlannedRow& row) {
  if (row.fate == RowFate::Same) return std::string();
  std::string text = "riga " + std::to_string(open.sheet.cells.line(row.row)) + "\t" + fateWord(row.fate) + "\t" +
                     rowLabel(plan, open.sheet, row) + (row.reason.empty() ? "" : "\t" + row.reason) + "\n";
  if (row.fate != RowFate::Changed) return text;
  const auto changes = shownChanges(session.catalogue, plan, open.sheet, row);
  if (!changes) return fail(changes.error());
  for (const ShownChange& change : *changes) {
    text += "\t" + change.column + ": \"" + change.before + "\" -> \"" + change.after + "\"\n";
  }
  return text;
}

}  // namespace

Result<std::string> tablePreviewText(Session& session, const OpenSheet& open, const TablePlan& plan) {
  SheetReading reading = open.sheet.reading;
  reading.csv = plan.signs;
  const std::string amounts = amountsText(plan);
  std::string text = std::string(baseName(open.path)) + ": " + readingText(reading) +
                     headerRowText(open.headerRows, open.sheet) +
                     (open.shape.empty() ? "" : ", esportazione " + std::string(open.shape)) + "\n" +
                     mappingText(open) + sumsText(plan) + "\n" + amounts + (amounts.empty() ? "" : "\n");
  for (const PlannedRow& row : plan.rows) {
    const auto planned = plannedText(session, open, plan, row);
    if (!planned) return fail(planned.error());
    text += *planned;
  }
  for (const UnlistedArticle& article : plan.unlisted) {
    const auto label = unlistedLabel(session.catalogue, article);
    if (!label) return fail(label.error());
    if (article.isChosen) text += "fuori catalogo\t" + *label + "\n";
  }
  return text;
}

}  // namespace kv
