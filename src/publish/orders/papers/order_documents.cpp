#include "publish/orders/papers/order_documents.h"

#include <algorithm>
#include <array>

#include "platform/text/text.h"
#include "publish/orders/values/order_texts.h"
#include "publish/orders/values/order_withdrawals.h"

namespace kv {
namespace {

constexpr int widestLogo = 240, highestLogo = 72;  // 1/96 inch: 63 by 19 mm

constexpr std::string_view paperStyle =
    "<style>p,td,th{font-size:10pt}h1{font-size:16pt}h2{font-size:11pt}small{font-size:8pt}"
    "th{font-weight:bold}pre{font-size:9pt}</style>";

/// A column of a table on paper.
struct PaperColumn {
  std::string_view heading;
  bool isNumber;
  int percent;
};

/// A cell as HTML; numbers are at its right side, with no break in them.
std::string paperCell(std::string_view tag, const PaperColumn& column, const std::string& html) {
  std::string cell = "<" + std::string(tag);
  cell += column.isNumber ? " align=\"right\" style=\"white-space:nowrap\"" : " align=\"left\"";
  if (tag == "th") cell += " width=\"" + std::to_string(column.percent) + "%\"";
  return cell + ">" + html + "</" + std::string(tag) + ">";
}

std::string paperTable(const std::vector<PaperColumn>& columns, const std::vector<std::vector<std::string>>& rows) {
  std::string html =
      "<table width=\"100%\" border=\"1\" cellspacing=\"0\" cellpadding=\"4\" "
      "style=\"border-collapse:collapse;margin-top:6px;margin-bottom:6px\">"
      "<thead><tr>";
  for (const PaperColumn& column : columns) html += paperCell("th", column, std::string(column.heading));
  html += "</tr></thead>";
  for (const auto& row : rows) {
    html += "<tr>";
    for (std::size_t i = 0; i < row.size(); ++i) html += paperCell("td", columns[i], row[i]);
    html += "</tr>";
  }
  return html + "</table>";
}

/// The words of a line in the shop's first language, and under them the customer's where they differ.
std::string lineWordsHtml(const DeskOrderLine& line) {
  std::string html = textAsHtml(line.shopTitle);
  if (!line.shopChoices.empty()) html += "<br><small>" + textAsHtml(line.shopChoices) + "</small>";
  if (line.title == line.shopTitle && line.choices == line.shopChoices) return html;
  html += "<br><small><i>" + textAsHtml(line.title);
  if (!line.choices.empty()) html += " (" + textAsHtml(line.choices) + ")";
  return html + "</i></small>";
}

/// The same with what the customer gives back of it.
std::string lineName(const DeskOrderLine& line, std::int64_t withdrawn) {
  const std::string part = withdrawnPart(withdrawn, line.quantity);
  return lineWordsHtml(line) + (part.empty() ? "" : "<br><small><b>Recesso: " + part + "</b></small>");
}

/// The totals below the lines; those that are nothing are left out. VAT below 0 is none that is due.
std::string totalsTable(const DeskOrder& order) {
  constexpr std::array<std::pair<std::string_view, std::string_view>, 5> captions{{{"merce", "Totale articoli"},
                                                                                   {"sconto", "Sconto"},
                                                                                   {"iva", "IVA"},
                                                                                   {"spese", "Spese di spedizione"},
                                                                                   {"ivaspese", "IVA sulle spese"}}};
  std::string html = "<table align=\"right\" cellspacing=\"0\" cellpadding=\"4\">";
  const auto add = [&](const std::string& caption, const std::string& amount) {
    html += "<tr><td align=\"right\">" + caption + "</td><td align=\"right\" style=\"white-space:nowrap\">" + amount +
            "</td></tr>";
  };
  for (const auto& [key, caption] : captions) {
    const auto found = order.totals.find(std::string(key));
    if (found == order.totals.end() || found->second == Money()) continue;
    const bool isNotDue = key == "iva" && found->second < Money();
    add(isNotDue ? "IVA non dovuta" : std::string(caption), (key == "sconto" ? "-" : "") + decimalText(found->second));
  }
  add("<b>Totale</b>", "<b>" + textAsHtml(amountText(order.total, order.currency)) + "</b>");
  return html + "</table>";
}

std::string pricedLines(const DeskOrder& order) {
  std::vector<std::vector<std::string>> rows;
  const OrderWithdrawn withdrawn = withdrawnOf(order);
  for (std::size_t i = 0; i < order.lines.size(); ++i) {
    const DeskOrderLine& line = order.lines[i];
    rows.push_back({lineName(line, withdrawn.ofLine[i]), std::to_string(line.quantity), decimalText(line.price),
                    decimalText(lineTotal(line))});
  }
  return "<h2>Articoli</h2>" +
         paperTable({{"Articolo", false, 55}, {"Quantità", true, 13}, {"Importo", true, 16}, {"Totale", true, 16}},
                    rows) +
         totalsTable(order);
}

/// The lines without amounts; who receives them signs below.
std::string deliveredLines(const DeskOrder& order) {
  std::vector<std::vector<std::string>> rows;
  const OrderWithdrawn withdrawn = withdrawnOf(order);
  for (std::size_t i = 0; i < order.lines.size(); ++i) {
    const DeskOrderLine& line = order.lines[i];
    rows.push_back({std::to_string(line.quantity), textAsHtml(line.code), lineName(line, withdrawn.ofLine[i])});
  }
  const std::int64_t pieces = withdrawn.pieces + withdrawn.piecesLeft;
  return "<h2>Articoli consegnati</h2>" +
         paperTable({{"Quantità", true, 13}, {"Codice", false, 22}, {"Articolo", false, 65}}, rows) +
         "<p>Pezzi: " + std::to_string(pieces) +
         "</p><p>&nbsp;</p><p>Data e firma del destinatario: ______________________________</p>";
}

std::string paperContent(const DeskOrder& order, OrderPaper paper) {
  if (order.lines.empty()) return "<pre style=\"white-space:pre-wrap\">" + textAsHtml(order.summary) + "</pre>";
  return paper == OrderPaper::Delivery ? deliveredLines(order) : pricedLines(order);
}

std::string senderCell(const ShopSender& sender, const LogoSize& logo) {
  std::string html;
  if (logo.width > 0) {
    html = "<p><img src=\"" + std::string(logoResource) + "\" width=\"" + std::to_string(logo.width) + "\" height=\"" +
           std::to_string(logo.height) + "\"></p>";
  }
  html += "<p><b>" + textAsHtml(sender.name) + "</b>";
  for (const std::string& line : sender.lines) html += "<br>" + textAsHtml(line);
  return html + "</p>";
}

std::string addresseeCell(const DeskOrder& order) {
  std::vector<std::string> lines = addresseeLines(order);
  const std::string customer = order.customer > 0 ? "n. " + std::to_string(order.customer) : "";
  for (const auto& [caption, text] : {std::pair<std::string, std::string>("E-mail", order.email),
                                      {"Telefono", orderField(order, "Telefono")},
                                      {"Partita IVA", orderField(order, "PartitaIVA")},
                                      {"Cliente", customer}}) {
    if (!text.empty()) lines.push_back(caption + ": " + text);
  }
  return "<h2>Destinatario</h2>" + paragraphsAsHtml(lines);
}

/// The line below the heading: order, day, payment, state.
std::string paperSummary(const DeskOrder& order, OrderPaper paper) {
  std::string html = "<p>Ordine " + textAsHtml(order.code) + " del " + textAsHtml(orderDate(order.created, false));
  if (paper != OrderPaper::Delivery) {
    html += " · Pagamento: " + textAsHtml(order.method);
    const std::string said = orderField(order, "NomePagamento");
    if (!said.empty() && said != order.method) html += " (" + textAsHtml(said) + ")";
  }
  if (paper == OrderPaper::Order) html += " · " + textAsHtml(order.state);
  return html + "</p>";
}

/// The withdrawals with their lines, and what is left; amounts are not for who gets the parcel.
std::string withdrawalsPart(const DeskOrder& order, OrderPaper paper) {
  if (order.withdrawals.empty()) return {};
  std::string html = "<h2>Recessi</h2><p>";
  for (std::size_t i = 0; i < order.withdrawals.size(); ++i) {
    const DeskWithdrawal& one = order.withdrawals[i];
    html += (i > 0 ? "<br>" : "") + textAsHtml(one.number + " del " + orderDate(one.created, true) + ": " + one.state);
    for (const std::string& line : withdrawalLines(order, one)) html += "<br>" + textAsHtml(line);
  }
  html += "</p>";
  const auto sums = withdrawalSums(order, paper != OrderPaper::Delivery);
  for (const std::string& sum : sums) html += "<p><b>" + textAsHtml(sum) + "</b></p>";
  return html;
}

/// Whether the amount has come, on a receipt; the customer's notes on the other papers.
std::string paperEnd(const DeskOrder& order, OrderPaper paper) {
  if (paper == OrderPaper::Receipt) {
    const bool isPaid = order.state == "pagato" || order.state == "spedito";
    return std::string("<p>") + (isPaid ? "Importo ricevuto." : "Importo da ricevere.") +
           " La ricevuta non vale come fattura.</p>";
  }
  const std::string notes = orderField(order, "Note");
  return notes.empty() ? "" : "<h2>Note del cliente</h2><p>" + textAsHtml(notes) + "</p>";
}

}  // namespace

LogoSize logoOnPaper(int width, int height) {
  if (width <= 0 || height <= 0) return {};
  const double scale =
      std::min({1.0, static_cast<double>(widestLogo) / width, static_cast<double>(highestLogo) / height});
  return {std::max(1, static_cast<int>(width * scale)), std::max(1, static_cast<int>(height * scale))};
}

std::string_view paperName(OrderPaper paper) {
  constexpr std::string_view names[] = {"Ordine", "Documento di consegna", "Ricevuta"};
  return names[static_cast<std::size_t>(paper)];
}

std::string paperTitle(const DeskOrder& order, OrderPaper paper) {
  return std::string(paperName(paper)) + " " + order.code;
}

std::string paragraphsAsHtml(const std::vector<std::string>& texts) {
  std::string html;
  for (const std::string& text : texts) {
    html += "<p style=\"margin-top:0px;margin-bottom:0px\">" + textAsHtml(text) + "</p>";
  }
  return html;
}

std::vector<std::string> addresseeLines(const DeskOrder& order) {
  const auto field = [&](const char* name) { return orderField(order, name); };
  std::vector<std::string> lines;
  for (const std::string& line : {field("Nome") + " " + field("Cognome"), field("RagioneSociale"), field("Indirizzo"),
                                  field("CAP") + " " + field("Citta") + " " + field("Provincia"), field("Paese")}) {
    if (!trim(line).empty()) lines.emplace_back(trim(line));
  }
  if (lines.empty()) lines.push_back(order.name);
  return lines;
}

std::string orderPaper(const DeskOrder& order, OrderPaper paper, const ShopSender& sender, const LogoSize& logo) {
  return "<html><head>" + std::string(paperStyle) + "</head><body><table width=\"100%\" cellspacing=\"0\"><tr>" +
         "<td width=\"55%\">" + senderCell(sender, logo) + "</td><td width=\"45%\">" + addresseeCell(order) +
         "</td></tr></table><h1>" + textAsHtml(paperTitle(order, paper)) + "</h1>" + paperSummary(order, paper) +
         paperContent(order, paper) + paperEnd(order, paper) + withdrawalsPart(order, paper) + "</body></html>";
}

}  // namespace kv
