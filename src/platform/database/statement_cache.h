#pragma once
// What a connection keeps for the next time: prepared statements that nobody uses, and the shapes of record sets. The
// tables here are wide, and to prepare a SELECT over one costs more than to read its row.
//
// All of it is of the schema as it is: before anything is taken, the engine is asked by a statement of its own whether
// the schema has changed (by whomever, a rollback included), and if so all is thrown away. While another file is
// attached nothing is taken or kept, as a name may mean another table then.

#include <sqlite3.h>

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kv::engine {

struct RecordsetShape;

/// The statements and shapes of one connection. A statement that is kept is reset and has no values bound, so it holds
/// no lock on the file or a table.
class StatementCache {
 public:
  static constexpr std::size_t mostStatements = 64;  ///< kept at a time; the one unused for longest goes
  static constexpr std::size_t mostShapes = 32;      ///< kept at a time
  static constexpr std::size_t longestText = 32768;  ///< bytes; a longer statement is hardly ever needed twice

  StatementCache() = default;
  StatementCache(const StatementCache&) = delete;
  StatementCache& operator=(const StatementCache&) = delete;
  ~StatementCache() { close(); }

  /// Throws away what is no longer true. False when nothing may be taken or kept now: a file is attached, the schema
  /// can't be read (locked, damaged), or the cache is paused or closed.
  bool refresh(sqlite3* handle);

  /// A kept statement of this very text, which is then in use; null when there is none. After refresh().
  sqlite3_stmt* take(std::string_view sql);
  /// Notes that a new statement is in use and may be kept afterwards. After refresh().
  void lend(sqlite3_stmt* statement) { lent_.push_back(statement); }
  /// Ends the use of a statement: keeps it, or finalizes one that was not lent or is of a former schema.
  void giveBack(sqlite3_stmt* statement);

  /// A kept shape; null when there is none. After refresh().
  std::shared_ptr<const RecordsetShape> shape(std::string_view source) const;
  /// Keeps a shape that was made since the last refresh().
  void keepShape(std::string_view source, std::shared_ptr<const RecordsetShape> shape);

  /// Throws everything away, and keeps nothing until it is resumed; statements in use are finalized when they are given
  /// back.
  void pause();
  void resume() { paused_ = false; }
  /// Throws everything away for good; statements in use are finalized when they are given back.
  void close();

 private:
  struct Idle {
    std::size_t hash;
    std::size_t size;
    sqlite3_stmt* statement;
  };
  void clear();

  sqlite3_stmt* probe_ = nullptr;    // asks the engine whether the schema has changed
  std::vector<Idle> idle_;           // in the order in which they were given back
  std::vector<sqlite3_stmt*> lent_;  // in use, of the present schema
  std::map<std::string, std::shared_ptr<const RecordsetShape>, std::less<>> shapes_;
  bool paused_ = false;
  bool closed_ = false;
};

}  // namespace kv::engine
