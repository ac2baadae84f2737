#include "publish/orders/desk/order_desk.h"

#include "platform/ports/failure_text.h"
#include "platform/text/public_address.h"
#include "platform/text/text.h"
#include "publish/orders/wire/order_key.h"

namespace kv {
namespace {

constexpr std::string_view orderScript = "/remoto.php";

constexpr const char* noAddress = "Indicare prima l'indirizzo del negozio nella scheda \"Internet\".";
constexpr const char* freshKey =
    "Gli ordini arrivano su questo computer con una chiave, che è stata creata ora.\n"
    "Pubblicare il negozio una volta con \"Aggiorna il sito...\", perché il server la riceva, poi riprovare.";
constexpr const char* damagedStore =
    "Il file ordini.db era danneggiato ed è stato messo da parte come ordini-danneggiato.db.\n"
    "Con \"Aggiorna\" tutti gli ordini vengono ricevuti di nuovo dal server.";
constexpr const char* perhapsDone =
    "Non si sa se il server ha eseguito la modifica: premere \"Aggiorna\" prima di ripeterla.";
constexpr const char* notKept =
    "La modifica è stata eseguita sul server, ma non è stata annotata qui: premere \"Aggiorna\".\n\n";
constexpr const char* alreadyThere =
    "L'ordine aveva già questo stato sul server: nulla è stato modificato, e nessun messaggio è partito.";
constexpr const char* notInStock =
    ": nulla è stato modificato. Premere \"Leggi dal server\" per leggere di nuovo l'elenco.";
constexpr const char* nameless =
    "Il negozio ha eliminato i dati dei clienti di questi ordini. Sono stati eliminati anche da questo computer;\n"
    "gli ordini restano, senza nome: ";
constexpr const char* goneFromShop =
    "Il negozio ha eliminato questi ordini, e perciò sono stati eliminati anche da questo computer: ";
constexpr const char* alsoElsewhere =
    "Se questi dati si trovano anche in stampe, in file PDF, CSV o XLSX e in copie del computer, eliminarli anche lì.";
constexpr const char* notWiped =
    "Gli ordini sono stati aggiornati, ma il file non è stato ripulito; accadrà con il prossimo \"Aggiorna\".\n\n";
constexpr std::size_t codesShown = 20;

/// The first codes, and how many there are beside them.
std::string codeList(const std::vector<std::string>& codes) {
  std::string text;
  for (std::size_t i = 0; i < codes.size() && i < codesShown; ++i) text += (i > 0 ? ", " : "") + codes[i];
  if (codes.size() > codesShown) text += " e altri " + std::to_string(codes.size() - codesShown);
  return text + ".";
}

/// What was erased here, as the merchant reads it.
std::string erasedText(const ErasedOrders& erased, bool keepsDamagedFile) {
  std::string text;
  if (!erased.anonymous.empty()) text += nameless + codeList(erased.anonymous) + "\n\n";
  if (!erased.removed.empty()) text += goneFromShop + codeList(erased.removed) + "\n\n";
  if (keepsDamagedFile) text += "Anche il file ordini-danneggiato.db, messo da parte, viene eliminato.\n\n";
  return text + alsoElsewhere;
}

bool mayHaveHappened(const Error& error) { return error.number == outcomeNotKnown; }

/// A question about a conflict shows both values and the chosen one; keeping the server's is the default.
struct Conflict {
  std::string what;  ///< a sentence
  std::string here, there, chosen;
};

bool repeats(UserPort& user, const Conflict& conflict) {
  const std::string text = conflict.what + "\n\nQui: " + conflict.here + "\nSul server: " + conflict.there +
                           "\nScelto: " + conflict.chosen +
                           "\n\nNulla è stato modificato. Si desidera impostare comunque il valore scelto?";
  return user.question({text, Buttons::YesNo, Answer::No, Icon::Exclamation}) == Answer::Yes;
}

}  // namespace

Result<std::string> orderAddress(Session& session) {
  auto query = session.catalogue.prepare("SELECT URL, cartellaCGI FROM generale");
  if (!query) return fail(query.error());
  const auto found = query->step();
  if (!found) return fail(found.error());
  if (!*found || trim(query->text(0)).empty()) return std::string();
  return publicAddress(query->text(0), query->text(1)) + std::string(orderScript);
}

Result<OrderAccess> orderAccess(Session& session, RandomSource& random) {
  auto address = orderAddress(session);
  if (!address) return fail(address.error());
  if (address->empty()) return fail(ErrorKind::Missing, "URL", noAddress);
  auto key = orderKey(session);
  if (!key) return fail(key.error());
  if (!key->empty()) return OrderAccess{std::move(*address), std::move(*key)};
  if (auto made = makeOrderKey(session, random); !made) return fail(made.error());
  return fail(ErrorKind::Missing, *address, freshKey);
}

std::string orderFailureText(const Error& error) {
  if (error.kind == ErrorKind::Cancelled || error.kind == ErrorKind::Told) return {};
  const bool isSentence =
      error.kind == ErrorKind::Missing || error.kind == ErrorKind::Malformed || error.kind == ErrorKind::Other;
  return isSentence && error.number <= 0 ? error.what : failureText(error, ordersFile);
}

OrderDesk::OrderDesk(OrderStore& store, OrderDeskPorts ports) : store_(store), ports_(std::move(ports)) {}

bool OrderDesk::open() {
  const auto opened = store_.open();
  if (store_.wasDamaged() && opened) ports_.user.message(damagedStore, Icon::Exclamation);
  if (!opened) ports_.user.message(failureText(opened.error(), ordersFile), Icon::Critical);
  return opened.has_value();
}

void OrderDesk::showError(const Error& error) {
  const std::string text = orderFailureText(error);
  if (!text.empty()) ports_.user.message(text, Icon::Exclamation);
}

void OrderDesk::showRefusal(const Error& error) {
  if (!mayHaveHappened(error)) return showError(error);
  const std::string text = orderFailureText(error);
  ports_.user.message((text.empty() ? text : text + "\n\n") + perhapsDone, Icon::Exclamation);
}

void OrderDesk::showRest(const OrderChange& done) {
  if (!done.mail.empty()) ports_.user.message(done.mail, Icon::Information);
  showErased();
  if (!done.kept) ports_.user.message(notKept + failureText(done.kept.error(), ordersFile), Icon::Exclamation);
}

void OrderDesk::showErased() {
  const auto erased = store_.erased();
  if (!erased || erased->isNone()) return;
  ports_.user.message(erasedText(*erased, store_.keepsDamagedFile()), Icon::Information);
  const auto wiped = store_.erasedShown();
  if (!wiped) ports_.user.message(notWiped + failureText(wiped.error(), ordersFile), Icon::Exclamation);
}

void OrderDesk::askUnknown(const std::string& code) {
  const std::string text = "Il server non ha più l'ordine " + code +
                           ". Quello già ricevuto resta leggibile qui.\n\nSi desidera eliminarlo anche da questo "
                           "computer, con i dati del cliente?";
  if (ports_.user.question({text, Buttons::YesNo, Answer::No, Icon::Question}) != Answer::Yes) return;
  const auto removed = store_.removeCode(code);
  if (!removed) ports_.user.message(failureText(removed.error(), ordersFile), Icon::Critical);
}

std::optional<FetchedOrders> OrderDesk::fetch(const std::function<void(int orders)>& received) {
  const auto access = ports_.access();
  const auto fetched =
      access ? fetchOrders(store_, *access, ports_.means, received) : Result<FetchedOrders>(fail(access.error()));
  if (!fetched) showError(fetched.error());
  // Also after a failure: what came before it is kept, and erased.
  showErased();
  return fetched ? std::optional(*fetched) : std::nullopt;
}

bool OrderDesk::changeState(StateChange change) {
  const auto access = ports_.access();
  if (!access) {
    showError(access.error());
    return false;
  }
  for (;;) {
    const auto done = changeOrderState(store_, *access, ports_.means, change);
    if (!done) {
      showRefusal(done.error());
      return false;
    }
    showRest(*done);
    if (done->outcome == ChangeOutcome::Unknown) askUnknown(change.code);
    if (done->outcome != ChangeOutcome::Different || !done->order) return true;
    const Conflict conflict{"Lo stato dell'ordine " + change.code + " è cambiato nel frattempo sul server.",
                            change.from, done->order->state, change.to};
    if (done->order->state == change.to) {
      ports_.user.message(alreadyThere, Icon::Information);
      return true;
    }
    if (!repeats(ports_.user, conflict)) return true;
    change.from = done->order->state;
  }
}

bool OrderDesk::addNote(const OrderNote& note) {
  const auto access = ports_.access();
  const auto done =
      access ? addOrderNote(store_, *access, ports_.means, note) : Result<OrderChange>(fail(access.error()));
  if (!done) {
    showRefusal(done.error());
    return false;
  }
  showRest(*done);
  if (done->outcome == ChangeOutcome::Unknown) askUnknown(note.code);
  return done->outcome == ChangeOutcome::Done;
}

std::optional<StockAnswer> OrderDesk::stock(const StockQuery& query) {
  const auto access = ports_.access();
  auto items = access ? fetchStock(*access, ports_.means, query) : Result<StockAnswer>(fail(access.error()));
  if (items) return std::move(*items);
  showError(items.error());
  return std::nullopt;
}

std::optional<std::string> OrderDesk::setStock(StockChange change, const std::string& name) {
  const auto access = ports_.access();
  if (!access) {
    showError(access.error());
    return std::nullopt;
  }
  for (;;) {
    const auto done = changeStock(*access, ports_.means, change);
    if (!done) {
      showRefusal(done.error());
      return std::nullopt;
    }
    if (done->outcome == ChangeOutcome::Unknown) {
      ports_.user.message("Il server non conosce più " + name + notInStock, Icon::Exclamation);
      return std::nullopt;
    }
    if (done->outcome == ChangeOutcome::Done || done->level == change.after) return done->level;
    const Conflict conflict{"La disponibilità di " + name + " è cambiata nel frattempo sul server.",
                            stockLevelText(change.before), stockLevelText(done->level), stockLevelText(change.after)};
    if (!repeats(ports_.user, conflict)) return done->level;
    change.before = done->level;
  }
}

std::string stockLevelText(std::string_view level) {
  if (!level.starts_with("1|")) return "non disponibile";
  level.remove_prefix(2);
  return level.empty() ? std::string("senza limite") : std::string(level);
}

}  // namespace kv
