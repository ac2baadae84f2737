#pragma once
// What a series of statements did to a database, as images of rows before and after, so that it can be undone and
// repeated. The engine reports each row before it changes it, whoever changes it on this connection; changes that were
// rolled back meanwhile are not recorded.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/database/database.h"
#include "platform/database/value.h"

namespace kv {

/// A text or bytes that take the room of a pointer, and none beyond it while they are empty: most fields of a row hold
/// a number or nothing, and a step of thousands of rows is kept whole.
template <class T>
class Boxed {
 public:
  Boxed() = default;
  // NOLINTNEXTLINE(google-explicit-constructor): a text is a cell
  Boxed(T value) : value_(value.empty() ? nullptr : std::make_unique<T>(std::move(value))) {}
  Boxed(const Boxed& other) : value_(other.value_ ? std::make_unique<T>(*other.value_) : nullptr) {}
  Boxed(Boxed&&) noexcept = default;
  Boxed& operator=(const Boxed& other) { return *this = Boxed(other); }
  Boxed& operator=(Boxed&&) noexcept = default;
  ~Boxed() = default;

  /// The text or the bytes.
  const T& operator*() const {
    static const T none;
    return value_ ? *value_ : none;
  }
  const T* operator->() const { return &**this; }
  bool operator==(const Boxed& other) const { return **this == *other; }

 private:
  std::unique_ptr<T> value_;
};
using BoxedText = Boxed<std::string>;
using BoxedBytes = Boxed<Bytes>;

/// A field as the engine holds it, whatever its column declares.
using Cell = std::variant<std::monostate, std::int64_t, double, BoxedText, BoxedBytes>;
/// Fields of a row; empty for no row.
using RowImage = std::vector<Cell>;

/// What became of one row. A row that was added or deleted has an image of all its fields, a changed one of the fields
/// that differ.
struct RowChange {
  std::string table;
  std::int64_t row = 0;              ///< the engine's number of the row
  std::vector<std::size_t> columns;  ///< indexes of the fields that differ; empty: all, the row is new or deleted
  RowImage before;                   ///< empty: the row was added
  RowImage after;                    ///< empty: the row was deleted
};
/// The approximate number of bytes that a change takes in memory.
std::size_t sizeInMemory(const RowChange& change);
/// Changes in the order in which their rows were first touched, each row once.
using RowChanges = std::vector<RowChange>;

/// Watches one database while it lives. The database must outlive it, and has one recorder at a time.
class ChangeRecorder {
 public:
  /// Starts recording. Changes of tables for which `watched` returns false are not recorded.
  ChangeRecorder(Database& database, std::function<bool(std::string_view table)> watched);
  ~ChangeRecorder();
  ChangeRecorder(const ChangeRecorder&) = delete;
  ChangeRecorder& operator=(const ChangeRecorder&) = delete;

  /// The changes since the last take(), found by comparing the first images with the rows as they are now. Recording
  /// starts again from here. A row that has its old values again is no change.
  Result<RowChanges> take();
  /// Whether any watched row was touched since the last take().
  bool touched() const;

  /// Undoes changes: gives each row its image from before, in one transaction and unrecorded. Malformed, and nothing
  /// is changed, when a row is no longer as its image from after says.
  Result<> revert(const RowChanges& changes);
  /// Repeats changes that were undone: gives each row its image from after. Malformed, and nothing is changed, when a
  /// row is not as its image from before says.
  Result<> repeat(const RowChanges& changes);
  /// As revert(), by statements that a recorder of the database records like any other: for a change of long ago that
  /// is undone by a step of its own.
  static Result<> revertAsChange(Database& database, const RowChanges& changes);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kv
