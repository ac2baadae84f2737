#pragma once
// The little of SQL that the store reads itself: words and marks of a statement, and the parts of a SELECT from one
// table. Whatever it does not know it leaves to the engine.

#include <optional>
#include <string>
#include <string_view>

namespace kv::engine {

struct SqlToken {
  enum class Kind { End, Word, QuotedName, Text, Mark };
  Kind kind = Kind::End;
  std::string_view text;     ///< as it stands, quotes included
  std::size_t position = 0;  ///< in the statement
  int depth = 0;             ///< of parentheses around it

  bool isWord(std::string_view word) const;  ///< case ignored
  bool isMark(char mark) const { return kind == Kind::Mark && text[0] == mark; }
  bool isName() const { return kind == Kind::Word || kind == Kind::QuotedName; }
  /// A name without its quotes.
  std::string name() const;
};

/// Walks over a statement; blanks and comments are passed over.
class SqlReader {
 public:
  explicit SqlReader(std::string_view sql) : sql_(sql) {}
  SqlToken next();

 private:
  void skipBlanks();
  std::size_t endOfQuoted(char close) const;
  /// Where the token of this kind that starts here ends.
  std::size_t endOf(SqlToken::Kind kind) const;

  std::string_view sql_;
  std::size_t at_ = 0;
  int depth_ = 0;
};

/// The table behind FROM of a SELECT that takes its rows one by one from one table; empty for any other statement,
/// such as a join, a union, DISTINCT or GROUP BY.
std::optional<std::string> singleTableOf(std::string_view select);

/// Whether a record set's source is a statement rather than the name of a table.
bool isSelect(std::string_view source);

}  // namespace kv::engine
