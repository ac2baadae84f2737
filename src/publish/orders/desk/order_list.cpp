#include "publish/orders/desk/order_list.h"

#include <array>
#include <charconv>
#include <chrono>

#include "platform/text/text.h"
#include "publish/orders/sales/sales_days.h"
#include "publish/orders/values/order_texts.h"
#include "publish/orders/values/order_withdrawals.h"

namespace kv {
namespace {

constexpr std::array<const char*, orderColumns> columnTitles{"Codice", "Data", "Cliente", "Totale", "Stato"};
/// Choices before the states themselves.
constexpr int listsBefore = 2;
constexpr int century = 2000;
constexpr std::size_t longestPieces = 7;

constexpr std::array<std::pair<const char*, const char*>, 5> totalNames{
    {{"merce", "Merce"}, {"sconto", "Sconto"}, {"iva", "IVA"}, {"spese", "Spese"}, {"ivaspese", "IVA sulle spese"}}};

std::optional<int> smallNumber(std::string_view digits) {
  int number = 0;
  const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (digits.empty() || failure != std::errc() || end != digits.data() + digits.size() || number < 0) return {};
  return number;
}

/// The three numbers of a day, in the order of the text.
std::optional<std::array<int, 3>> threeNumbers(std::string_view text) {
  std::array<int, 3> numbers{};
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const std::size_t end = text.find_first_of("/-.");
    const bool isLast = i + 1 == numbers.size();
    if ((end == std::string_view::npos) != isLast) return std::nullopt;
    const auto number = smallNumber(text.substr(0, end));
    if (!number) return std::nullopt;
    numbers[i] = *number;
    if (!isLast) text.remove_prefix(end + 1);
  }
  return numbers;
}

/// A text of the customer: its lines after the first one are indented, so that none looks like a line of the order.
std::string indented(std::string_view value) {
  std::string text(value);
  for (const char* end : {"\r\n", "\r", "\v", "\f", "\u0085", "\u2028", "\u2029"}) text = replaceAll(text, end, "\n");
  return replaceAll(text, "\n", "\n    ");
}

void addLine(std::string& text, std::string_view name, std::string_view value) {
  if (!trim(value).empty()) text.append(name).append(": ").append(indented(value)).append("\n");
}

void addRecipient(std::string& text, const DeskOrder& order) {
  const auto field = [&order](const char* name) { return orderField(order, name); };
  addLine(text, "Cliente", order.name);
  addLine(text, "Ragione sociale", field("RagioneSociale"));
  addLine(text, "Partita IVA", field("PartitaIVA"));
  addLine(text, "E-mail", order.email);
  addLine(text, "Telefono", field("Telefono"));
  addLine(text, "Indirizzo", field("Indirizzo"));
  std::string town = field("CAP");
  for (const char* name : {"Citta", "Provincia", "Paese"}) {
    const std::string part = field(name);
    if (!part.empty()) town += (town.empty() ? "" : " ") + part;
  }
  addLine(text, "Località", town);
  addLine(text, "Note del cliente", field("Note"));
}

void addLines(std::string& text, const DeskOrder& order) {
  if (order.lines.empty()) {
    if (!order.summary.empty()) text += "\n" + order.summary + "\n";
    return;
  }
  text += "\nArticoli\n";
  for (const DeskOrderLine& line : order.lines) {
    const std::string& title = line.shopTitle.empty() ? line.title : line.shopTitle;
    const std::string& choices = line.shopTitle.empty() ? line.choices : line.shopChoices;
    text += std::to_string(line.quantity) + " × " + (line.code.empty() ? "" : line.code + " ") + title +
            (choices.empty() ? "" : " (" + choices + ")") + ": " + amountText(line.price, order.currency) + "\n";
  }
}

void addTotals(std::string& text, const DeskOrder& order) {
  for (const auto& [name, title] : totalNames) {
    const auto found = order.totals.find(name);
    // An IVA below 0 says that none is due.
    if (found == order.totals.end() || found->second == Money()) continue;
    if (found->second < Money() && std::string_view(name) != "sconto") continue;
    addLine(text, title, amountText(found->second, order.currency));
  }
  addLine(text, "Totale", amountText(order.total, order.currency));
}

void addWithdrawals(std::string& text, const DeskOrder& order) {
  if (!order.withdrawals.empty()) text += "\nRecessi\n";
  for (const DeskWithdrawal& one : order.withdrawals) {
    text += one.number + ", " + orderDate(one.created, true) + ": " + one.state + "\n";
    for (const std::string& line : withdrawalLines(order, one)) text += "    " + line + "\n";
  }
  for (const std::string& sum : withdrawalSums(order, true)) text += sum + "\n";
}

}  // namespace

std::vector<std::string> orderStateChoices() {
  std::vector<std::string> choices{"Tutti", "Da evadere"};
  for (const std::string& state : orderStates()) choices.push_back(stateTitle(state));
  return choices;
}

std::string stateTitle(std::string_view state) {
  std::string title(state);
  if (!title.empty() && title[0] >= 'a' && title[0] <= 'z') title[0] = static_cast<char>(title[0] - ('a' - 'A'));
  return title;
}

std::optional<std::string> typedDay(std::string_view text) {
  text = trim(text);
  if (text.empty()) return std::string();
  auto numbers = threeNumbers(text);
  if (!numbers) return std::nullopt;
  const bool yearFirst = text.find_first_of("/-.") == 4;
  auto [day, month, year] = *numbers;
  if (yearFirst) std::swap(day, year);
  if (year < 100) year += century;
  const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day))};
  if (!date.ok() || year > 9999) return std::nullopt;
  return dayText(date);
}

std::optional<OrderLookup> orderLookup(const OrderFields& fields) {
  const auto from = typedDay(fields.from), to = typedDay(fields.to);
  if (!from || !to) return std::nullopt;
  OrderLookup filter{fields.search, {}, *from, *to};
  if (fields.state == 1) filter.state = openOrders;
  const auto index = static_cast<std::size_t>(fields.state - listsBefore);
  if (fields.state >= listsBefore && index < orderStates().size()) filter.state = orderStates()[index];
  return filter;
}

std::string dayNote(std::string_view text) {
  return typedDay(text) ? std::string() : std::string("Un giorno si scrive così: 31/12/2026");
}

std::string orderColumnTitle(int column) { return columnTitles.at(static_cast<std::size_t>(column)); }

std::string orderCell(const OrderSummary& order, int column) {
  switch (column) {
    case 0:
      return order.code;
    case 1:
      return orderDate(order.created, false);
    case 2:
      return order.name;
    case 3:
      return amountText(order.total, order.currency);
    default:
      return stateTitle(order.state);
  }
}

std::string orderDetails(const DeskOrder& order) {
  std::string text;
  addLine(text, "Ordine", order.code);
  addLine(text, "Data", orderDate(order.created, true));
  addLine(text, "Stato", stateTitle(order.state));
  addLine(text, "Pagamento", order.method);
  addLine(text, "Pagamento confermato", order.payment);
  addRecipient(text, order);
  addLines(text, order);
  addTotals(text, order);
  addWithdrawals(text, order);
  if (!order.notes.empty()) text += "\nAnnotazioni\n";
  for (const DeskOrderNote& note : order.notes) text += orderDate(note.when, true) + " " + indented(note.text) + "\n";
  return text;
}

std::string orderSummaryLine(const OrderCounts& counts) {
  std::string text = counts.shown == 1 ? "Un ordine" : std::to_string(counts.shown) + " ordini";
  if (counts.shown == 0) text = "Nessun ordine";
  if (counts.fresh == 1) text += ", uno nuovo";
  if (counts.fresh > 1) text += ", " + std::to_string(counts.fresh) + " nuovi";
  if (counts.askedText.empty()) return text + "; premere Aggiorna per riceverli dal server";
  return text + "; ricevuti l'ultima volta il " + counts.askedText;
}

std::string newOrdersText(int count) {
  if (count <= 0) return {};
  return count == 1 ? std::string("Un ordine nuovo") : std::to_string(count) + " ordini nuovi";
}

std::optional<StateChange> typedStateChange(const DeskOrder& order, int chosenState) {
  const auto index = static_cast<std::size_t>(chosenState);
  if (chosenState < 0 || index >= orderStates().size() || orderStates()[index] == order.state) return std::nullopt;
  StateChange change;
  change.code = order.code;
  change.from = order.state;
  change.to = orderStates()[index];
  return change;
}

bool offersStock(const DeskOrder& order, int chosenState) {
  const auto change = typedStateChange(order, chosenState);
  return change && (change->from == "annullato" || change->to == "annullato");
}

std::optional<std::string> typedStock(bool onSale, std::string_view pieces) {
  pieces = trim(pieces);
  if (pieces.size() > longestPieces || pieces.find_first_not_of("0123456789") != std::string_view::npos) {
    return std::nullopt;
  }
  const auto number = smallNumber(pieces);
  return std::string(onSale ? "1|" : "0|") + (number ? std::to_string(*number) : std::string());
}

}  // namespace kv
