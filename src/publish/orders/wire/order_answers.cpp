#include "publish/orders/wire/order_answers.h"

#include <string_view>

#include "publish/orders/values/order_texts.h"
#include "publish/orders/wire/order_protocol.h"
#include "publish/orders/wire/order_requests.h"

namespace kv {
namespace {

constexpr std::size_t mostOrders = 500;
constexpr std::size_t mostLines = 10'000;
constexpr std::size_t longestOrder = std::size_t{1} << 20;
constexpr std::size_t longestCode = 200;
constexpr std::int64_t mostPieces = 1'000'000'000;
constexpr std::size_t mostWithdrawals = 1000;

tl::unexpected<Error> outOfBounds(std::string_view what) {
  return fail(ErrorKind::Malformed, std::string(what),
              "La risposta del server contiene dati non validi (" + std::string(what) +
                  ") e non è stata usata.\nGli ordini già ricevuti sono rimasti: riprovare, o pubblicare il negozio.",
              outcomeNotKnown);
}

/// "yyyy-mm-dd hh:mm:ss", each digit a digit.
bool isTimeText(std::string_view text) {
  constexpr std::string_view mask = "0000-00-00 00:00:00";
  if (text.size() != mask.size()) return false;
  for (std::size_t i = 0; i < mask.size(); ++i) {
    const bool isDigit = text[i] >= '0' && text[i] <= '9';
    if (mask[i] == '0' ? !isDigit : text[i] != mask[i]) return false;
  }
  return true;
}

/// An amount of a member; a missing one is none.
std::optional<Money> amountOf(const JsonValue& value, std::string_view name) {
  const std::string text = value.textOf(name);
  return text.empty() ? std::nullopt : Money::parse(text);
}

Result<DeskOrderLine> readLine(const JsonValue& value) {
  DeskOrderLine line;
  line.article = value.wholeOf("id").value_or(0);
  line.code = value.textOf("codice");
  line.title = value.textOf("testo");
  line.choices = value.textOf("scelte");
  line.shopTitle = value.textOf("prima");
  line.shopChoices = value.textOf("scelte_prima");
  const auto quantity = value.wholeOf("quantita");
  if (!quantity || *quantity < 0 || *quantity > mostPieces) return outOfBounds("quantita");
  line.quantity = *quantity;
  const auto price = amountOf(value, "importo");
  if (!price) return outOfBounds("importo");
  line.price = *price;
  return line;
}

Result<> readAmounts(const JsonValue& value, DeskOrder& order) {
  const auto total = amountOf(value, "totale");
  if (!total) return outOfBounds("totale");
  order.total = *total;
  const JsonValue* totals = value.member("totali");
  if (totals == nullptr) return {};
  for (const std::string& name : totals->names) {
    const auto amount = amountOf(*totals, name);
    if (!amount) return outOfBounds("totali");
    order.totals[name] = *amount;
  }
  return {};
}

Result<> readLines(const JsonValue& value, DeskOrder& order) {
  const auto& lines = value.listOf("righe");
  if (lines.size() > mostLines) return outOfBounds("righe");
  for (const JsonValue& one : lines) {
    auto line = readLine(one);
    if (!line) return fail(line.error());
    order.lines.push_back(std::move(*line));
  }
  return {};
}

void readTexts(const JsonValue& value, DeskOrder& order) {
  order.modified = value.textOf("modificato");
  order.name = value.textOf("nome");
  order.email = value.textOf("email");
  order.currency = value.textOf("valuta");
  order.method = value.textOf("metodo");
  order.state = value.textOf("stato");
  order.language = value.textOf("lingua");
  order.payment = value.textOf("pagamento");
  order.summary = value.textOf("riepilogo");
}

void readParts(const JsonValue& value, DeskOrder& order) {
  if (const JsonValue* fields = value.member("campi")) {
    for (const std::string& name : fields->names) order.fields[name] = fields->textOf(name);
  }
  for (const JsonValue& note : value.listOf("note")) {
    order.notes.push_back({note.textOf("quando"), note.textOf("tipo"), note.textOf("testo")});
  }
}

Result<DeskWithdrawal> readWithdrawal(const JsonValue& value) {
  DeskWithdrawal withdrawal{value.textOf("numero"), value.textOf("creato"), value.textOf("stato"), {}};
  const auto& lines = value.listOf("righe");
  if (lines.size() > mostLines) return outOfBounds("recessi");
  for (const JsonValue& one : lines) {
    const auto quantity = one.wholeOf("quantita");
    if (!quantity || *quantity < 0 || *quantity > mostPieces) return outOfBounds("recessi");
    withdrawal.lines.push_back(
        {one.wholeOf("riga").value_or(-1), one.textOf("testo"), one.textOf("scelte"), *quantity});
  }
  return withdrawal;
}

Result<> readWithdrawals(const JsonValue& value, DeskOrder& order) {
  const auto& list = value.listOf("recessi");
  if (list.size() > mostWithdrawals) return outOfBounds("recessi");
  for (const JsonValue& one : list) {
    auto withdrawal = readWithdrawal(one);
    if (!withdrawal) return fail(withdrawal.error());
    order.withdrawals.push_back(std::move(*withdrawal));
  }
  return {};
}

Result<ReceivedOrder> receivedOrder(const JsonValue& value) {
  auto order = deskOrder(value);
  if (!order) return fail(order.error());
  ReceivedOrder received{std::move(*order), jsonText(value)};
  if (received.text.size() > longestOrder) return outOfBounds("ordine");
  return received;
}

Result<ChangeOutcome> outcomeOf(const JsonValue& answer) {
  const std::string word = answer.textOf("esito");
  if (word == "fatto") return ChangeOutcome::Done;
  if (word == "diverso") return ChangeOutcome::Different;
  if (word == "sconosciuto") return ChangeOutcome::Unknown;
  return outOfBounds("esito");
}

/// A level that the back office can have written: "1|12", "1|", "0|3", "0|".
bool isLevel(std::string_view level) {
  constexpr std::size_t mostDigits = 10;
  if (level.size() < 2 || (level[0] != '0' && level[0] != '1') || level[1] != '|') return false;
  level.remove_prefix(2);
  return level.size() <= mostDigits && level.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace

Result<DeskOrder> deskOrder(const JsonValue& value) {
  if (value.kind != JsonKind::Object) return outOfBounds("ordine");
  DeskOrder order;
  order.id = value.wholeOf("id").value_or(0);
  order.code = value.textOf("codice");
  order.created = value.textOf("creato");
  order.customer = value.wholeOf("cliente").value_or(0);
  if (order.id <= 0) return outOfBounds("id");
  if (order.code.empty() || order.code.size() > longestCode) return outOfBounds("codice");
  if (!isTimeText(order.created)) return outOfBounds("creato");
  readTexts(value, order);
  if (order.state.size() > longestCode) return outOfBounds("stato");
  readParts(value, order);
  if (auto read = readAmounts(value, order); !read) return fail(read.error());
  if (auto read = readLines(value, order); !read) return fail(read.error());
  if (auto read = readWithdrawals(value, order); !read) return fail(read.error());
  return order;
}

Result<OrdersAnswer> ordersAnswer(const JsonValue& answer) {
  OrdersAnswer page;
  const JsonValue* orders = answer.member("ordini");
  if (orders == nullptr || orders->kind != JsonKind::List || orders->items.size() > mostOrders) {
    return outOfBounds("ordini");
  }
  for (const JsonValue& one : orders->items) {
    auto order = receivedOrder(one);
    if (!order) return fail(order.error());
    page.orders.push_back(std::move(*order));
  }
  page.next = answer.textOf("dopo");
  page.more = answer.flagOf("altri");
  page.goneMark = answer.textOf("tolti");
  if (page.next.size() > longestCode) return outOfBounds("dopo");
  if (page.goneMark.size() > longestCode) return outOfBounds("tolti");
  return page;
}

Result<GoneOrdersAnswer> goneOrdersAnswer(const JsonValue& answer) {
  GoneOrdersAnswer page;
  const JsonValue* orders = answer.member("tolti");
  if (orders == nullptr || orders->kind != JsonKind::List || orders->items.size() > goneOrdersPerAnswer) {
    return outOfBounds("tolti");
  }
  for (const JsonValue& one : orders->items) {
    GoneOrder order{one.wholeOf("id").value_or(0), one.textOf("codice")};
    if (order.id <= 0 || order.code.empty() || order.code.size() > longestCode) return outOfBounds("tolti");
    page.orders.push_back(std::move(order));
  }
  page.more = answer.flagOf("altri");
  // A part without an order would be asked for without end.
  if (page.more && page.orders.empty()) return outOfBounds("tolti");
  return page;
}

Result<ChangeAnswer> changeAnswer(const JsonValue& answer) {
  const auto outcome = outcomeOf(answer);
  if (!outcome) return fail(outcome.error());
  ChangeAnswer change{*outcome, std::nullopt, shownTextOf(answer.textOf("mail"))};
  const JsonValue* order = answer.member("ordine");
  if (order == nullptr || order->kind == JsonKind::Null) {
    if (change.outcome != ChangeOutcome::Unknown) return outOfBounds("ordine");
    return change;
  }
  auto received = receivedOrder(*order);
  if (!received) return fail(received.error());
  change.order = std::move(*received);
  return change;
}

Result<StockAnswer> stockAnswer(const JsonValue& answer) {
  StockAnswer page;
  const JsonValue* items = answer.member("voci");
  if (items == nullptr || items->kind != JsonKind::List || items->items.size() > mostOrders) {
    return outOfBounds("voci");
  }
  for (const JsonValue& one : items->items) {
    StockItem item{one.textOf("chiave"), one.textOf("codice"), one.textOf("nome"), one.textOf("voce")};
    if (item.key.empty() || !isLevel(item.level)) return outOfBounds("voce");
    page.items.push_back(std::move(item));
  }
  page.more = answer.flagOf("altri");
  return page;
}

Result<StockChangeAnswer> stockChangeAnswer(const JsonValue& answer) {
  const auto outcome = outcomeOf(answer);
  if (!outcome) return fail(outcome.error());
  StockChangeAnswer change{*outcome, answer.textOf("voce")};
  if (!isLevel(change.level) && change.outcome != ChangeOutcome::Unknown) return outOfBounds("voce");
  return change;
}

}  // namespace kv
