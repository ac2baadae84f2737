// Names and declared types as SQL writes them, and the error kinds of the engine's codes.

#include <array>
#include <charconv>

#include "platform/database/engine.h"
#include "platform/text/text.h"

namespace kv {
namespace {

struct TypeName {
  ColumnType type;
  std::string_view name;
  bool sized;
};

// MONEY_INTEGER holds "INT" so that the engine keeps whole 64-bit numbers, and LONGTEXT "TEXT" so that "0012" stays
// a text. The engine looks for these words in the declaration.
constexpr std::array<TypeName, 12> typeNames = {{{ColumnType::Bool, "BOOLEAN", false},
                                                 {ColumnType::Byte, "TINYINT", false},
                                                 {ColumnType::Int, "SMALLINT", false},
                                                 {ColumnType::Long, "INTEGER", false},
                                                 {ColumnType::Money, "MONEY_INTEGER", false},
                                                 {ColumnType::Single, "FLOAT", false},
                                                 {ColumnType::Double, "DOUBLE", false},
                                                 {ColumnType::DateTime, "DATETIME", false},
                                                 {ColumnType::Binary, "BLOB", true},
                                                 {ColumnType::Text, "TEXT", true},
                                                 {ColumnType::LongBinary, "LONGBLOB", false},
                                                 {ColumnType::Memo, "LONGTEXT", false}}};

constexpr char raised(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c; }

bool isWord(std::string_view text, std::string_view upper) {
  if (text.size() != upper.size()) return false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (raised(text[at]) != upper[at]) return false;
  }
  return true;
}

bool holds(std::string_view text, std::string_view part) {
  return findIgnoringCase(text, part) != std::string_view::npos;
}

ColumnType typeByAffinity(std::string_view word) {
  if (holds(word, "INT")) return ColumnType::Long;
  if (holds(word, "CHAR")) return ColumnType::Text;
  if (holds(word, "CLOB") || holds(word, "TEXT")) return ColumnType::Memo;
  if (word.empty() || holds(word, "BLOB")) return ColumnType::LongBinary;
  return ColumnType::Double;
}

int sizeAfter(std::string_view declaration, std::size_t open) {
  int size = 0;
  while (++open < declaration.size() && declaration[open] == ' ') {
  }
  if (open < declaration.size()) std::from_chars(&declaration[open], declaration.data() + declaration.size(), size);
  return size;
}

}  // namespace

std::string columnTypeName(ColumnType type, int size) {
  for (const TypeName& entry : typeNames) {
    if (entry.type != type) continue;
    std::string name(entry.name);
    if (entry.sized && size > 0) name += "(" + std::to_string(size) + ")";
    return name;
  }
  return "LONGBLOB";
}

int TableInfo::columnIndex(std::string_view column) const {
  for (std::size_t at = 0; at < columns.size(); ++at) {
    if (equalsIgnoringCase(columns[at].name, column)) return static_cast<int>(at);
  }
  return -1;
}

namespace engine {

DeclaredType declaredType(std::string_view declaration) {
  const std::size_t open = declaration.find('(');
  const std::string_view word = trim(declaration.substr(0, open));
  const int size = open == std::string_view::npos ? 0 : sizeAfter(declaration, open);
  for (const TypeName& entry : typeNames) {
    if (isWord(word, entry.name)) return {entry.type, entry.sized ? size : 0};
  }
  const ColumnType type = typeByAffinity(word);
  return {type, type == ColumnType::Text ? size : 0};
}

bool isTextual(ColumnType type) { return type == ColumnType::Text || type == ColumnType::Memo; }

std::string quoted(std::string_view name) {
  bool plain = !name.empty() && sqlite3_keyword_check(name.data(), static_cast<int>(name.size())) == 0;
  for (std::size_t at = 0; plain && at < name.size(); ++at) {
    const char c = raised(name[at]);
    plain = (c >= 'A' && c <= 'Z') || c == '_' || (at > 0 && c >= '0' && c <= '9');
  }
  if (plain) return std::string(name);
  return '"' + replaceAll(name, "\"", "\"\"") + '"';
}

std::string literal(std::string_view text) { return '\'' + replaceAll(text, "'", "''") + '\''; }

ErrorKind kindOf(int code) {
  switch (code & 0xff) {
    case SQLITE_BUSY:
      return ErrorKind::InUse;
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_CANTOPEN:  // the file itself was found; what cannot be opened is its journal
      return ErrorKind::ReadOnly;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      return ErrorKind::Corrupt;
    case SQLITE_FULL:
      return ErrorKind::Full;
    case SQLITE_INTERRUPT:
      return ErrorKind::Cancelled;
    case SQLITE_MISMATCH:  // a text for a key that is the number of the row
      return ErrorKind::TextInNumber;
    default:
      return code == SQLITE_IOERR_SHORT_READ ? ErrorKind::Corrupt : ErrorKind::Other;
  }
}

Error errorOf(sqlite3* handle, int code, std::string where) {
  const bool known = handle != nullptr && (sqlite3_errcode(handle) & 0xff) == (code & 0xff);
  const int number = known ? sqlite3_extended_errcode(handle) : code;
  return Error{kindOf(number), std::move(where), known ? sqlite3_errmsg(handle) : sqlite3_errstr(code), number};
}

}  // namespace engine
}  // namespace kv
