// The window of orders: what is kept is read without a connection, the server is asked by a button, and its list,
// filters, states, notes and stock.
#include <QCheckBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>

#include "dialog_fixture.h"
#include "forms/captions.h"
#include "publish/orders/desk/frm_ordini.h"
#include "support/order_host.h"

namespace kv {
namespace {

using test::click;
using test::control;
using test::orderJson;
using test::ordersJson;

class TheOrdersDialog : public test::DialogFixture {
 protected:
  /// The window over what the server has sent so far.
  void openOrders(OrderTools tools = {}) {
    store.emplace(shop);
    desk.emplace(*store,
                 OrderDeskPorts{[this] { return Result<OrderAccess>(host.access); }, {host, clock, random, {}}, user});
    dialog.emplace(*desk, user, std::move(tools), [this](std::string_view page) { help = page; });
    show(*dialog);
    list = control<QTableView>(*dialog, "lstOrdini");
  }
  void fill() {
    host.answers = {ordersJson({{1, "2026-05-01 10:00:00", "spedito", "Ugo Bassi", "1234.50"},
                                {2, "2026-05-30 09:00:00", "pagato"},
                                {3, "2026-05-31 23:59:59", "nuovo", "Élise d'Aubigné", "30.00"}},
                               "c1")};
    click(*dialog, "cmdAggiorna");
  }
  std::string cell(int row, int column) const { return fromQt(list->model()->index(row, column).data().toString()); }
  bool isBold(int row) const { return list->model()->index(row, 0).data(Qt::FontRole).value<QFont>().bold(); }
  std::string text(const char* name) const { return fromQt(control<QLabel>(*dialog, name)->text()); }
  std::string details() const { return textOf(*control<QPlainTextEdit>(*dialog, "txtDettaglio")); }
  bool isOn(const char* name) const { return control<QWidget>(*dialog, name)->isEnabled(); }
  void type(const char* name, const char* value) {
    control<QLineEdit>(*dialog, name)->setText(QString::fromUtf8(value));
  }
  void choose(const char* name, int index) { control<QComboBox>(*dialog, name)->setCurrentIndex(index); }
  static std::string done(const test::HostOrder& order, const std::string& outcome = "fatto") {
    return R"({"esito":")" + outcome + R"(","ordine":)" + orderJson(order) + R"(,"mail":""})";
  }

  test::OrderHost host;
  std::optional<OrderStore> store;
  std::optional<OrderDesk> desk;
  std::optional<frmOrdini> dialog;
  QTableView* list = nullptr;
  std::string help;
};

TEST_F(TheOrdersDialog, IsEmptyBeforeTheFirstRequestAndEscapeLeavesIt) {
  openOrders();
  EXPECT_EQ(list->model()->rowCount(), 0);
  EXPECT_EQ(text("lblRiepilogo"), "Nessun ordine; premere Aggiorna per riceverli dal server");
  EXPECT_EQ(test::defaultButton(*dialog), "Aggiorna");
  EXPECT_EQ(test::namelessControls(*dialog), "");
  for (const char* name : {"cmdFerma", "cmdStampa", "cmdEsporta", "cmdVendite", "cmdStato", "cmdNota", "chkAvvisa"}) {
    EXPECT_FALSE(isOn(name)) << name;
  }
  EXPECT_EQ(control<QPushButton>(*dialog, "cmdStampa")->toolTip(), "Non disponibile");
  QTest::keyClick(&*dialog, Qt::Key_F1);
  EXPECT_EQ(help, "pagine/ordini.htm");
  EXPECT_TRUE(fileExists(std::string(KORVANE_APP_DATA) + "/help/" + help));
  EXPECT_FALSE(fileExists(shop + "/ordini.db"));
  EXPECT_TRUE(host.asked.empty());
  expectEscapeLeaves(*dialog);
}

TEST_F(TheOrdersDialog, ShowsWhatTheServerSendsNewestFirst) {
  openOrders();
  fill();
  ASSERT_EQ(list->model()->rowCount(), 3);
  EXPECT_EQ(cell(0, 0), "KV3");
  EXPECT_EQ(cell(0, 1), "31/05/2026");
  EXPECT_EQ(cell(2, 3), "EUR\u00A01.234,50");
  EXPECT_EQ(cell(1, 4), "Pagato");
  EXPECT_TRUE(isBold(0));
  EXPECT_EQ(text("lblRiepilogo").substr(0, 46), "3 ordini, 3 nuovi; ricevuti l'ultima volta il ");
  EXPECT_NE(details().find("Cliente: Élise d'Aubigné\n"), std::string::npos);
  EXPECT_NE(details().find("2 × T1 Tazza (rossa)"), std::string::npos);
  test::keepPicture(*dialog, "orders");
}

TEST_F(TheOrdersDialog, ShowsWordsThatLookLikeHtmlAsTheyAre) {
  openOrders();
  host.answers = {ordersJson({{1, "2026-05-01 10:00:00", "nuovo", "<b>A</b> & <img src='x.png'>"}}, "c1")};
  click(*dialog, "cmdAggiorna");
  EXPECT_EQ(cell(0, 2), "<b>A</b> & <img src='x.png'>");
  EXPECT_EQ(
      list->model()->index(0, 2).data(Qt::ToolTipRole).toString(),
      QStringLiteral("<span style=\"white-space:pre-wrap\">&lt;b&gt;A&lt;/b&gt; &amp; &lt;img src='x.png'&gt;</span>"));
  EXPECT_NE(details().find("Cliente: <b>A</b> & <img src='x.png'>\n"), std::string::npos);
}

TEST_F(TheOrdersDialog, ReadsOfflineAndForgetsWhatWasNewOnceLookedAt) {
  openOrders();
  fill();
  QTest::keyClick(&*dialog, Qt::Key_Escape);
  openOrders();
  ASSERT_EQ(list->model()->rowCount(), 3);
  EXPECT_FALSE(isBold(0));
  click(*dialog, "cmdAggiorna");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text.find("Il server del negozio non risponde."), 0U);
  EXPECT_EQ(list->model()->rowCount(), 3) << "what was kept stays";
}

TEST_F(TheOrdersDialog, NarrowsTheListByTextStateAndDays) {
  openOrders();
  fill();
  type("txtCerca", "ÉLISE");
  EXPECT_EQ(list->model()->rowCount(), 1);
  type("txtCerca", "");
  choose("cboStato", 1);
  EXPECT_EQ(cell(0, 0), "KV3");
  EXPECT_EQ(list->model()->rowCount(), 1);
  choose("cboStato", 0);
  type("txtDal", "30/5/2026");
  EXPECT_EQ(list->model()->rowCount(), 2);
  type("txtAl", "30/05/26");
  EXPECT_EQ(cell(0, 0), "KV2");
  type("txtAl", "domani");
  EXPECT_EQ(list->model()->rowCount(), 2) << "what is no day does not restrict";
  type("txtCerca", "nessuno di questo nome");
  EXPECT_EQ(list->model()->rowCount(), 0);
  EXPECT_EQ(details(), "");
}

TEST_F(TheOrdersDialog, HoldsAThousandOrdersThatCameInSeveralAnswers) {
  constexpr int answers = 5, each = ordersPerAnswer;
  for (int answer = 0; answer < answers; ++answer) {
    std::vector<test::HostOrder> orders;
    for (int i = 1; i <= each; ++i) {
      const int id = answer * each + i;
      orders.push_back(
          {id, "2026-05-01 10:00:00", id % 10 == 0 ? "nuovo" : "spedito", "Cliente " + std::to_string(id)});
    }
    host.answers.push_back(ordersJson(orders, "c" + std::to_string(answer), answer + 1 < answers));
  }
  std::size_t exported = 0;
  OrderTools tools;
  tools.exportFile.run = [&exported](const std::vector<DeskOrder>& orders, QWidget*) { exported = orders.size(); };
  openOrders(std::move(tools));
  click(*dialog, "cmdAggiorna");
  EXPECT_EQ(list->model()->rowCount(), answers * each);
  EXPECT_EQ(text("lblRiepilogo").substr(0, 26), "1000 ordini, 1000 nuovi; r");
  list->setFocus();
  QTest::keyClick(list, Qt::Key_End, Qt::ControlModifier);
  EXPECT_NE(details().find("Cliente: Cliente 1\n"), std::string::npos);
  choose("cboStato", 1);
  EXPECT_EQ(list->model()->rowCount(), 100);
  type("txtCerca", "cliente 70");
  EXPECT_EQ(list->model()->rowCount(), 2) << "70 and 700";
  click(*dialog, "cmdEsporta");
  EXPECT_EQ(exported, static_cast<std::size_t>(answers * each)) << "the window of the file chooses among all";
}

TEST_F(TheOrdersDialog, AStateThatIsChangedReachesServerListAndCustomer) {
  openOrders();
  fill();
  EXPECT_FALSE(isOn("cmdStato"));
  choose("cboNuovoStato", 3);
  EXPECT_TRUE(isOn("cmdStato"));
  EXPECT_FALSE(isOn("chkScorte"));
  control<QPlainTextEdit>(*dialog, "txtMessaggio")->setPlainText(QStringLiteral("Grazie!"));
  host.answers = {done({3, "2026-05-31 23:59:59", "pagato"})};
  click(*dialog, "cmdStato");
  EXPECT_EQ(host.asked.back(),
            R"({"azione":"stato","codice":"KV3","da":"nuovo","a":"pagato","scorte":false,"scrivi":true,)"
            R"("messaggio":"Grazie!"})");
  EXPECT_EQ(cell(0, 4), "Pagato");
  EXPECT_EQ(textOf(*control<QPlainTextEdit>(*dialog, "txtMessaggio")), "") << "no message goes out twice";
  choose("cboNuovoStato", 6);
  EXPECT_TRUE(isOn("chkScorte"));
  control<QCheckBox>(*dialog, "chkScrivi")->setChecked(false);
  EXPECT_FALSE(isOn("txtMessaggio"));
  host.answers = {done({3, "2026-05-31 23:59:59", "spedito"}, "diverso")};
  click(*dialog, "cmdStato");
  EXPECT_EQ(user.shown.back().preset, Answer::No);
  EXPECT_NE(user.shown.back().text.find("Qui: pagato\nSul server: spedito\nScelto: annullato"), std::string::npos);
  EXPECT_EQ(cell(0, 4), "Spedito");
}

TEST_F(TheOrdersDialog, ANoteThatFailsStaysInItsField) {
  openOrders();
  fill();
  EXPECT_FALSE(isOn("cmdNota"));
  type("txtNota", "Chiamare domani");
  click(*dialog, "cmdNota");
  EXPECT_EQ(control<QLineEdit>(*dialog, "txtNota")->text(), "Chiamare domani");
  host.answers = {done({3, "2026-05-31 23:59:59"})};
  QTest::keyClick(control<QLineEdit>(*dialog, "txtNota"), Qt::Key_Return);
  EXPECT_EQ(control<QLineEdit>(*dialog, "txtNota")->text(), "");
  EXPECT_EQ(host.asked.back(), R"({"azione":"nota","codice":"KV3","testo":"Chiamare domani"})");
}

TEST_F(TheOrdersDialog, EscapeEndsTheWaitingAndNotTheWindow) {
  openOrders();
  fill();
  host.answers = {ordersJson({{4, "2026-06-01 10:00:00"}}, "c2", true), ordersJson({{5}}, "c3")};
  host.onRequest = [this] {
    EXPECT_FALSE(isOn("cmdAggiorna"));
    EXPECT_FALSE(isOn("txtCerca"));
    EXPECT_TRUE(isOn("cmdFerma"));
    if (host.asked.size() == 3) dialog->reject();
  };
  click(*dialog, "cmdAggiorna");
  EXPECT_TRUE(dialog->isVisible());
  EXPECT_TRUE(user.shown.empty());
  EXPECT_EQ(list->model()->rowCount(), 4) << "what came before stays";
  EXPECT_TRUE(isOn("cmdAggiorna"));
}

TEST_F(TheOrdersDialog, HandsOrdersToItsTools) {
  std::vector<std::string> handed;
  const auto tool = [&handed](const char* name) {
    OrderTool made;
    made.run = [&handed, name](const std::vector<DeskOrder>& orders, QWidget* over) {
      EXPECT_NE(over, nullptr);
      std::string line(name);
      for (const DeskOrder& one : orders) line += " " + one.code;
      handed.push_back(line);
    };
    return made;
  };
  openOrders({tool("print"), tool("export"), tool("sales")});
  fill();
  list->selectAll();
  click(*dialog, "cmdStampa");
  list->selectRow(1);
  EXPECT_EQ(test::repeatedKeys(*dialog), "");
  click(*dialog, "cmdStampa");
  choose("cboStato", 1);
  click(*dialog, "cmdEsporta");
  click(*dialog, "cmdVendite");
  EXPECT_EQ(handed,
            (std::vector<std::string>{"print KV3 KV2 KV1", "print KV2", "export KV3 KV2 KV1", "sales KV3 KV2 KV1"}));
}

TEST_F(TheOrdersDialog, StockIsReadAndSet) {
  openOrders();
  control<QTabWidget>(*dialog, "tabPagine")->setCurrentIndex(1);
  EXPECT_EQ(test::namelessControls(*dialog), "");
  EXPECT_FALSE(isOn("cmdImposta"));
  host.answers = {R"({"voci":[{"chiave":"7","codice":"T1","nome":"Tazza","voce":"1|12"}],"altri":true})",
                  R"({"voci":[{"chiave":"8","codice":"V1","nome":"Vaso","voce":"1|"}],"altri":false})",
                  R"({"esito":"fatto","voce":"1|20"})"};
  click(*dialog, "cmdCercaScorte");
  auto* stock = control<QTableWidget>(*dialog, "lstScorte");
  EXPECT_EQ(stock->item(0, 2)->text(), "12");
  EXPECT_TRUE(isOn("cmdAltre"));
  click(*dialog, "cmdAltre");
  EXPECT_EQ(host.asked.back(), R"({"azione":"scorte","tipo":"A","cerca":"","da":1,"quanti":200})");
  EXPECT_EQ(stock->item(1, 2)->text(), "senza limite");
  EXPECT_FALSE(isOn("cmdAltre"));
  type("txtPezzi", "venti");
  click(*dialog, "cmdImposta");
  EXPECT_EQ(host.asked.size(), 2U);
  type("txtPezzi", "20");
  click(*dialog, "cmdImposta");
  EXPECT_EQ(host.asked.back(), R"({"azione":"scorta","tipo":"A","chiave":"7","prima":"1|12","dopo":"1|20"})");
  EXPECT_EQ(stock->item(0, 2)->text(), "20");
  EXPECT_EQ(test::repeatedKeys(*dialog), "");
  test::keepPicture(*dialog, "stock");
}

TEST_F(TheOrdersDialog, TheBoxTurnsTheNoticeAtTheStartOff) {
  openOrders();
  fill();
  EXPECT_TRUE(control<QCheckBox>(*dialog, "chkAvvisa")->isChecked());
  click(*dialog, "chkAvvisa");
  EXPECT_FALSE(store->notifiesAtStart().value());
}

}  // namespace
}  // namespace kv
