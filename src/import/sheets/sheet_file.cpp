#include "import/sheets/sheet_file.h"

#include <algorithm>

#include "import/sheets/number_signs.h"
#include "platform/files/files.h"
#include "platform/ports/failure_text.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t exactDigits = 15;  // of a number in a cell

Result<ReadSheet> readTextFile(const std::string& path, const SheetChoice& choice) {
  const auto stamp = fileStamp(path);
  if (!stamp) return fail(stamp.error());
  if (stamp->size > choice.limits.textBytes) return fail(ErrorKind::Malformed, path, "too large", TooLargeSheet);
  const auto bytes = readBytes(path);
  if (!bytes) return fail(bytes.error());
  ReadSheet sheet;
  auto cells = readCsv(*bytes, choice.csv, choice.limits, sheet.reading.csv, choice.goOn);
  if (!cells) return fail(cells.error().kind, path, cells.error().what, cells.error().number);
  sheet.cells = std::move(*cells);
  return sheet;
}

Result<ReadSheet> readPackedFile(const std::string& path, SheetForm form, const SheetChoice& choice) {
  auto content = readSpreadsheet(path, form, {choice.sheet, choice.limits, choice.goOn});
  if (!content) return fail(content.error());
  ReadSheet sheet{{form, choice.sheet, {}}, std::move(content->names), std::move(content->cells)};
  CsvReading& signs = sheet.reading.csv;
  // A feed has prices as "12.50 EUR", so that "," is no decimal separator where nothing tells.
  if (form == SheetForm::Feed) signs.separator = ',';
  fillSigns(sheet.cells, choice.csv, signs);
  return sheet;
}

/// The text of a number with a decimal separator of one's own.
std::string withSeparator(std::string_view number, char decimalSeparator) {
  std::string text(number);
  std::ranges::replace(text, '.', decimalSeparator);
  return text;
}

class CsvOutput final : public SheetOutput {
 public:
  CsvOutput(std::string path, const CsvReading& form) : path_(std::move(path)), form_(form) {
    bytes_ = csvMark(form.encoding);
  }
  Result<> row(const std::vector<SheetCell>& cells) override {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (i > 0) line += form_.separator;
      const SheetCell& cell = cells[i];
      appendCsvField(line, cell.isNumber ? withSeparator(cell.text, form_.decimalSeparator) : guardedCsvText(cell.text),
                     form_.separator);
    }
    line += form_.lineEnd == CsvLineEnd::CrLf ? "\r\n" : form_.lineEnd == CsvLineEnd::Lf ? "\n" : "\r";
    bytes_ += encodedCsv(line, form_.encoding);
    return {};
  }
  Result<> finish() override { return writeBytes(path_, bytes_); }

 private:
  std::string path_;
  CsvReading form_;
  std::string bytes_;
};

class XlsxOutput final : public SheetOutput {
 public:
  explicit XlsxOutput(SheetWriter writer) : writer_(std::move(writer)) {}
  Result<> row(const std::vector<SheetCell>& cells) override {
    std::vector<SheetCell> kept = cells;
    std::vector<std::string> texts;
    texts.reserve(cells.size());
    // A number that a cell would round is a text, with the sign that its reader takes for that of decimals.
    for (SheetCell& cell : kept) {
      const auto digits = std::ranges::count_if(cell.text, [](char c) { return c >= '0' && c <= '9'; });
      if (!cell.isNumber || static_cast<std::size_t>(digits) <= exactDigits) continue;
      texts.push_back(withSeparator(cell.text, ','));
      cell = {texts.back(), false};
    }
    return writer_.row(kept);
  }
  Result<> finish() override { return writer_.finish(); }

 private:
  SheetWriter writer_;
};

/// The fault of a sheet; the number of any other failure is an errno, which may be equal to one.
int faultOf(const Error& error) {
  return error.kind == ErrorKind::Malformed ? error.number : static_cast<int>(NoFault);
}

std::string signName(char sign) {
  if (sign == '\0') return "nessuno";
  if (sign == '\t') return "tabulazione";
  return sign == ' ' ? "spazio" : "\"" + std::string(1, sign) + "\"";
}

const char* encodingName(CsvEncoding encoding) {
  constexpr const char* names[] = {"UTF-8", "UTF-8 con contrassegno", "Windows-1252", "UTF-16", "UTF-16 (big endian)"};
  return names[static_cast<std::size_t>(encoding)];
}

}  // namespace

std::vector<std::string> ReadSheet::headers() const {
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < cells.width(); ++i) texts.emplace_back(trim(cells.cell(0, i).text));
  return texts;
}

Result<ReadSheet> readSheetFile(const std::string& path, const SheetChoice& choice) {
  const auto form = sheetFormOf(path);
  if (!form) return fail(form.error());
  auto sheet = *form == SheetForm::Text ? readTextFile(path, choice) : readPackedFile(path, *form, choice);
  if (sheet && sheet->cells.rows() == 0) return fail(ErrorKind::Malformed, path, "empty", EmptySheet);
  return sheet;
}

std::string sheetFailureText(const Error& error, const std::string& path) {
  const std::string name = "\"" + std::string(baseName(path)) + "\"";
  const int fault = faultOf(error);
  if (fault == ProtectedSheet) return "Il foglio " + name + " è protetto da una password: salvarne una copia senza";
  if (fault == TooLargeSheet) return "Il foglio " + name + " è troppo grande: dividerlo in più fogli";
  if (fault == OldSheet) {
    return "Il foglio " + name + " è protetto, o nel formato di un vecchio programma: salvarlo come XLSX, ODS o CSV";
  }
  if (fault == EndlessCell) {
    return "Nel foglio " + name + " il testo tra virgolette che comincia alla riga " + error.what +
           " non finisce: manca la virgoletta di chiusura";
  }
  if (fault == EmptySheet) return "Il foglio " + name + " è vuoto";
  if (folderExists(path)) return "\"" + path + "\" è una cartella: indicare un foglio XLSX, ODS o CSV";
  switch (error.kind) {
    case ErrorKind::Missing:
      return "Il foglio " + name + " non esiste";
    case ErrorKind::Corrupt:
      return "Il foglio " + name + " è danneggiato";
    case ErrorKind::InUse:
      return "Il foglio " + name + " è usato da un altro programma: riprovare quando ha finito";
    case ErrorKind::Malformed:
      return "Il file " + name + " non è un foglio: servono XLSX, ODS o CSV";
    default:
      return "Il foglio " + name + " non può essere letto: controllarne i permessi\n\nDettaglio: " + error.what;
  }
}

std::string sheetWritingFailureText(const Error& error, const std::string& path) {
  if (faultOf(error) == TooLargeSheet) {
    return "Un file XLSX ha al più 1.048.576 righe, e 32.767 caratteri in una cella: qui c'è di più. Scegliere un file "
           "CSV";
  }
  if (folderExists(path)) return "Impossibile scrivere " + path + ":\nè una cartella. Indicare il nome di un foglio";
  if (error.kind == ErrorKind::Malformed) {
    return "Un foglio si scrive in un file CSV o XLSX: \"" + std::string(baseName(path)) +
           "\" deve finire in .csv o in .xlsx";
  }
  return "Impossibile scrivere " + path + ":\n" + failureText(error);
}

std::string readingText(const SheetReading& reading) {
  std::string text;
  if (reading.form == SheetForm::Text) {
    constexpr const char* ends[] = {"CR LF", "LF", "CR"};
    text = std::string("CSV, ") + encodingName(reading.csv.encoding) + ", separatore " +
           signName(reading.csv.separator) + ", fine riga " + ends[static_cast<std::size_t>(reading.csv.lineEnd)] +
           ", ";
  } else {
    text = reading.form == SheetForm::Xlsx ? "XLSX, " : reading.form == SheetForm::Ods ? "ODS, " : "feed XML, ";
  }
  return text + "decimali " + signName(reading.csv.decimalSeparator) + ", migliaia " + signName(reading.csv.thousands);
}

Result<std::unique_ptr<SheetOutput>> openSheetOutput(const std::string& path, const std::string& sheetName,
                                                     const CsvReading& form) {
  // Text under such a name would be taken for a damaged sheet.
  for (const std::string_view ending : {".ods", ".xls", ".xlsm"}) {
    if (endsWithIgnoringCase(path, ending)) return fail(ErrorKind::Malformed, path, "a form that is only read");
  }
  if (!endsWithIgnoringCase(path, ".xlsx")) return std::make_unique<CsvOutput>(path, form);
  auto writer = SheetWriter::create(path, sheetName);
  if (!writer) return fail(writer.error());
  return std::make_unique<XlsxOutput>(std::move(*writer));
}

}  // namespace kv
