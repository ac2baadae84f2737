// Tables of the accounting package as text files. Whatever the bytes, what is decoded is UTF-8, fields that are quoted
// and split again are equal, and a number holds no group sign.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "import/accounting/csv_source.h"
#include "import/sheets/number_signs.h"
#include "platform/text/text.h"
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

std::string quotedCsv(const std::vector<std::vector<std::string>>& records, char separator) {
  std::string text;
  for (const auto& record : records) {
    for (std::size_t i = 0; i < record.size(); ++i) {
      if (i > 0) text += separator;
      text += '"' + kv::replaceAll(record[i], "\"", "\"\"") + '"';
    }
    text += "\r\n";
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kv::CsvForm form;
  const std::string text = kv::decodeCsv({reinterpret_cast<const char*>(data), size}, form);
  requireCsv(isAllUtf8(text));
  const char separator = kv::separatorOf(text);
  const auto records = kv::splitCsv(text, separator);
  requireCsv(kv::splitCsv(quotedCsv(records, separator), separator) == records);
  for (const auto& record : records) {
    requireCsv(!record.empty());
    const char decimal = kv::decimalSeparatorOf({record.begin(), record.end()}, separator);
    for (const std::string& field : record) {
      const std::string number = kv::plainCsvNumber(field, decimal);
      requireCsv(number.find(',') == std::string::npos && number.size() <= field.size());
    }
  }
  return 0;
}
