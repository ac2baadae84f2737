// Comparison and LIKE of the store's connections. Both replace parts of the engine under the engine's own names,
// so that a file opens in any SQLite program. The price: an index over text beyond ASCII is ordered by this NOCASE,
// and a program with the engine's own NOCASE must REINDEX before it trusts such an index, as this one must after it.

#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

#include "platform/database/engine.h"
#include "platform/text/text.h"

namespace kv::engine {
namespace {

constexpr unsigned char lowered(unsigned char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c + ('a' - 'A')) : c;
}

/// Compares directly while both texts are ASCII and leaves the rest, from the first other character on, to case
/// folding.
int compareNoCase(void*, int sizeA, const void* a, int sizeB, const void* b) noexcept {
  const std::string_view textA(static_cast<const char*>(a), static_cast<std::size_t>(sizeA));
  const std::string_view textB(static_cast<const char*>(b), static_cast<std::size_t>(sizeB));
  const std::size_t shorter = std::min(textA.size(), textB.size());
  for (std::size_t at = 0; at < shorter; ++at) {
    const auto left = static_cast<unsigned char>(textA[at]);
    const auto right = static_cast<unsigned char>(textB[at]);
    if ((left | right) >= 0x80) return compareIgnoringCase(textA.substr(at), textB.substr(at));
    const int difference = int{lowered(left)} - int{lowered(right)};
    if (difference != 0) return difference;
  }
  if (textA.size() == textB.size()) return 0;
  return textA.size() < textB.size() ? -1 : 1;
}

std::string_view textOf(sqlite3_value* value) {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return {bytes == nullptr ? "" : bytes, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

/// "text LIKE pattern" arrives as like(pattern, text). A null on either side gives null.
void like(sqlite3_context* context, int, sqlite3_value** arguments) noexcept {
  if (sqlite3_value_type(arguments[0]) == SQLITE_NULL || sqlite3_value_type(arguments[1]) == SQLITE_NULL) return;
  sqlite3_result_int(context, matchesLike(textOf(arguments[1]), textOf(arguments[0])) ? 1 : 0);
}

/// What the store has beside a connection of the engine.
struct ConnectionExtras {
  std::int64_t undone = 0;  ///< count of rollbacks
  StatementCache cache;
  std::function<bool()> goOn;  ///< asked while a statement runs; empty: nobody is
};

void countUndone(void* extras) noexcept { ++static_cast<ConnectionExtras*>(extras)->undone; }

int isToStop(void* extras) { return static_cast<ConnectionExtras*>(extras)->goOn() ? 0 : 1; }

/// The extras of a connection; null for one that has none. The engine hands the pointer out only when it is replaced by
/// another.
ConnectionExtras* extrasOf(sqlite3* handle) {
  void* extras = sqlite3_rollback_hook(handle, countUndone, nullptr);
  sqlite3_rollback_hook(handle, extras == nullptr ? nullptr : countUndone, extras);
  return static_cast<ConnectionExtras*>(extras);
}

}  // namespace

std::int64_t changeCounter(sqlite3* handle) {
  const ConnectionExtras* extras = extrasOf(handle);
  return sqlite3_total_changes64(handle) + (extras == nullptr ? 0 : extras->undone);
}

void noteUndone(sqlite3* handle) {
  if (ConnectionExtras* extras = extrasOf(handle)) ++extras->undone;
}

void askWhileRunning(sqlite3* handle, std::function<bool()> goOn) {
  constexpr int instructions = 20'000;  // a few milliseconds
  ConnectionExtras* extras = extrasOf(handle);
  if (extras == nullptr) return;
  extras->goOn = std::move(goOn);
  const bool asks = extras->goOn != nullptr;
  sqlite3_progress_handler(handle, asks ? instructions : 0, asks ? isToStop : nullptr, extras);
}

StatementCache* cacheOf(sqlite3* handle) {
  ConnectionExtras* extras = extrasOf(handle);
  return extras == nullptr ? nullptr : &extras->cache;
}

void closeConnection(sqlite3* handle) {
  if (handle == nullptr) return;
  if (StatementCache* cache = cacheOf(handle)) cache->close();
  sqlite3_close_v2(handle);
}

int addFunctions(sqlite3* handle) {
  const int code = sqlite3_create_collation_v2(handle, "NOCASE", SQLITE_UTF8, nullptr, compareNoCase, nullptr);
  if (code != SQLITE_OK) return code;
  auto* extras = new ConnectionExtras;  // deleted with the function below
  sqlite3_rollback_hook(handle, countUndone, extras);
  return sqlite3_create_function_v2(handle, "like", 2, SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, extras,
                                    like, nullptr, nullptr,
                                    [](void* given) { delete static_cast<ConnectionExtras*>(given); });
}

}  // namespace kv::engine
