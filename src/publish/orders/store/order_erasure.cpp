// What the shop deletes is deleted here too, and noted until it is told.
// Source: regulation (EU) 2016/679, articles 17 and 19.
#include "platform/files/files.h"
#include "publish/orders/store/order_search.h"
#include "publish/orders/store/order_store.h"

namespace kv {
namespace {

// Names of notes: before the code of an order that was erased and not yet told; of what the server had deleted.
constexpr std::string_view anonymousNote = "anonimo ", removedNote = "tolto ", goneNote = "tolti";

/// What is noted of a server; other servers count on their own.
std::string markOf(const std::string& address, const std::string& mark) { return mark + " " + address; }

}  // namespace

Result<> OrderStore::noteIfAnonymous(std::string_view kept, const DeskOrder& received) {
  // An order is never placed without an address.
  if (!received.email.empty() || received.customer != 0) return {};
  const auto before = keptOrder(kept, path());
  if (!before) return before.error().kind == ErrorKind::Corrupt ? Result<>() : Result<>(fail(before.error()));
  return before->email.empty() ? Result<>() : note(std::string(anonymousNote) + received.code, {});
}

Result<> OrderStore::removeEach(const std::vector<GoneOrder>& orders) {
  for (const GoneOrder& order : orders) {
    auto removal = database_.prepare("DELETE FROM ordini WHERE id = ?1 AND codice = ?2");
    if (!removal) return fail(removal.error());
    removal->bind(1, order.id);
    removal->bind(2, order.code);
    if (auto done = removal->execute(); !done) return done;
    if (database_.changes() == 0) continue;
    if (auto noted = note(std::string(removedNote) + order.code, {}); !noted) return noted;
  }
  return {};
}

Result<> OrderStore::remove(const std::vector<GoneOrder>& orders) {
  if (!isOpen()) return {};
  return together([&] { return removeEach(orders); });
}

Result<> OrderStore::removeCode(const std::string& code) {
  if (!isOpen()) return {};
  auto removal = database_.prepare("DELETE FROM ordini WHERE codice = ?1");
  if (!removal) return fail(removal.error());
  removal->bind(1, code);
  return removal->execute();
}

Result<std::string> OrderStore::goneMark(const std::string& address) {
  auto kept = noted(goneNote);
  if (!kept) return kept;
  const std::size_t end = kept->find(' ');
  const bool isHere = end != std::string::npos && kept->substr(end + 1) == address;
  return isHere ? kept->substr(0, end) : std::string();
}

Result<> OrderStore::noteGoneMark(const std::string& address, const std::string& mark) {
  return isOpen() ? note(goneNote, markOf(address, mark)) : Result<>();
}

Result<std::vector<std::string>> OrderStore::notedCodes(std::string_view kind) {
  std::vector<std::string> codes;
  auto query = database_.prepare("SELECT substr(nome, length(?1) + 1) FROM annotato WHERE instr(nome, ?1) = 1");
  if (!query) return fail(query.error());
  query->bind(1, kind);
  auto more = query->step();
  for (; more && *more; more = query->step()) codes.emplace_back(query->text(0));
  if (!more) return fail(more.error());
  return codes;
}

Result<ErasedOrders> OrderStore::erased() {
  if (!isOpen()) return ErasedOrders();
  auto anonymous = notedCodes(anonymousNote);
  if (!anonymous) return fail(anonymous.error());
  auto removed = notedCodes(removedNote);
  if (!removed) return fail(removed.error());
  return ErasedOrders{std::move(*anonymous), std::move(*removed)};
}

bool OrderStore::keepsDamagedFile() const { return fileExists(joinPath(shopFolder_, damagedOrdersFile)); }

Result<> OrderStore::erasedShown() {
  if (auto rebuilt = database_.execute("VACUUM"); !rebuilt) return rebuilt;
  auto deleted = deleteFile(joinPath(shopFolder_, damagedOrdersFile));
  if (!deleted && deleted.error().kind != ErrorKind::Missing) return deleted;
  for (const std::string_view kind : {anonymousNote, removedNote}) {
    auto removal = database_.prepare("DELETE FROM annotato WHERE instr(nome, ?1) = 1");
    if (!removal) return fail(removal.error());
    removal->bind(1, kind);
    if (auto done = removal->execute(); !done) return done;
  }
  return {};
}

}  // namespace kv
