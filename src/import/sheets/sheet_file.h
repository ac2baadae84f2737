#pragma once
// A sheet of a file in whatever form: CSV, XLSX, ODS or a feed of products, told from its content; and a sheet written
// as CSV or XLSX, told from the name.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "import/sheets/csv_text.h"
#include "platform/sheet/spreadsheet.h"

namespace kv {

/// How a file is read.
struct SheetReading {
  SheetForm form = SheetForm::Text;
  std::size_t sheet = 0;  ///< index among those of the file
  CsvReading csv;         ///< of the packed forms the signs of numbers that are texts count alone
};

/// What is given instead of found out, and who is asked meanwhile.
struct SheetChoice {
  std::size_t sheet = 0;
  CsvChoice csv;
  SheetLimits limits;
  std::function<bool()> goOn = {};               ///< false ends the reading as Cancelled
  std::string shape;                             ///< name of an ExportShape; empty: found by the headers; "no": none
  std::optional<std::uint32_t> headerLine = {};  ///< of the file, whose cells name the columns; nothing: found out
};

/// A sheet that was read.
struct ReadSheet {
  SheetReading reading;
  std::vector<std::string> names;  ///< of the sheets of the file; none for a text
  CellTable cells;                 ///< the first row is that of the headers; before they are known, the first of all

  /// The texts of the first row.
  std::vector<std::string> headers() const;
};

/// Reads a file. Failures as sheetFormOf and readSpreadsheet; Malformed where there is no row at all.
Result<ReadSheet> readSheetFile(const std::string& path, const SheetChoice& choice);
/// Why a file can't be read, for the merchant.
std::string sheetFailureText(const Error& error, const std::string& path);
/// Why a file can't be written, for the merchant.
std::string sheetWritingFailureText(const Error& error, const std::string& path);
/// How a file was read, as one line: "CSV, UTF-8, separatore \";\", decimali \",\", migliaia \".\"".
std::string readingText(const SheetReading& reading);

/// Where rows of a sheet are written.
class SheetOutput {
 public:
  virtual ~SheetOutput() = default;
  /// A row; of a number the text has "." for decimals.
  virtual Result<> row(const std::vector<SheetCell>& cells) = 0;
  /// Ends the file, which appears whole or not at all.
  virtual Result<> finish() = 0;
};
/// Starts a file: XLSX where its name ends so, else CSV in the form given. Malformed where the name is that of another
/// form of sheets; other failures as SheetWriter::create.
Result<std::unique_ptr<SheetOutput>> openSheetOutput(const std::string& path, const std::string& sheetName,
                                                     const CsvReading& form = {});

}  // namespace kv
