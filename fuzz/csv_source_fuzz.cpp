// Tables of the accounting package as text files. Whatever the bytes, what is decoded is UTF-8, and a number holds no
// group sign.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "import/accounting/csv_source.h"
#include "import/sheets/csv_text.h"
#include "import/sheets/number_signs.h"
#include "platform/text/utf8.h"

namespace {

void requireCsv(bool holds) {
  if (!holds) std::abort();
}

bool isAllUtf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const kv::utf8::Unit unit = kv::utf8::unitAt(text, at);
    if (!unit.valid) return false;
    at += unit.length;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kv::CsvReading reading;
  const auto cells = kv::readCsv({reinterpret_cast<const char*>(data), size}, {}, {}, reading);
  if (!cells) return 0;
  for (std::size_t row = 0; row < cells->rows(); ++row) {
    requireCsv(cells->width(row) > 0);
    for (std::size_t i = 0; i < cells->width(row); ++i) {
      const std::string_view field = cells->cell(row, i).text;
      requireCsv(isAllUtf8(field));
      const char decimal = kv::decimalSeparatorOf({field}, reading.separator);
      const std::string number = kv::plainCsvNumber(field, decimal);
      requireCsv(number.find(',') == std::string::npos && number.size() <= field.size());
    }
  }
  return 0;
}
