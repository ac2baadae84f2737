#pragma once
// The small part of SQL that the store reads itself: the tokens of a statement, and the table of a SELECT from one
// table. Whatever it does not know is left to the engine.

#include <optional>
#include <string>
#include <string_view>

namespace kv::engine {

/// One token of a statement.
struct SqlToken {
  /// Mark is a single character such as "," or "("; End comes after the last token.
  enum class Kind { End, Word, QuotedName, Text, Mark };
  Kind kind = Kind::End;
  std::string_view text;     ///< as written, quotes included
  std::size_t position = 0;  ///< byte index in the statement
  int depth = 0;             ///< of parentheses around it

  /// Whether the token is this word without quotes, case ignored.
  bool isWord(std::string_view word) const;
  /// Whether the token is this mark.
  bool isMark(char mark) const { return kind == Kind::Mark && text[0] == mark; }
  /// Whether the token can be a name.
  bool isName() const { return kind == Kind::Word || kind == Kind::QuotedName; }
  /// A name without its quotes.
  std::string name() const;
};

/// Reads the tokens of a statement; white space and comments are skipped.
class SqlReader {
 public:
  explicit SqlReader(std::string_view sql) : sql_(sql) {}
  /// The next token; End at the end, however often it is called there.
  SqlToken next();

 private:
  void skipSpaces();
  std::size_t endOfQuoted(char close) const;
  /// Where the token of this kind that starts here ends.
  std::size_t endOf(SqlToken::Kind kind) const;

  std::string_view sql_;
  std::size_t at_ = 0;
  int depth_ = 0;
};

/// A SELECT that takes its rows one by one from one table. Positions are byte indexes in it.
struct TableSelect {
  std::string table;
  std::size_t from = 0;     ///< of the word FROM
  std::size_t end = 0;      ///< of what follows the table: WHERE, ORDER, LIMIT or the end
  bool allColumns = false;  ///< nothing but "*" is asked for
};
/// The parts of such a SELECT; empty for any other statement, such as a join, a union, DISTINCT or GROUP BY.
std::optional<TableSelect> singleTableOf(std::string_view select);

/// Whether a record set's source is a statement rather than the name of a table.
bool isSelect(std::string_view source);

}  // namespace kv::engine
