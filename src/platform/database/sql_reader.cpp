// The tokens of SQL, and the table of a simple SELECT.

#include "platform/database/sql_reader.h"

#include <algorithm>
#include <array>

#include "platform/text/text.h"

namespace kv::engine {
namespace {

bool isNameByte(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '$' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool isWhiteSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f'; }

/// Words that, outside parentheses, combine several rows of a table into one, or rows of several tables.
bool combinesRows(const SqlToken& token) {
  constexpr std::array<std::string_view, 6> words = {"GROUP", "HAVING", "UNION", "EXCEPT", "INTERSECT", "WINDOW"};
  return token.depth == 0 &&
         std::any_of(words.begin(), words.end(), [&](std::string_view word) { return token.isWord(word); });
}

bool endsFrom(const SqlToken& token) {
  return token.kind == SqlToken::Kind::End || token.isMark(';') ||
         (token.depth == 0 && (token.isWord("WHERE") || token.isWord("ORDER") || token.isWord("LIMIT")));
}

/// "[schema.]table [[AS] alias]", read from after FROM on; `last` becomes the token after it.
std::optional<std::string> readTableName(SqlReader& reader, SqlToken& last) {
  SqlToken table = reader.next();
  last = reader.next();
  if (table.isName() && last.isMark('.')) {
    table = reader.next();
    last = reader.next();
  }
  if (!table.isName()) return std::nullopt;
  if (last.isWord("AS")) last = reader.next();
  if (last.isName() && !endsFrom(last) && !combinesRows(last)) last = reader.next();
  if (!endsFrom(last)) return std::nullopt;
  return table.name();
}

SqlToken::Kind kindStartingWith(char first) {
  if (first == '\'') return SqlToken::Kind::Text;
  if (first == '"' || first == '`' || first == '[') return SqlToken::Kind::QuotedName;
  return isNameByte(first) ? SqlToken::Kind::Word : SqlToken::Kind::Mark;
}

}  // namespace

bool SqlToken::isWord(std::string_view word) const {
  return kind == Kind::Word && text.size() == word.size() && equalsIgnoringCase(text, word);
}

std::string SqlToken::name() const {
  if (kind != Kind::QuotedName) return std::string(text);
  const std::string close(1, text.back());
  return replaceAll(text.substr(1, text.size() - 2), close + close, close);
}

void SqlReader::skipSpaces() {
  for (;;) {
    while (at_ < sql_.size() && isWhiteSpace(sql_[at_])) ++at_;
    // Most tokens are looked at no further.
    if (at_ == sql_.size() || (sql_[at_] != '-' && sql_[at_] != '/')) return;
    const std::string_view rest = sql_.substr(at_);
    std::string_view close;
    if (rest.starts_with("--")) close = "\n";
    if (rest.starts_with("/*")) close = "*/";
    if (close.empty()) return;
    const std::size_t end = rest.find(close, 2);
    at_ = end == std::string_view::npos ? sql_.size() : at_ + end + close.size();
  }
}

/// Index after the closing quote. A doubled quote is a quote inside the text; "]" cannot be doubled.
std::size_t SqlReader::endOfQuoted(char close) const {
  for (std::size_t at = at_ + 1; at < sql_.size(); ++at) {
    if (sql_[at] != close) continue;
    if (close == ']' || at + 1 >= sql_.size() || sql_[at + 1] != close) return at + 1;
    ++at;
  }
  return sql_.size();
}

std::size_t SqlReader::endOf(SqlToken::Kind kind) const {
  const char first = sql_[at_];
  if (kind == SqlToken::Kind::Text) return endOfQuoted(first);
  if (kind == SqlToken::Kind::QuotedName) return endOfQuoted(first == '[' ? ']' : first);
  std::size_t end = at_ + 1;
  if (kind == SqlToken::Kind::Word) {
    while (end < sql_.size() && isNameByte(sql_[end])) ++end;
  }
  return end;
}

SqlToken SqlReader::next() {
  skipSpaces();
  SqlToken token;
  token.position = at_;
  token.depth = depth_;
  if (at_ >= sql_.size()) return token;
  const char first = sql_[at_];
  token.kind = kindStartingWith(first);
  const std::size_t end = endOf(token.kind);
  if (first == '(') ++depth_;
  if (first == ')') token.depth = --depth_;
  token.text = sql_.substr(at_, end - at_);
  at_ = end;
  return token;
}

std::optional<TableSelect> singleTableOf(std::string_view select) {
  TableSelect found;
  SqlReader reader(select);
  if (!reader.next().isWord("SELECT")) return std::nullopt;
  SqlToken token = reader.next();
  if (token.isWord("DISTINCT")) return std::nullopt;
  found.allColumns = token.isMark('*');
  for (std::size_t tokens = 0; !(token.depth == 0 && token.isWord("FROM")); ++tokens) {
    if (token.kind == SqlToken::Kind::End) return std::nullopt;
    found.allColumns = found.allColumns && tokens == 0;
    token = reader.next();
  }
  found.from = token.position;
  auto table = readTableName(reader, token);
  if (!table) return std::nullopt;
  found.table = std::move(*table);
  found.end = token.position;
  for (; token.kind != SqlToken::Kind::End; token = reader.next()) {
    if (combinesRows(token)) return std::nullopt;
  }
  return found;
}

bool isSelect(std::string_view source) {
  const SqlToken first = SqlReader(source).next();
  return first.isWord("SELECT") || first.isWord("WITH") || first.isWord("VALUES");
}

}  // namespace kv::engine
