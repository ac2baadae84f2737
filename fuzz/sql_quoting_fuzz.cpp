// Names and texts on their way into SQL. What a server reads between the quotes, by the escapes that MySQL knows, has
// to be the text with its line ends folded, and no quote may end the literal early. Source: MySQL 8.0 Reference Manual,
// 9.1.1 String Literals.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/text/text.h"
#include "sqlexport/sql_text.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

std::string unquoted(std::string_view literal) {
  std::string text;
  for (std::size_t at = 0; at < literal.size(); ++at) {
    const char c = literal[at];
    require(c != '\'' && c != '"' && c != '\r' && c != '\n' && c != '\0');
    if (c != '\\') {
      text += c;
      continue;
    }
    require(++at < literal.size());
    constexpr std::string_view codes = "0btnr'\"\\", meant("\0\b\t\n\r'\"\\", 8);
    const std::size_t index = codes.find(literal[at]);
    require(index != std::string_view::npos);
    text += meant[index];
  }
  return text;
}

std::string folded(std::string_view text) {
  std::string result;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    const bool lineEnd = c == '\r' || c == '\n';
    result += lineEnd ? '\n' : c;
    const bool pair = lineEnd && at + 1 < text.size() && text[at + 1] == (c == '\r' ? '\n' : '\r');
    if (pair) ++at;
  }
  return result;
}

void checkName(std::string_view name) {
  kv::ExportWarnings warnings;
  const auto ident = kv::SqlIdent(name, warnings);
  require(ident && warnings.pending.empty());
  require(ident->find_first_of(" \t\r\n") == std::string::npos);
  require(kv::characterCount(*ident) <= 64);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  require(unquoted(kv::SqlQuoteText(bytes)) == folded(bytes));
  require(unquoted(kv::SqlQuoteBinary(bytes)) == bytes);
  checkName(bytes);
  return 0;
}
