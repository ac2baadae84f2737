#pragma once
// Tables as texts of separated values, as programs write them in several ways: encoding, separator, decimal separator
// and signs between thousands are found out from the bytes, and each can be given instead. Source: RFC 4180, with the
// line ends of any system.

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/ports/result.h"
#include "platform/sheet/cell_table.h"

namespace kv {

enum class CsvEncoding {
  Utf8,
  Utf8Mark,  ///< with the three bytes of a mark at its start
  Windows1252,
  Utf16Little,
  Utf16Big
};

/// What ends a record.
enum class CsvLineEnd { CrLf, Lf, Cr };

/// What may be between fields.
inline constexpr std::array<char, 4> csvSeparators{';', ',', '\t', '|'};

/// How a text of separated values is written.
struct CsvReading {
  CsvEncoding encoding = CsvEncoding::Utf8Mark;
  char separator = ';';         ///< between fields: one of csvSeparators
  char decimalSeparator = ',';  ///< in numbers: ',' or '.'
  char thousands = '\0';        ///< between groups of three digits: '.', ',', ' ' or '\''; 0: none
  CsvLineEnd lineEnd = CsvLineEnd::CrLf;
};

/// What of a reading is given instead of found out.
struct CsvChoice {
  std::optional<CsvEncoding> encoding;
  std::optional<char> separator, decimalSeparator, thousands;
  std::optional<CsvLineEnd> lineEnd;  ///< the only one that ends a record; others belong to the text of a field
};

/// The encoding of bytes: by their mark, UTF-16 without one by its zeros, UTF-8 when all of it is, else Windows-1252.
CsvEncoding csvEncodingOf(std::string_view bytes);
/// Bytes as UTF-8, without a mark. What is no text of the encoding becomes U+FFFD in UTF-16, and stays in UTF-8.
std::string decodedCsv(std::string_view bytes, CsvEncoding encoding);
/// The same without a copy of bytes that are UTF-8 already; `kept` holds the text of the other encodings.
std::string_view decodedCsv(std::string_view bytes, CsvEncoding encoding, std::string& kept);
/// The separator that the first record has most of, outside of quotes; ';' when it has none. A first line "sep=," says
/// it.
char separatorOf(std::string_view text);
/// The line end that comes first outside of quotes; CR LF when there is none.
CsvLineEnd csvLineEndOf(std::string_view text);
/// The longest field in quotes that a table of merchants has, in bytes. A longer one lacks its closing quote.
inline constexpr std::size_t longestCsvField = std::size_t{1} << 20;
/// Receives the fields of a text.
class CsvSink {
 public:
  virtual ~CsvSink() = default;
  /// A field of the record; the text lives until the call returns. False ends the walk.
  virtual bool field(std::string_view text) = 0;
  /// The end of a record that began in a line, counted from 1. False ends the walk.
  virtual bool endRecord(std::uint32_t line) = 0;
  /// The field in quotes that began in a line is longer than it may be. The walk ends.
  virtual void endless(std::uint32_t /*line*/) {}
};
/// Splits a text into records of fields: a field in double quotes may hold separators, line ends and, doubled, quotes.
/// Records end at CR LF, LF or CR; lines without any character are passed over. A quote that is never closed reaches
/// to the end. lineEnd: the only line end there is, where it is given. longest: bytes of a field in quotes. False when
/// the sink or a longer field ended it.
bool walkCsv(std::string_view text, char separator, CsvSink& sink, std::optional<CsvLineEnd> lineEnd = {},
             std::size_t longest = std::string_view::npos);

/// A text of separated values as cells, and how it was read. Malformed with TooLargeSheet when it has more than the
/// limits allow, with EndlessCell for a quote that isn't closed within longestCsvField. goOn: asked now and then; false
/// ends it as Cancelled.
Result<CellTable> readCsv(std::string_view bytes, const CsvChoice& choice, const SheetLimits& limits,
                          CsvReading& reading, const std::function<bool()>& goOn = {});
/// A text as a file of separated values holds it: with an apostrophe before it where a spreadsheet would run it as a
/// formula ("=", "@", a tab, or a sign before what is no number), or where it starts with apostrophes before such a
/// text.
std::string guardedCsvText(std::string_view text);
/// The text that guardedCsvText made of another.
std::string_view unguardedCsvText(std::string_view text);
/// A field as it is written: in quotes where it needs them.
void appendCsvField(std::string& line, std::string_view text, char separator);
/// UTF-8 in an encoding, without its mark. What Windows-1252 hasn't becomes a character reference.
std::string encodedCsv(std::string_view text, CsvEncoding encoding);
/// The bytes that a file of an encoding starts with; none where there is no mark.
std::string_view csvMark(CsvEncoding encoding);

}  // namespace kv
