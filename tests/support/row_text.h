#pragma once
// The rows of a query as one text, to be compared as a whole.

#include <string>
#include <string_view>

#include "platform/database/database.h"
#include "platform/database/value.h"

namespace kv::test {

/// A line each, "\n" after it: fields with "|" between them, a null as "null". A failure gives its message instead.
inline std::string rows(Database& database, std::string_view query) {
  auto statement = database.prepare(query);
  if (!statement) return statement.error().what;
  std::string text;
  for (;;) {
    auto row = statement->step();
    if (!row) return text + row.error().what;
    if (!*row) return text;
    for (int at = 0; at < statement->columnCount(); ++at) {
      if (at > 0) text += '|';
      text += statement->isNull(at) ? std::string_view("null") : statement->text(at);
    }
    text += '\n';
  }
}

}  // namespace kv::test
