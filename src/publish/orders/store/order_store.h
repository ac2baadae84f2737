#pragma once
// The orders that were received, in `ordini.db` of the shop folder: so they are read without a connection. The file
// holds customers' data, so only its owner may read it; it is no part of a copy or an export of the shop. An answer of
// the server comes into it whole, together with the cursor for the next request, or not at all.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/database/database.h"
#include "publish/orders/wire/order_answers.h"

namespace kv {

/// The file of a shop folder that holds the orders.
inline constexpr std::string_view ordersFile = "ordini.db";

/// What a damaged one is renamed to.
inline constexpr std::string_view damagedOrdersFile = "ordini-danneggiato.db";

/// Any of openOrderStates(): a value of OrderLookup::state beside orderStates().
inline constexpr std::string_view openOrders = "da evadere";

/// Which orders are looked for; what is empty doesn't restrict.
struct OrderLookup {
  std::string search;  ///< part of code, name, address, articles or notes, case ignored
  std::string state;   ///< one of orderStates(), or openOrders
  std::string from;    ///< first day, "yyyy-mm-dd"
  std::string to;      ///< last day
};

/// What a list shows of an order.
struct OrderSummary {
  std::int64_t row = 0;  ///< of the file, see OrderStore::order
  std::string code;
  std::string created;
  std::string name;
  Money total;
  std::string currency;
  std::string state;
  bool isNew = false;  ///< came since the list was last looked at
};

/// Why orders can't be read or kept, for the merchant.
std::string orderStoreFailureText(const Error& error);

/// An answer to be kept.
struct OrderArrival {
  std::string address;  ///< of the script that was asked
  std::string before;   ///< the cursor of the request
  OrdersAnswer answer;
};
/// What an answer brought.
struct ArrivalCount {
  int added = 0;
  int changed = 0;
};

/// Codes of orders that lost their customer's data, or were removed, because the shop deleted them.
struct ErasedOrders {
  std::vector<std::string> anonymous;
  std::vector<std::string> removed;
  bool isNone() const { return anonymous.empty() && removed.empty(); }
};

/// The orders of one shop, in a file beside its catalogue that is made with the first one.
class OrderStore {
 public:
  /// Opens nothing yet.
  explicit OrderStore(std::string shopFolder);

  /// Opens the file where there is one. One that is damaged is put aside as damagedOrdersFile, and the next
  /// answers make a new one. Failures as Database::open and renameFile.
  Result<> open();
  /// Whether orders have been kept here.
  bool isOpen() const { return database_.isOpen(); }
  /// Whether open() met a damaged file.
  bool wasDamaged() const { return wasDamaged_; }
  /// Whether a damaged file that was put aside is still there.
  bool keepsDamagedFile() const;
  /// The path of the file.
  std::string path() const;

  // Every call below fails as Statement::step; without a file there is nothing to read.

  /// The cursor for the next request to a server; empty for one that wasn't asked before, or when the file was
  /// deleted meanwhile.
  Result<std::string> cursor(const std::string& address);
  /// Keeps an answer and its cursor in one transaction; makes the file where there is none. InUse when another answer
  /// was kept since the request was made: ask again.
  Result<ArrivalCount> take(const OrderArrival& arrival);
  /// Keeps an order as the server has it now, after a change from here. It isn't new.
  Result<> replace(const ReceivedOrder& order);

  /// Removes orders that the shop has deleted; all of them or none.
  Result<> remove(const std::vector<GoneOrder>& orders);
  /// Removes the orders of a code that the server doesn't know, as the merchant wishes.
  Result<> removeCode(const std::string& code);
  /// The mark of what the server had deleted when that was last followed; empty: never.
  Result<std::string> goneMark(const std::string& address);
  /// Notes a server's mark of what it has deleted so far.
  Result<> noteGoneMark(const std::string& address, const std::string& mark);
  /// What was erased here and not yet told.
  Result<ErasedOrders> erased();
  /// It was told. Rebuilds the file, so that nothing of it is left in unused pages, and deletes a damaged file that was
  /// put aside, which may hold it too.
  Result<> erasedShown();

  /// The orders that pass a filter, newest first.
  Result<std::vector<OrderSummary>> list(const OrderLookup& filter);
  /// A whole order; Missing for a row that isn't there, Corrupt when it can't be read: the next request asks for all
  /// orders again then, and replaces it.
  Result<DeskOrder> order(std::int64_t row);
  /// All whole orders that pass a filter, newest first. Corrupt, as order(), when one of them can't be read.
  Result<std::vector<DeskOrder>> orders(const OrderLookup& filter);

  /// How many orders are new.
  Result<int> countNew();
  /// All orders have been looked at.
  Result<> markSeen();

  /// When the server was asked last, in seconds since 1970-01-01 00:00 UTC; 0: never.
  Result<std::int64_t> askedAt();
  /// Notes when a server was asked last, in seconds since 1970.
  Result<> noteAsked(std::int64_t seconds);
  /// Whether the start of the program tells how many orders are new; true until it is set.
  Result<bool> notifiesAtStart();
  /// Notes whether new orders are asked for when the program starts.
  Result<> setNotifiesAtStart(bool notifies);

 private:
  /// Renames a damaged file, so that a new one can be made.
  Result<> putAside();
  /// Makes the file where there is none, and opens it.
  Result<> make();
  /// A note by its name; empty where there is none.
  Result<std::string> noted(std::string_view name);
  /// Writes a note; an older one of its name goes.
  Result<> note(std::string_view name, const std::string& value);
  /// The orders and the cursor of an answer. InUse when another came in between.
  Result<ArrivalCount> keep(const OrderArrival& arrival);
  /// Deletes these orders from the open file.
  Result<> removeEach(const std::vector<GoneOrder>& orders);
  Result<DeskOrder> readKept(std::string_view text);
  /// Runs a step in one transaction.
  Result<> together(const std::function<Result<>()>& work);
  /// Notes an order that has lost its customer since it was kept.
  Result<> noteIfAnonymous(std::string_view kept, const DeskOrder& received);
  /// The codes of orders that were erased in one way.
  Result<std::vector<std::string>> notedCodes(std::string_view kind);
  /// The text of an order that is kept; nothing where there is none.
  Result<std::optional<std::string>> keptText(std::int64_t id, const std::string& code);
  /// Adds an order or replaces it; whether it was added.
  Result<bool> keepOrder(const ReceivedOrder& received, bool isNew);

  std::string shopFolder_;
  Database database_;
  bool wasDamaged_ = false;
};

}  // namespace kv
