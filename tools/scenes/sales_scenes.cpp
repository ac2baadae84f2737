#include <QCheckBox>
#include <QComboBox>
#include <QSpinBox>
#include <array>

#include "publish/orders/desk/frm_esporta_ordini.h"
#include "publish/orders/papers/frm_order_print.h"
#include "publish/orders/sales/frm_vendite.h"
#include "scenes.h"

namespace kv::scenes {
namespace {

constexpr std::string_view lastDay = "2026-05-31";

/// An order of articles of the shop, some days before the last one.
DeskOrder orderOf(const std::vector<DeskOrderLine>& articles, int number) {
  constexpr int first = 1001, spread = 40, weights = 5;
  DeskOrder order;
  order.id = number;
  order.code = "K" + std::to_string(first + number);
  const auto day = *dayOf(lastDay) - std::chrono::days(number * number % spread);
  order.created = dayText(day) + " 10:42:00";
  order.name = "Elena Conti";
  order.email = "elena.conti@posta.example";
  order.fields = {{"Nome", "Elena"},   {"Cognome", "Conti"},       {"Indirizzo", "Via dei Mille 12"},
                  {"CAP", "50100"},    {"Citta", "Firenze"},       {"Provincia", "FI"},
                  {"Paese", "Italia"}, {"Telefono", "055 123456"}, {"Note", "Consegnare dopo le 17."}};
  order.currency = "€";
  order.method = "Bonifico bancario";
  order.state = number % 3 == 0 ? "nuovo" : "pagato";
  const std::size_t count = static_cast<std::size_t>(number % weights) + 1;
  for (std::size_t i = 0; i < count; ++i) {
    DeskOrderLine line = articles[(static_cast<std::size_t>(number) * 7 + i * i) % articles.size()];
    line.quantity = 1 + number % 3;
    order.lines.push_back(line);
    const Money sum = Money::ofTenThousandths(line.price.tenThousandths() * line.quantity);
    order.totals["merce"] = add(order.totals["merce"], sum).value_or(sum);
  }
  order.totals["spese"] = Money::ofUnits(8);
  order.total = add(order.totals["merce"], order.totals["spese"]).value_or(Money());
  return order;
}

std::vector<DeskOrder> ordersOf(Stage& stage, int count) {
  std::vector<DeskOrderLine> articles;
  auto rows = stage.session().catalogue.prepare("SELECT ID, codice, titolo, prezzo FROM articoli ORDER BY ID");
  while (rows && rows->step().value_or(false)) {
    const std::string title(rows->text(2));
    articles.push_back({rows->integer(0), std::string(rows->text(1)), title, "", title, "", 1, rows->money(3)});
  }
  std::vector<DeskOrder> orders;
  for (int number = 0; number < count && !articles.empty(); ++number) orders.push_back(orderOf(articles, number));
  return orders;
}

ShopSender senderOf(Stage& stage) { return readShopSender(stage.session()).value_or(ShopSender()); }

void takePrint(Stage& stage, const QString& name) {
  frmOrderPrint dialog(ordersOf(stage, 3), senderOf(stage), stage.user(), {}, &stage.window());
  takeShown(stage, dialog, name);
}

/// Labels on a sheet of which four are used.
void takeLabels(Stage& stage, const QString& name) {
  frmOrderPrint dialog(ordersOf(stage, 14), senderOf(stage), stage.user(), {}, &stage.window());
  takeShown(stage, dialog, name, [](QWidget& shown) {
    shown.findChild<QComboBox*>(QStringLiteral("cboDocumento"))->setCurrentIndex(3);
    shown.findChild<QSpinBox*>(QStringLiteral("spnPrima"))->setValue(5);
  });
}

void takeOrderFile(Stage& stage, const QString& name) {
  frmEsportaOrdini dialog(ordersOf(stage, 20), *dayOf(lastDay), stage.user(), {}, &stage.window());
  takeShown(stage, dialog, name,
            [](QWidget& shown) { shown.findChild<QComboBox*>(QStringLiteral("cboPeriodo"))->setCurrentIndex(0); });
}

void takeSalesBy(Stage& stage, SalesBy by, const QString& name) {
  constexpr int orders = 60;
  frmVendite dialog(ordersOf(stage, orders),
                    readArticleDepartments(stage.session().catalogue).value_or(std::map<std::int64_t, std::string>()),
                    *dayOf(lastDay), {}, &stage.window());
  takeShown(stage, dialog, name, [&](QWidget& shown) {
    shown.findChild<QComboBox*>(QStringLiteral("cboPer"))->setCurrentIndex(static_cast<int>(by));
  });
}
void takeSalesByDay(Stage& stage, const QString& name) { takeSalesBy(stage, SalesBy::Day, name); }
void takeSalesByArticle(Stage& stage, const QString& name) { takeSalesBy(stage, SalesBy::Article, name); }

}  // namespace

std::span<const Scene> salesScenes() {
  static constexpr std::array scenes{Scene{"stampa-ordini", takePrint}, Scene{"stampa-etichette", takeLabels},
                                     Scene{"esporta-ordini", takeOrderFile}, Scene{"vendite", takeSalesByDay},
                                     Scene{"vendite-articoli", takeSalesByArticle}};
  return scenes;
}

}  // namespace kv::scenes
