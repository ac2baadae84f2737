#include "publish/orders/store/order_store.h"

#include <charconv>

#include "platform/files/files.h"
#include "platform/files/private_file.h"
#include "platform/ports/failure_text.h"
#include "platform/text/text.h"
#include "publish/orders/store/order_search.h"

namespace kv {
namespace {

constexpr std::string_view unfinishedFile = "ordini.tm0";
constexpr std::string_view addressNote = "indirizzo", cursorNote = "dopo", askedNote = "chiesto", noticeNote = "avviso";

// An order is known by number and code: a server that was set up again counts from 1, with other codes.
constexpr const char* tables =
    "CREATE TABLE ordini (riga INTEGER PRIMARY KEY, id INTEGER NOT NULL, codice TEXT NOT NULL, creato TEXT NOT NULL,"
    " nome TEXT, totale INTEGER, valuta TEXT, stato TEXT, visto INTEGER, cerca TEXT, dati TEXT, UNIQUE (id, codice));"
    "CREATE INDEX ix_ordini_creato ON ordini (creato);"
    "CREATE TABLE annotato (nome TEXT PRIMARY KEY, valore TEXT)";

// A kill leaves the file whole; after a loss of power it may be damaged, and is fetched again.
// What is replaced or removed is overwritten: a customer's data that the shop deletes must not stay in unused pages.
constexpr const char* fileHabits = "PRAGMA synchronous=OFF; PRAGMA secure_delete=ON";

constexpr const char* addOrder =
    "INSERT INTO ordini (id, codice, creato, nome, totale, valuta, stato, cerca, dati, visto)"
    " VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10) ON CONFLICT (id, codice) DO UPDATE SET creato = ?3, nome = ?4,"
    " totale = ?5, valuta = ?6, stato = ?7, cerca = ?8, dati = ?9";

// Not what failureText says of a damaged file: no copy of the catalogue has orders.
constexpr const char* damagedOrders =
    "Il file ordini.db è danneggiato: un ordine non può essere letto. Gli altri sono rimasti.\n"
    "Chiudere gli ordini, riaprirli e premere \"Aggiorna\": vengono ricevuti di nuovo dal server.\n\nDettaglio: ";

/// Whether a file has our tables and all of its pages are whole. A failure of the disk says nothing about that.
Result<bool> isWhole(Database& database) {
  const auto known = database.scalar("SELECT COUNT(*) FROM sqlite_schema WHERE name IN ('ordini', 'annotato')");
  if (!known) return known.error().kind == ErrorKind::Corrupt ? Result<bool>(false) : Result<bool>(fail(known.error()));
  if (asInteger(*known) != 2) return false;
  const auto found = database.scalar("PRAGMA quick_check(1)");
  if (!found) return found.error().kind == ErrorKind::Corrupt ? Result<bool>(false) : Result<bool>(fail(found.error()));
  return asText(*found) == "ok";
}

/// An empty store. Nobody else may read it before the first order is in it.
Result<> makeFile(const std::string& path) {
  auto made = Database::create(path);
  if (!made) return fail(made.error());
  ignore(made->execute(fileHabits), "it is only slower then");
  if (auto restricted = restrictToOwner(path); !restricted) return restricted;
  return made->execute(tables);
}

std::int64_t wholeNumber(const std::string& text) {
  std::int64_t number = 0;
  ignore(std::from_chars(text.data(), text.data() + text.size(), number), "what is no number counts as 0");
  return number;
}

}  // namespace

OrderStore::OrderStore(std::string shopFolder) : shopFolder_(std::move(shopFolder)) {}

std::string OrderStore::path() const { return entryPath(shopFolder_, ordersFile); }

Result<> OrderStore::open() {
  if (database_.isOpen()) return {};
  auto opened = Database::open(path(), OpenMode::Shared);
  if (!opened && opened.error().kind == ErrorKind::Missing) return {};
  if (!opened && opened.error().kind != ErrorKind::Corrupt) return fail(opened.error());
  const auto whole = opened ? isWhole(*opened) : Result<bool>(false);
  if (!whole) return fail(whole.error());
  if (!*whole) {
    if (opened) opened->close();
    return putAside();
  }
  ignore(opened->execute(fileHabits), "it is only slower then");
  ignore(restrictToOwner(path()), "a file system without permissions, or another user's file, is read all the same");
  database_ = std::move(*opened);
  return {};
}

Result<> OrderStore::putAside() {
  wasDamaged_ = true;
  ignore(deleteFile(path() + "-journal"), "usually there is none");
  return renameFile(path(), joinPath(shopFolder_, damagedOrdersFile));
}

Result<> OrderStore::make() {
  if (auto opened = open(); !opened || isOpen()) return opened;
  // Under another name until it is whole, so that a cut leaves no file that looks damaged.
  const std::string fresh = joinPath(shopFolder_, unfinishedFile);
  ignore(deleteFile(fresh), "what is left of a cut is reported by the making, if it can't go");
  Result<> done = makeFile(fresh);
  if (done) done = renameFile(fresh, path());
  if (!done) {
    ignore(deleteFile(fresh), "the next making deletes it");
    return done;
  }
  return open();
}

Result<std::string> OrderStore::noted(std::string_view name) {
  if (!isOpen()) return std::string();
  auto query = database_.prepare("SELECT valore FROM annotato WHERE nome = ?1");
  if (!query) return fail(query.error());
  query->bind(1, name);
  const auto found = query->step();
  if (!found) return fail(found.error());
  return *found ? std::string(query->text(0)) : std::string();
}

Result<> OrderStore::note(std::string_view name, const std::string& value) {
  auto insert = database_.prepare("INSERT OR REPLACE INTO annotato (nome, valore) VALUES (?1, ?2)");
  if (!insert) return fail(insert.error());
  insert->bind(1, name);
  insert->bind(2, value);
  return insert->execute();
}

Result<std::string> OrderStore::cursor(const std::string& address) {
  // A file that was deleted while it was open is made again, with all orders.
  if (isOpen() && !fileExists(path())) database_.close();
  auto asked = noted(addressNote);
  if (!asked) return asked;
  return *asked == address ? noted(cursorNote) : Result<std::string>(std::string());
}

Result<> OrderStore::together(const std::function<Result<>()>& work) {
  if (auto begun = database_.begin(); !begun) return begun;
  if (auto done = work(); !done) {
    database_.rollback();
    return done;
  }
  return database_.commit();
}

Result<ArrivalCount> OrderStore::take(const OrderArrival& arrival) {
  if (auto made = make(); !made) return fail(made.error());
  ArrivalCount count;
  const auto taken = together([&]() -> Result<> {
    const auto kept = keep(arrival);
    if (!kept) return fail(kept.error());
    count = *kept;
    return {};
  });
  if (!taken) return fail(taken.error());
  return count;
}

Result<ArrivalCount> OrderStore::keep(const OrderArrival& arrival) {
  const auto now = cursor(arrival.address);
  if (!now) return fail(now.error());
  if (*now != arrival.before) return fail(ErrorKind::InUse, path(), "another answer came in between");
  ArrivalCount count;
  for (const ReceivedOrder& order : arrival.answer.orders) {
    const auto added = keepOrder(order, true);
    if (!added) return fail(added.error());
    ++(*added ? count.added : count.changed);
  }
  if (auto done = note(addressNote, arrival.address); !done) return fail(done.error());
  if (auto done = note(cursorNote, arrival.answer.next); !done) return fail(done.error());
  return count;
}

Result<bool> OrderStore::keepOrder(const ReceivedOrder& received, bool isNew) {
  const DeskOrder& order = received.order;
  const auto found = keptText(order.id, order.code);
  if (!found) return fail(found.error());
  if (*found) {
    if (auto noted = noteIfAnonymous(**found, order); !noted) return fail(noted.error());
  }
  auto insert = database_.prepare(addOrder);
  if (!insert) return fail(insert.error());
  const std::string search = searchedText(order);
  insert->bind(1, order.id);
  insert->bind(2, order.code);
  insert->bind(3, order.created);
  insert->bind(4, order.name);
  insert->bind(5, order.total);
  insert->bind(6, order.currency);
  insert->bind(7, order.state);
  insert->bind(8, search);
  insert->bind(9, received.text);
  insert->bind(10, !isNew);
  if (auto done = insert->execute(); !done) return fail(done.error());
  return !found->has_value();
}

Result<> OrderStore::replace(const ReceivedOrder& order) {
  if (auto made = make(); !made) return made;
  return together([&]() -> Result<> {
    const auto kept = keepOrder(order, false);
    return kept ? Result<>() : Result<>(fail(kept.error()));
  });
}

Result<std::optional<std::string>> OrderStore::keptText(std::int64_t id, const std::string& code) {
  auto query = database_.prepare("SELECT dati FROM ordini WHERE id = ?1 AND codice = ?2");
  if (!query) return fail(query.error());
  query->bind(1, id);
  query->bind(2, code);
  const auto found = query->step();
  if (!found) return fail(found.error());
  return *found ? std::optional(std::string(query->text(0))) : std::nullopt;
}

Result<std::vector<OrderSummary>> OrderStore::list(const OrderLookup& filter) {
  std::vector<OrderSummary> list;
  if (!isOpen()) return list;
  OrderQuery rows("riga, codice, creato, nome, totale, valuta, stato, visto", filter);
  auto query = rows.prepare(database_);
  if (!query) return fail(query.error());
  auto more = query->step();
  for (; more && *more; more = query->step()) {
    OrderSummary one;
    one.row = query->integer(0);
    one.code = query->text(1);
    one.created = query->text(2);
    one.name = query->text(3);
    one.total = query->money(4);
    one.currency = query->text(5);
    one.state = query->text(6);
    one.isNew = !query->flag(7);
    list.push_back(std::move(one));
  }
  if (!more) return fail(more.error());
  return list;
}

Result<DeskOrder> OrderStore::order(std::int64_t row) {
  if (!isOpen()) return fail(ErrorKind::Missing, path(), "no orders");
  auto query = database_.prepare("SELECT dati FROM ordini WHERE riga = ?1");
  if (!query) return fail(query.error());
  query->bind(1, row);
  const auto found = query->step();
  if (!found) return fail(found.error());
  if (!*found) return fail(ErrorKind::Missing, path(), "no such order");
  return readKept(query->text(0));
}

Result<DeskOrder> OrderStore::readKept(std::string_view text) {
  auto order = keptOrder(text, path());
  if (!order && order.error().kind == ErrorKind::Corrupt) {
    ignore(note(cursorNote, ""), "whoever reads the order again tries it again");
  }
  return order;
}

Result<std::vector<DeskOrder>> OrderStore::orders(const OrderLookup& filter) {
  std::vector<DeskOrder> orders;
  if (!isOpen()) return orders;
  OrderQuery rows("dati", filter);
  auto query = rows.prepare(database_);
  if (!query) return fail(query.error());
  auto more = query->step();
  for (; more && *more; more = query->step()) {
    auto order = readKept(query->text(0));
    if (!order) return fail(order.error());
    orders.push_back(std::move(*order));
  }
  if (!more) return fail(more.error());
  return orders;
}

std::string orderStoreFailureText(const Error& error) {
  return error.kind == ErrorKind::Corrupt ? damagedOrders + error.what : failureText(error, ordersFile);
}

Result<int> OrderStore::countNew() {
  if (!isOpen()) return 0;
  const auto count = database_.scalar("SELECT COUNT(*) FROM ordini WHERE visto = 0");
  if (!count) return fail(count.error());
  return static_cast<int>(asInteger(*count));
}

Result<> OrderStore::markSeen() {
  return isOpen() ? database_.execute("UPDATE ordini SET visto = 1 WHERE visto = 0") : Result<>();
}

Result<std::int64_t> OrderStore::askedAt() {
  const auto text = noted(askedNote);
  if (!text) return fail(text.error());
  return wholeNumber(*text);
}

Result<> OrderStore::noteAsked(std::int64_t seconds) {
  return isOpen() ? note(askedNote, std::to_string(seconds)) : Result<>();
}

Result<bool> OrderStore::notifiesAtStart() {
  const auto text = noted(noticeNote);
  if (!text) return fail(text.error());
  return *text != "0";
}

Result<> OrderStore::setNotifiesAtStart(bool notifies) {
  return isOpen() ? note(noticeNote, notifies ? "1" : "0") : Result<>();
}

}  // namespace kv
