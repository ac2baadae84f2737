#pragma once
// What a series of statements did to a database, as images of rows before and after, so that it can be taken back and
// done again. The engine tells of each row before it changes it, whoever changes it on this connection; what was
// rolled back meanwhile leaves no trace.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/database/database.h"
#include "platform/database/value.h"

namespace kv {

/// A field as the engine holds it, whatever its column declares.
using Cell = std::variant<std::monostate, std::int64_t, double, std::string, Bytes>;
/// Fields of a row; empty for no row.
using RowImage = std::vector<Cell>;

/// A row that was added or deleted has an image of all its fields, one that was changed of those that differ.
struct RowChange {
  std::string table;
  std::int64_t row = 0;              ///< the engine's number of the row
  std::vector<std::size_t> columns;  ///< places of the fields that differ; empty: all, the row is new or gone
  RowImage before;                   ///< empty: the row was added
  RowImage after;                    ///< empty: the row was deleted
};
/// The bytes that a change takes in memory, about.
std::size_t sizeInMemory(const RowChange& change);
/// In the order of the first touch, each row once.
using RowChanges = std::vector<RowChange>;

/// Watches one database while it lives. The database must outlive it, and have one recorder at a time.
class ChangeRecorder {
 public:
  /// Tables for which `watched` says false go unrecorded.
  ChangeRecorder(Database& database, std::function<bool(std::string_view table)> watched);
  ~ChangeRecorder();
  ChangeRecorder(const ChangeRecorder&) = delete;
  ChangeRecorder& operator=(const ChangeRecorder&) = delete;

  /// What changed since the last take(), by comparison with the rows as they stand; forgets it. Source: the rows.
  Result<RowChanges> take();
  /// Whether any watched row was touched since the last take().
  bool touched() const;

  /// Puts each row back to its image before, or forward to its image after, in one transaction and unrecorded.
  /// Malformed, and nothing is changed, when a row doesn't stand as the opposite image says.
  Result<> revert(const RowChanges& changes);
  Result<> repeat(const RowChanges& changes);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kv
