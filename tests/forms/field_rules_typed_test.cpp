// The rules of the fields, typed with the keys: what a key may be, what a change does, what leaving does.

#include <QClipboard>

#include "forms/driven_window.h"
#include "platform/qt/frm_field_mark.h"

namespace kv::test {
namespace {

using enum EditedSet;

class TypedFields : public DrivenWindow {
 protected:
  /// Goes to the tab of a field, types into it, and leaves it; what it shows then.
  std::string typed(EditedSet set, std::string_view column, const QString& keys) {
    goTab(editorOf(set, column)->tab);
    QLineEdit& into = line(set, column);
    type(into, keys);
    processEvents();
    leave(into);
    return fromQt(into.text());
  }
  /// What the field shows while it is being typed.
  std::string typing(EditedSet set, std::string_view column, const QString& keys) {
    goTab(editorOf(set, column)->tab);
    type(line(set, column), keys);
    processEvents();
    return fromQt(line(set, column).text());
  }
  /// Replaces the whole text of a field by one from the clipboard; what the field shows then.
  std::string pasting(EditedSet set, std::string_view column, const char* text) {
    QLineEdit& into = line(set, column);
    into.setFocus();
    into.selectAll();
    QApplication::clipboard()->setText(QString::fromUtf8(text));
    key(Qt::Key_V, Qt::ControlModifier);
    return fromQt(into.text());
  }
  /// What is said beside a field; empty when it has no mark.
  std::string mark(EditedSet set, std::string_view column) {
    return fromQt(line(set, column).findChild<FieldMark*>()->reason());
  }
  std::string stored(std::string_view column, std::string_view from) {
    return scalar("SELECT " + std::string(column) + " FROM " + std::string(from));
  }
};

constexpr std::string_view article = "articoli WHERE ID = 1";
constexpr std::string_view department = "categorie WHERE ID = 'cat001'";
constexpr std::string_view shopRow = "generale";

TEST_F(TypedFields, AStarInAPriceOrAWeightTypesThreeZeros) {
  open();
  goArticle(0);
  for (const char* column : {"prezzo", "offertaprezzo", "peso"}) {
    EXPECT_EQ(typed(Articoli, column, "12*"), "12000") << column;
  }
  EXPECT_EQ(rows("SELECT prezzo, offertaprezzo, peso FROM articoli WHERE ID = 1"), "120000000|120000000|12000.0");
  EXPECT_EQ(typed(Articoli, "prezzo", "1*,5"), "1000,5");
}

TEST_F(TypedFields, NumberFieldsTakeDigitsAndTheDecimalSeparatorAlone) {
  open();
  goArticle(0);
  for (const char* column : {"prezzo", "offertaprezzo", "peso", "scqperc0", "scqperc1"}) {
    EXPECT_EQ(typing(Articoli, column, "a-1+ .2,e5|[]"), "12,5") << column;
    key(Qt::Key_Escape);
  }
  EXPECT_EQ(typing(Categorie, "sconto", "x1%,5"), "1,5");
  for (const char* column : {"sconto", "scimp", "minimo", "qminima", "importo"}) {
    EXPECT_EQ(typing(Generale, column, "x1*,5"), "1,5") << column;
  }
}

TEST_F(TypedFields, APriceIsClippedToTheRangeOfMoney) {
  open();
  goArticle(0);
  EXPECT_EQ(typing(Articoli, "prezzo", "999999999999999"), "922337203685477,5807");
  leave(line(Articoli, "prezzo"));
  EXPECT_EQ(stored("prezzo", article), "922337203685477.5807");
}

TEST_F(TypedFields, WhatIsNoNumberIsMarkedAndTheFormerValueStays) {
  run(shop, "UPDATE articoli SET peso = 2, prezzo = 10000, offertaprezzo = 30000 WHERE ID = 1");
  open();
  goArticle(0);
  EXPECT_EQ(typed(Articoli, "prezzo", ",,"), "1");
  EXPECT_EQ(mark(Articoli, "prezzo"), "\",,\" non è un numero: è rimasto il valore precedente.");
  EXPECT_EQ(typed(Articoli, "offertaprezzo", "1,2,3"), "3");
  EXPECT_EQ(typed(Articoli, "peso", "1,2,3"), "2");
  EXPECT_EQ(mark(Articoli, "peso"), "\"1,2,3\" non è un numero: è rimasto il valore precedente.");
  EXPECT_EQ(rows("SELECT prezzo, offertaprezzo, peso FROM articoli WHERE ID = 1"), "10000|30000|2.0");
  EXPECT_TRUE(user.shown.empty());
  goArticle(1);
  EXPECT_EQ(mark(Articoli, "peso"), "") << "the mark is of the other article";
}

TEST_F(TypedFields, AQuantityThatIsClearedBecomesZeroAndAPercentWithoutDigitsToo) {
  open();
  goArticle(0);
  EXPECT_EQ(typed(Articoli, "scqart0", "1"), "1");
  line(Articoli, "scqart0").setFocus();
  line(Articoli, "scqart0").selectAll();
  key(Qt::Key_Delete);
  leave(line(Articoli, "scqart0"));
  EXPECT_EQ(typed(Articoli, "scqperc0", ","), "0");
  EXPECT_EQ(rows("SELECT scqart0, scqperc0 FROM articoli WHERE ID = 1"), "0|0.0");
}

TEST_F(TypedFields, ARefusedKeySaysSoBesideTheField) {
  open();
  goArticle(0);
  EXPECT_EQ(typing(Articoli, "prezzo", "-5"), "5");
  EXPECT_EQ(mark(Articoli, "prezzo"), "Il carattere \"-\" non è ammesso in questo campo.");
  leave(line(Articoli, "prezzo"));
  EXPECT_NE(mark(Articoli, "prezzo"), "") << "the 5 was stored, and is not what was typed";
  EXPECT_EQ(typing(Articoli, "prezzo", "7"), "7");
  EXPECT_EQ(mark(Articoli, "prezzo"), "");
}

TEST_F(TypedFields, TheDecimalKeyOfTheNumberPadTypesTheDecimalSeparator) {
  open();
  goArticle(0);
  typing(Articoli, "prezzo", "12");
  key(Qt::Key_Period, Qt::KeypadModifier);
  key(Qt::Key_5);
  EXPECT_EQ(fromQt(line(Articoli, "prezzo").text()), "12,5");
}

TEST_F(TypedFields, APastedNumberIsReadInBothNotations) {
  open();
  goArticle(0);
  EXPECT_EQ(pasting(Articoli, "prezzo", "12.50"), "12,50");
  EXPECT_EQ(mark(Articoli, "prezzo"), "");
  EXPECT_EQ(pasting(Articoli, "prezzo", "1.250"), "1250");
  EXPECT_EQ(mark(Articoli, "prezzo"), "\"1.250\" è stato letto come 1250. Se era 1,250, correggerlo.");
  leave(line(Articoli, "prezzo"));
  EXPECT_EQ(stored("prezzo", article), "1250");
  EXPECT_NE(mark(Articoli, "prezzo"), "") << "it stays to be seen after the field is left";
  for (const char* text : {"-5", "1e5", "1,2,3"}) {
    EXPECT_EQ(pasting(Articoli, "prezzo", text), "1250") << text;
    EXPECT_EQ(mark(Articoli, "prezzo"),
              "\"" + std::string(text) + "\" non è un numero: è rimasto il valore precedente.");
  }
  EXPECT_EQ(pasting(Articoli, "codice", "TR-77\r\n"), "TR-77");
}

struct Cut {
  EditedSet set;
  const char* column;
  std::string_view from;
  int most;
};

TEST_F(TypedFields, TextsAreCutToTheirLengthsWhenTheyAreLeft) {
  open();
  for (const Cut& each : {Cut{Articoli, "codice", article, 50}, Cut{Articoli, "titolo", article, 200},
                          Cut{Articoli, "sottotitolo", article, 200}, Cut{Articoli, "link", article, 255},
                          Cut{Categorie, "titolo", department, 100}, Cut{Generale, "URL", shopRow, 50},
                          Cut{Generale, "valuta1", shopRow, 50}}) {
    goTab(editorOf(each.set, each.column)->tab);
    QLineEdit& into = line(each.set, each.column);
    into.setFocus();
    into.selectAll();
    into.insert(QString(each.most, QLatin1Char('w')));
    typeCharacters(into, QString::fromUtf8("è|x"));
    leave(into);
    EXPECT_EQ(into.text(), QString(each.most, QLatin1Char('w'))) << each.column;
    EXPECT_EQ(stored("length(" + std::string(each.column) + ")", each.from), std::to_string(each.most)) << each.column;
  }
}

TEST_F(TypedFields, EveryTextRefusesTheBarAndTheSquareBrackets) {
  open();
  int tried = 0;
  for (const Editor& editor : editorTable()) {
    if (editor.kind != FieldKind::PlainText && editor.kind != FieldKind::Code && editor.kind != FieldKind::Heading &&
        editor.kind != FieldKind::Link && editor.kind != FieldKind::DepartmentTitle &&
        editor.kind != FieldKind::ShortText) {
      continue;
    }
    QWidget* widget = window->page(editor.tab).binding(editor.set, editor.column)->field();
    auto* into = qobject_cast<QLineEdit*>(widget);
    if (auto* list = qobject_cast<QComboBox*>(widget); list != nullptr && list->isEditable()) into = list->lineEdit();
    auto* memo = qobject_cast<QPlainTextEdit*>(widget);
    if ((into == nullptr || into->isReadOnly()) && memo == nullptr) continue;
    if (editor.set == EditedSet::Articoli && window->workbench().tab() != Tab::Articles) goArticle(0);
    widget->setEnabled(true);
    const QString before = into != nullptr ? into->text() : memo->toPlainText();
    QTest::keyClicks(into != nullptr ? static_cast<QWidget*>(into) : memo, "|[]");
    EXPECT_EQ(into != nullptr ? into->text() : memo->toPlainText(), before) << editor.column;
    ++tried;
  }
  EXPECT_GT(tried, 40);
}

TEST_F(TypedFields, PercentsAboveAHundredAreAHundredAndNoNumberIsZero) {
  open();
  goArticle(0);
  const std::vector<std::tuple<EditedSet, const char*, std::string_view>> percents{{Articoli, "scqperc0", article},
                                                                                   {Articoli, "scqperc1", article},
                                                                                   {Categorie, "sconto", department},
                                                                                   {Generale, "sconto", shopRow},
                                                                                   {Generale, "scimp", shopRow}};
  for (const auto& [set, column, from] : percents) {
    EXPECT_EQ(typing(set, column, "100,01"), "100") << column;
    leave(line(set, column));
    EXPECT_EQ(typed(set, column, "99,5"), "99,5") << column;
    EXPECT_EQ(mark(set, column), "") << column;
    EXPECT_EQ(typed(set, column, ",,"), "0") << column;
    EXPECT_EQ(mark(set, column), "\",,\" non è un numero: il valore è ora 0.") << column;
    EXPECT_EQ(stored(column, from), "0") << column;
  }
}

TEST_F(TypedFields, AnAmountFallsBackToItsLastGoodValueAndTakesTheFormOfANumber) {
  open();
  for (const char* column : {"minimo", "importo"}) {
    EXPECT_EQ(typed(Generale, column, "007,50"), "7,5") << column;
    EXPECT_EQ(typing(Generale, column, "3,5,"), "3,5") << column << ": the second separator makes it no number";
    EXPECT_EQ(mark(Generale, column), "\"3,5,\" non è un numero: è rimasto il valore precedente.") << column;
    leave(line(Generale, column));
    EXPECT_NE(mark(Generale, column), "") << column << ": it stays until the field is typed into again";
    EXPECT_EQ(rows("SELECT " + std::string(column) + " FROM generale"), "35000") << column;
  }
  EXPECT_EQ(typed(Generale, "qminima", "007"), "7");
  for (const char* column : {"minimo", "importo", "qminima"}) {
    const QString before = line(Generale, column).text();
    line(Generale, column).setFocus();
    line(Generale, column).selectAll();
    key(Qt::Key_Delete);
    leave(line(Generale, column));
    EXPECT_EQ(line(Generale, column).text(), before) << column << ": emptied, it goes back";
  }
}

TEST_F(TypedFields, ANumberOfArticlesTakesDigitsAndKeepsTheIntegerPart) {
  open();
  EXPECT_EQ(typed(Categorie, "maxarticoli", "2x0,"), "20");
  EXPECT_EQ(stored("maxarticoli", department), "20");
  QLineEdit& most = line(Categorie, "maxarticoli");
  most.setFocus();
  most.selectAll();
  QApplication::clipboard()->setText("12,7");
  key(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(most.text(), "12");
}

TEST_F(TypedFields, TheTwoRatesFollowEachOtherAndAZeroIsSkipped) {
  run(shop, "UPDATE generale SET usa_cambio = 1, cambio = 4");
  open();
  EXPECT_EQ(typing(Generale, "cambio", "3"), "3");
  EXPECT_EQ(line(Generale, reverseRateField).text(), "0,333333");
  leave(line(Generale, "cambio"));
  EXPECT_EQ(stored("cambio", shopRow), "3");
  EXPECT_EQ(typing(Generale, reverseRateField, "0"), "0");
  EXPECT_EQ(line(Generale, "cambio").text(), "3") << "a zero is skipped";
  QTest::keyClicks(&line(Generale, reverseRateField), ",8x");
  EXPECT_EQ(line(Generale, "cambio").text(), "1,25");
  leave(line(Generale, reverseRateField));
  EXPECT_EQ(stored("cambio", shopRow), "1.25");
}

TEST_F(TypedFields, AVatRateIsTypedOrTaken) {
  open();
  auto& vat = field<QComboBox>(Categorie, "iva");
  type(*vat.lineEdit(), "4,5%a");
  EXPECT_EQ(vat.currentText(), "4,5");
  leave(*vat.lineEdit());
  EXPECT_EQ(stored("iva", department), "4.5");
}

TEST_F(TypedFields, EmptyArticlesSideBySideBecomeASpace) {
  run(shop, "UPDATE categorie SET affiancati = '3' WHERE ID = 'cat001'");
  open();
  auto& list = field<QComboBox>(Categorie, "affiancati");
  list.setFocus();
  list.lineEdit()->selectAll();
  QTest::keyClick(list.lineEdit(), Qt::Key_Delete);
  leave(*list.lineEdit());
  EXPECT_EQ(stored("affiancati", department), " ");
  list.setFocus();
  list.lineEdit()->selectAll();
  QTest::keyClicks(list.lineEdit(), "4");
  leave(*list.lineEdit());
  EXPECT_EQ(stored("affiancati", department).find('4') != std::string::npos, true);
}

TEST_F(TypedFields, ATitleShowsAtOnceAndEnterSelectsItsNode) {
  open();
  window->tree().expandAll();
  go("cat002");
  EXPECT_EQ(typing(Categorie, "titolo", "Ciotole"), "Ciotole");
  EXPECT_EQ(treeShown(), "Negozio(Vasi(Ciotole) Piatti)");
  key(Qt::Key_Return);
  EXPECT_EQ(selected(), "cat002");
  EXPECT_TRUE(window->tree().hasFocus());
  EXPECT_EQ(scalar("SELECT titolo FROM categorie WHERE ID = 'cat002'"), "Ciotole");
}

}  // namespace
}  // namespace kv::test
