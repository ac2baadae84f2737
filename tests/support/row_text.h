#pragma once
// The rows of a query as one text, to be compared as a whole.

#include <string>
#include <string_view>

#include "platform/database/database.h"
#include "platform/database/value.h"

namespace kv::test {

/// The rows of a statement that is ready to run, and is so again after it. A line each, "\n" after it: fields with "|"
/// between them, a null as "null". A failure gives its message instead.
inline std::string rows(Statement& statement) {
  std::string text;
  for (;;) {
    auto row = statement.step();
    if (!row) return text + row.error().what;
    if (!*row) return text;
    for (int at = 0; at < statement.columnCount(); ++at) {
      if (at > 0) text += '|';
      text += statement.isNull(at) ? std::string_view("null") : statement.text(at);
    }
    text += '\n';
  }
}

/// The same of a query.
inline std::string rows(Database& database, std::string_view query) {
  auto statement = database.prepare(query);
  return statement ? rows(*statement) : statement.error().what;
}

}  // namespace kv::test
