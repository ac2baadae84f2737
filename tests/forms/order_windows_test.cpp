// The windows over orders: printing with its preview, the file for the accountant, the sales.
#include <QAbstractTextDocumentLayout>
#include <QCheckBox>
#include <QClipboard>
#include <QDateEdit>
#include <QGraphicsItem>
#include <QGraphicsView>
#include <QHelpEvent>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QSpinBox>
#include <QTableWidget>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextTable>
#include <QToolTip>
#include <climits>

#include "dialog_fixture.h"
#include "forms/captions.h"
#include "publish/orders/desk/frm_esporta_ordini.h"
#include "publish/orders/papers/frm_order_print.h"
#include "publish/orders/papers/order_labels.h"
#include "publish/orders/sales/frm_bar_chart.h"
#include "publish/orders/sales/frm_vendite.h"
#include "support/sample_orders.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

/// Shows windows that need no shop.
struct Shows : DialogFixture {
  using DialogFixture::show;
};

/// How often a text is in another.
std::size_t countOf(const std::string& text, const std::string& what) {
  std::size_t count = 0;
  for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++count;
  return count;
}

void choose(const QWidget& window, const char* name, const char* text) {
  auto* box = control<QComboBox>(window, name);
  ASSERT_NE(box->findText(QString::fromUtf8(text)), -1) << text;
  box->setCurrentText(QString::fromUtf8(text));
}

std::string labelOf(const QWidget& window, const char* name) { return fromQt(control<QLabel>(window, name)->text()); }

class OrderWindows : public ::testing::Test {
 protected:
  OrderWindows() {
    QImage logo(300, 100, QImage::Format_RGB32);
    logo.fill(Qt::red);
    EXPECT_TRUE(logo.save(toQt(root / "logo.png")));
  }
  void expectHelp(FormDialog& dialog) {
    QTest::keyClick(&dialog, Qt::Key_F1);
    EXPECT_EQ(page, "pagine/vendite.htm");
    EXPECT_TRUE(fileExists(std::string(KORVANE_APP_DATA) + "/help/" + page));
  }

  TempFolder root;
  ScriptedUser user;
  std::string page;
  HelpOpener help = [this](std::string_view opened) { page = opened; };
  ShopSender sender{"Ceramiche Rossi", {"Via Roma 1"}, root / "logo.png"};
  std::chrono::sys_days today = *dayOf("2026-06-10");
};

class ThePrintWindow : public OrderWindows {
 protected:
  void open(std::vector<DeskOrder> orders) {
    dialog = std::make_unique<frmOrderPrint>(std::move(orders), sender, user, help);
    dialog->chooseFile = [this] { return file; };
    dialog->choosePrinter = [this](QPrinter& printer) {
      printer.setOutputFormat(QPrinter::PdfFormat);
      printer.setOutputFileName(toQt(root / "stampa.pdf"));
      return prints;
    };
    Shows::show(*dialog);
  }
  std::string file = root / "ordini.pdf";
  bool prints = true;
  std::unique_ptr<frmOrderPrint> dialog;
};

TEST_F(ThePrintWindow, ShowsEachOrderOnAPageOfItsOwn) {
  open({sampleOrder(), sampleOrder()});
  EXPECT_EQ(labelOf(*dialog, "lblPagina"), "Pagina 1 di 2");
  EXPECT_FALSE(control<QPushButton>(*dialog, "cmdPrecedente")->isEnabled());
  click(*dialog, "cmdSuccessiva");
  EXPECT_EQ(labelOf(*dialog, "lblPagina"), "Pagina 2 di 2");
  EXPECT_FALSE(control<QPushButton>(*dialog, "cmdSuccessiva")->isEnabled());
  EXPECT_EQ(defaultButton(*dialog), "Stampa...");
  EXPECT_EQ(namelessControls(*dialog), "");
  EXPECT_EQ(repeatedKeys(*dialog), "");
  keepPicture(*dialog, "stampa-ordini");
  expectHelp(*dialog);
  QTest::keyClick(&*dialog, Qt::Key_Escape);
  EXPECT_EQ(dialog->tag(), "");
}

TEST_F(ThePrintWindow, LabelsBeginAtTheFirstFreeOneOfTheirSheet) {
  open(std::vector<DeskOrder>(14, sampleOrder()));
  EXPECT_FALSE(control<QComboBox>(*dialog, "cboFogli")->isEnabled());
  choose(*dialog, "cboDocumento", "Etichette con l'indirizzo");
  EXPECT_FALSE(control<QCheckBox>(*dialog, "chkLogo")->isEnabled());
  EXPECT_EQ(labelOf(*dialog, "lblPagina"), "Pagina 1 di 1");
  auto* first = control<QSpinBox>(*dialog, "spnPrima");
  EXPECT_EQ(first->maximum(), 24);
  first->setValue(12);
  EXPECT_EQ(labelOf(*dialog, "lblPagina"), "Pagina 1 di 2");
  first->setValue(11);
  EXPECT_EQ(labelOf(*dialog, "lblPagina"), "Pagina 1 di 1");
  choose(*dialog, "cboFogli", "2 x 7, da 99 x 38 mm");
  EXPECT_EQ(first->maximum(), 14);
  EXPECT_EQ(labelOf(*dialog, "lblPagina"), "Pagina 1 di 2");
}

TEST_F(ThePrintWindow, WritesAPdfOfManyLinesOverSeveralPages) {
  DeskOrder order = sampleOrder();
  order.lines.resize(45, order.lines[0]);
  open({order});
  click(*dialog, "cmdPdf");
  EXPECT_EQ(dialog->tag(), "OK");
  const auto bytes = readBytes(file);
  ASSERT_TRUE(bytes);
  EXPECT_EQ(bytes->substr(0, 5), "%PDF-");
  const auto pages = countOf(*bytes, "/Type /Page\n");
  EXPECT_GE(pages, 2U);
  const auto again = writeOrdersPdf(file, std::vector{order}, dialog->job());
  ASSERT_TRUE(again);
  EXPECT_EQ(static_cast<std::size_t>(*again), pages);
}

/// The pages that the texts of a row of a table are on, as its first and its last one.
std::pair<int, int> pagesOfRow(const QTextDocument& document, const QTextTable& table, int row) {
  std::pair<int, int> pages{INT_MAX, 0};
  for (int column = 0; column < table.columns(); ++column) {
    const QTextTableCell cell = table.cellAt(row, column);
    const auto* layout = document.documentLayout();
    const QRectF first = layout->blockBoundingRect(cell.firstCursorPosition().block());
    const QRectF last = layout->blockBoundingRect(cell.lastCursorPosition().block());
    pages.first = std::min(pages.first, static_cast<int>(first.top() / document.pageSize().height()));
    pages.second = std::max(pages.second, static_cast<int>((last.bottom() - 1) / document.pageSize().height()));
  }
  return pages;
}

TEST_F(ThePrintWindow, NoRowIsCutByTheEndOfAPageAndAllAfterThemIsOnPaper) {
  QImage device(10, 10, QImage::Format_RGB32);
  device.setDotsPerMeterX(11811);
  device.setDotsPerMeterY(11811);
  for (const std::size_t lines : {1U, 11U, 12U, 13U, 14U, 15U, 29U, 30U, 31U, 70U}) {
    DeskOrder order = sampleOrder();
    order.lines.resize(lines, order.lines[0]);
    for (std::size_t i = 0; i < lines; i += 3) order.lines[i].shopTitle += std::string(i % 90, 'W');
    QTextDocument document;
    layOutPaper(document, device, order, {OrderPaper::Order, false, sender}, {2100, 2900});
    const auto frames = document.rootFrame()->childFrames();
    const auto* table = qobject_cast<QTextTable*>(frames.at(1));
    ASSERT_EQ(table->rows(), static_cast<int>(lines) + 1);
    for (int row = 1; row < table->rows(); ++row) {
      const auto [first, last] = pagesOfRow(document, *table, row);
      EXPECT_EQ(first, last) << "row " << row << " of " << lines;
    }
    // The customer's notes are the last block.
    const QRectF notes = document.documentLayout()->blockBoundingRect(document.lastBlock());
    const QRectF last = document.documentLayout()->blockBoundingRect(table->lastCursorPosition().block());
    EXPECT_GT(notes.top(), last.bottom()) << lines;
    EXPECT_LE(notes.bottom(), document.pageCount() * document.pageSize().height()) << lines;
  }
}

TEST_F(ThePrintWindow, NoLetterIsCutAtItsLeftEdge) {
  DeskOrder order = sampleOrder();
  order.fields = {{"Nome", "Jole"}};
  open({order});
  choose(*dialog, "cboDocumento", "Etichette con l'indirizzo");
  auto* preview = dialog->findChild<QPrintPreviewWidget*>()->findChild<QGraphicsView*>();
  constexpr int dotsPerMillimetre = 12;
  QImage label(70 * dotsPerMillimetre, 37 * dotsPerMillimetre, QImage::Format_Grayscale8);
  label.fill(Qt::white);
  QPainter painter(&label);
  const double scale = (preview->scene()->items().front()->boundingRect().width() - 2 * 25) / 210;  // less its shadow
  preview->scene()->render(&painter, label.rect(), {0, 0, 70 * scale, 37 * scale});
  painter.end();
  // Where the ink of each line begins; the edge of the page is drawn too.
  std::vector<int> lines;
  bool isBlank = true;
  for (int y = dotsPerMillimetre; y < label.height(); ++y) {
    int ink = 2 * dotsPerMillimetre;
    while (ink < label.width() && qGray(label.pixel(ink, y)) > 128) ++ink;
    if (isBlank && ink < label.width()) lines.push_back(ink);
    isBlank = ink == label.width();
    if (!isBlank) lines.back() = std::min(lines.back(), ink);
  }
  ASSERT_EQ(lines.size(), 2U);
  const auto bearing = [](char first, double points) {
    QFont font;
    font.setPixelSize(static_cast<int>(points * 25.4 / 72 * dotsPerMillimetre));
    return QFontMetricsF(font).leftBearing(QLatin1Char(first));
  };
  EXPECT_LE(lines[0] - lines[1], bearing('J', 12) - bearing('O', 10) + 1) << "\"Jole\" above \"Ordine\"";
}

TEST_F(ThePrintWindow, ANameFromRightToLeftDoesNotTurnTheTown) {
  DeskOrder order = sampleOrder();
  order.fields["Nome"] = "שלום";
  for (const std::string& html : {labelText(order), orderPaper(order, OrderPaper::Order, sender, {})}) {
    QTextDocument document;
    document.setHtml(toQt(html));
    EXPECT_EQ(document.find(QStringLiteral("50100 Firenze")).block().textDirection(), Qt::LeftToRight);
  }
}

TEST_F(ThePrintWindow, TheLogoIsOnPaperUnlessItIsSwitchedOff) {
  const auto pictures = [&](const PrintJob& job) {
    EXPECT_TRUE(writeOrdersPdf(file, std::vector{sampleOrder()}, job));
    return countOf(valueOf(readBytes(file)), "/Subtype /Image");
  };
  open({sampleOrder()});
  EXPECT_GT(pictures(dialog->job()), 0U);
  click(*dialog, "chkLogo");
  EXPECT_EQ(pictures(dialog->job()), 0U);
  sender.logo = root / "manca.png";
  open({sampleOrder()});
  EXPECT_FALSE(control<QCheckBox>(*dialog, "chkLogo")->isEnabled());
}

TEST_F(ThePrintWindow, PrintsOnTheChosenPrinterAndStaysWhenItIsLeft) {
  open({sampleOrder()});
  prints = false;
  click(*dialog, "cmdOK");
  EXPECT_TRUE(dialog->isVisible());
  prints = true;
  click(*dialog, "cmdOK");
  EXPECT_EQ(dialog->tag(), "OK");
  EXPECT_EQ(countOf(valueOf(readBytes(root / "stampa.pdf")), "/Type /Page\n"), 1U);
}

TEST_F(ThePrintWindow, AFileThatCanNotBeWrittenIsToldAndTheWindowStays) {
  file = root / "manca/ordini.pdf";
  open({sampleOrder()});
  click(*dialog, "cmdPdf");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text.rfind("La stampa non è riuscita.\n\n", 0), 0U);
  EXPECT_EQ(user.shown[0].icon, Icon::Critical);
  EXPECT_TRUE(dialog->isVisible());
  file.clear();
  click(*dialog, "cmdPdf");
  EXPECT_TRUE(dialog->isVisible());
}

class TheOrderFileWindow : public OrderWindows {
 protected:
  void SetUp() override {
    DeskOrder may = sampleOrder(), june = sampleOrder();
    june.created = "2026-06-01 08:00:00";
    june.state = "nuovo";
    dialog.emplace(std::vector{may, june}, today, user, help);
    dialog->chooseFile = [this] { return root / "ordini.csv"; };
    Shows::show(*dialog);
  }
  std::optional<frmEsportaOrdini> dialog;
};

TEST_F(TheOrderFileWindow, CountsTheOrdersOfAPeriodAndAState) {
  EXPECT_EQ(labelOf(*dialog, "lblQuanti"), "Un ordine") << "of last month";
  EXPECT_EQ(control<QDateEdit>(*dialog, "dtDa")->date(), QDate(2026, 5, 1));
  EXPECT_FALSE(control<QDateEdit>(*dialog, "dtDa")->isEnabled());
  choose(*dialog, "cboPeriodo", "Tutto");
  EXPECT_EQ(labelOf(*dialog, "lblQuanti"), "2 ordini");
  choose(*dialog, "cboStato", "Da evadere");
  EXPECT_EQ(labelOf(*dialog, "lblQuanti"), "Un ordine");
  choose(*dialog, "cboStato", "annullato");
  EXPECT_EQ(labelOf(*dialog, "lblQuanti"), "Nessun ordine in questo periodo");
  EXPECT_FALSE(control<QPushButton>(*dialog, "cmdOK")->isEnabled());
  EXPECT_EQ(namelessControls(*dialog), "");
  EXPECT_EQ(repeatedKeys(*dialog), "");
  expectHelp(*dialog);
}

TEST_F(TheOrderFileWindow, WritesWhatItCountsFromDayToDay) {
  choose(*dialog, "cboPeriodo", "Dal ... al ...");
  control<QDateEdit>(*dialog, "dtDa")->setDate(QDate(2026, 6, 1));
  control<QDateEdit>(*dialog, "dtA")->setDate(QDate(2026, 6, 1));
  control<QCheckBox>(*dialog, "chkRighe")->click();
  click(*dialog, "cmdOK");
  EXPECT_EQ(dialog->tag(), "OK");
  const auto bytes = readBytes(root / "ordini.csv");
  ASSERT_TRUE(bytes);
  EXPECT_EQ(countOf(*bytes, "\r\n"), 3U);
  EXPECT_EQ(countOf(*bytes, "01/06/2026 08:00"), 2U);
}

TEST_F(TheOrderFileWindow, StaysWhenTheFileCanNotBeWritten) {
  dialog->chooseFile = [this] { return root / "manca/ordini.xlsx"; };
  click(*dialog, "cmdOK");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].icon, Icon::Critical);
  EXPECT_TRUE(dialog->isVisible());
}

class TheSalesWindow : public OrderWindows {
 protected:
  void open(const std::vector<DeskOrder>& orders) {
    dialog = std::make_unique<frmVendite>(orders, std::map<std::int64_t, std::string>{{7, "Vasi"}}, today, help);
    Shows::show(*dialog);
    list = control<QTableWidget>(*dialog, "lstVendite");
  }
  std::string row(int index) const {
    std::string text;
    for (int i = 0; i < list->columnCount(); ++i) text += fromQt(list->item(index, i)->text()) + "|";
    return text;
  }
  std::unique_ptr<frmVendite> dialog;
  QTableWidget* list = nullptr;
};

TEST_F(TheSalesWindow, SumsUpByTimeDepartmentAndArticle) {
  open({sampleOrder()});
  EXPECT_EQ(row(0), "31/05/2026|1.234,50|3|1|");
  EXPECT_FALSE(control<QSpinBox>(*dialog, "spnPrimi")->isEnabled());
  choose(*dialog, "cboPer", "Reparto");
  EXPECT_EQ(row(0), "Vasi|1.200,00|2|1|");
  EXPECT_EQ(row(1), "Senza reparto|12,50|1|1|");
  EXPECT_TRUE(control<QSpinBox>(*dialog, "spnPrimi")->isEnabled());
  choose(*dialog, "cboPer", "Articolo");
  EXPECT_EQ(row(0), "V7 Vaso blu|1.200,00|2|1|");
  EXPECT_EQ(list->horizontalHeaderItem(0)->text(), "Articolo");
  choose(*dialog, "cboPeriodo", "Questo mese");
  EXPECT_EQ(list->rowCount(), 0);
  EXPECT_EQ(labelOf(*dialog, "lblTotale"), "Nessuna vendita in questo periodo.");
  EXPECT_EQ(namelessControls(*dialog), "");
  EXPECT_EQ(repeatedKeys(*dialog), "");
  expectHelp(*dialog);
}

TEST_F(TheSalesWindow, AsksForTheCurrencyWhereThereAreSeveral) {
  open({sampleOrder()});
  EXPECT_FALSE(control<QComboBox>(*dialog, "cboValuta")->isVisible());
  DeskOrder other = sampleOrder();
  other.currency = "$";
  other.total = cents(100);
  open({sampleOrder(), sampleOrder(), other});
  EXPECT_TRUE(control<QComboBox>(*dialog, "cboValuta")->isVisible());
  EXPECT_EQ(row(0), "31/05/2026|2.469,00|6|2|");
  choose(*dialog, "cboValuta", "$");
  EXPECT_EQ(row(0), "31/05/2026|1,00|3|1|");
  EXPECT_EQ(labelOf(*dialog, "lblTotale"), "Un ordine, totale $\u00A01,00. Gli importi sono i totali degli ordini.");
}

TEST_F(TheSalesWindow, CopiesItsTableForASpreadsheet) {
  open({sampleOrder()});
  list->setFocus();
  QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "Giorno\tImporto\tPezzi\tOrdini\n31/05/2026\t1234,50\t3\t1\n");
  choose(*dialog, "cboPer", "Mese");
  click(*dialog, "cmdCopia");
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "Mese\tImporto\tPezzi\tOrdini\nmaggio 2026\t1234,50\t3\t1\n");
}

TEST_F(TheSalesWindow, TellsInATipOfABarTheTitleAsItIsWritten) {
  DeskOrder order = sampleOrder();
  order.lines[0].shopTitle = "<h1>Vaso</h1>";
  open({order});
  choose(*dialog, "cboPer", "Articolo");
  auto* chart = control<BarChart>(*dialog, "grafico");
  const QPoint first(chart->width() / 2, chart->height() / 4);
  QHelpEvent asked(QEvent::ToolTip, first, chart->mapToGlobal(first));
  QCoreApplication::sendEvent(chart, &asked);
  EXPECT_NE(QToolTip::text().indexOf(QStringLiteral("V7 &lt;h1&gt;Vaso&lt;/h1&gt;: ")), -1) << fromQt(QToolTip::text());
  QToolTip::hideText();
}

TEST_F(TheSalesWindow, DrawsABarInTheColourOfTheSelectionInEitherPalette) {
  open({sampleOrder()});
  auto* chart = control<BarChart>(*dialog, "grafico");
  for (const QColor colour : {QColor(Qt::darkBlue), QColor(Qt::yellow)}) {
    QPalette palette = dialog->palette();
    palette.setColor(QPalette::Highlight, colour);
    chart->setPalette(palette);
    const QImage drawn = chart->grab().toImage();
    int most = 0;
    for (int x = 0; x < drawn.width(); ++x) {
      int high = 0;
      for (int y = 0; y < drawn.height(); ++y) high += drawn.pixelColor(x, y) == colour ? 1 : 0;
      most = std::max(most, high);
    }
    EXPECT_GT(most, drawn.height() / 2) << "the bar of 1,234.50 of an axis to 1,400 or 1,500";
  }
  EXPECT_NE(chart->accessibleDescription().indexOf(QStringLiteral("Un ordine, totale")), -1);
}

}  // namespace
}  // namespace kv::test
