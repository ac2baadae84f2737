// What a field says beside it, what it takes and what it keeps; long texts that grow and open in a larger window.

#include <QClipboard>
#include <QDialog>
#include <QTimer>

#include "forms/driven_window.h"
#include "platform/qt/frm_field_mark.h"

namespace kv::test {
namespace {

using enum EditedSet;

class FieldNotes : public DrivenWindow {
 protected:
  /// What the mark of a field says; empty without one.
  static std::string note(const QWidget& field) {
    const auto* mark = field.findChild<FieldMark*>();
    return mark == nullptr ? "no mark" : fromQt(mark->reason());
  }
  void paste(QWidget& into, const QString& text) {
    into.setFocus();
    QApplication::clipboard()->setText(text);
    key(Qt::Key_V, Qt::ControlModifier);
  }
};

TEST_F(FieldNotes, AFolderRefusesAHyphenTypedAndSaysSoAndKeepsOnePasted) {
  open();
  goTab(Tab::Internet);
  QLineEdit& folder = line(Generale, "folderCGI");
  type(folder, "cgi-");
  EXPECT_EQ(folder.text(), "cgi");
  EXPECT_EQ(note(folder),
            "Il carattere \"-\" non si può digitare qui; un testo incollato o una cartella scelta lo conservano.");
  folder.clear();
  paste(folder, "/www.nome.it/cgi-bin");
  EXPECT_EQ(folder.text(), "/www.nome.it/cgi-bin");
  leave(folder);
  EXPECT_EQ(scalar("SELECT folderCGI FROM generale"), "/www.nome.it/cgi-bin");
}

TEST_F(FieldNotes, ARefusedCharacterOfALongTextIsToldToo) {
  open();
  goArticle(0);
  auto& text = field<QPlainTextEdit>(Articoli, "descrizione");
  text.setFocus();
  QTest::keyClicks(&text, "|");
  EXPECT_EQ(note(text), "Il carattere \"|\" non è ammesso in questo campo.");
}

TEST_F(FieldNotes, CharactersTakenOutOfAPastedTextAreNamed) {
  open();
  goArticle(0);
  QLineEdit& title = line(Articoli, "titolo");
  title.clear();
  paste(title, "Alba [rosa] | bis");
  EXPECT_EQ(title.text(), "Alba rosa  bis");
  const std::string removed = "I caratteri \"[\", \"]\", \"|\" non sono ammessi in questo campo: sono stati tolti.";
  EXPECT_EQ(note(title), removed);
  auto& text = field<QPlainTextEdit>(Articoli, "descrizione");
  text.clear();
  paste(text, "[rosa] |");
  EXPECT_EQ(text.toPlainText(), "rosa ");
  EXPECT_EQ(note(text), removed);
  QTest::keyClicks(&text, "e blu");
  leave(text);
  paste(text, "in tre misure");
  EXPECT_EQ(note(text), "");
  QInputMethodEvent composed;
  composed.setCommitString(QStringLiteral("è|"));
  QApplication::sendEvent(&text, &composed);
  EXPECT_EQ(note(text), "Il carattere \"|\" non è ammesso in questo campo: è stato tolto.");
}

TEST_F(FieldNotes, ACharacterThatBecomesAReferenceIsSaidWhileItIsThere) {
  open();
  goArticle(0);
  const std::string said = "Il carattere \"ł\" non è fra quelli dei file del negozio: vi sarà scritto come \"&#322;\".";
  const auto tryIn = [&](QWidget& field) {
    field.setFocus();
    typeCharacters(field, QStringLiteral("Stó"));
    EXPECT_EQ(note(field), "");
    typeCharacters(field, QStringLiteral("ł"));
    EXPECT_EQ(note(field), said);
    typeCharacters(field, QStringLiteral(" €"));
    EXPECT_EQ(note(field), said);
    for (int i = 0; i < 3; ++i) QTest::keyClick(&field, Qt::Key_Backspace);
    EXPECT_EQ(note(field), "");
    typeCharacters(field, QStringLiteral("ł"));
    EXPECT_EQ(note(field), said);
  };
  QLineEdit& title = line(Articoli, "titolo");
  title.clear();
  tryIn(title);
  tryIn(field<QPlainTextEdit>(Articoli, "descrizione"));
  EXPECT_EQ(scalar("SELECT titolo FROM articoli WHERE ID = 1"), "Stół");
  goArticle(1);
  EXPECT_EQ(note(title), "");
}

TEST_F(FieldNotes, ArticlesSideBySideAreOneToSixAndTheRestIsRefused) {
  run(shop, "UPDATE generale SET affiancati = 3; UPDATE categorie SET affiancati = '2'");
  open();
  auto& list = field<QComboBox>(Categorie, "affiancati");
  for (const char* wrong : {"7", "0", "x", "12", "-1"}) {
    list.setFocus();
    list.lineEdit()->selectAll();
    QTest::keyClicks(list.lineEdit(), wrong);
    leave(*list.lineEdit());
    EXPECT_EQ(scalar("SELECT affiancati FROM categorie WHERE ID = 'cat001'"), "2") << wrong;
    EXPECT_EQ(list.currentText(), "2") << wrong;
    EXPECT_EQ(note(list), "Gli articoli affiancati vanno da 1 a 6: è rimasto il valore precedente.") << wrong;
  }
  goTab(Tab::Site);
  QLineEdit& ofShop = line(Generale, "affiancati");
  type(ofShop, "9");
  leave(ofShop);
  EXPECT_EQ(ofShop.text(), "3");
  EXPECT_EQ(note(ofShop), "Gli articoli affiancati vanno da 1 a 6: è rimasto il valore precedente.");
  type(ofShop, "6");
  leave(ofShop);
  EXPECT_EQ(scalar("SELECT affiancati FROM generale"), "6");
}

TEST_F(FieldNotes, APastedNumberOfArticlesKeepsItsIntegerPartInBothNotations) {
  open();
  QLineEdit& most = line(Categorie, "maxarticoli");
  for (const char* text : {"12.7", "12,7"}) {
    most.clear();
    paste(most, text);
    EXPECT_EQ(most.text(), "12") << text;
  }
}

TEST_F(FieldNotes, AnOfferPriceThatIsClearedIsNullAgain) {
  run(shop, "UPDATE articoli SET offertaprezzo = 50000 WHERE ID = 1");
  open();
  goArticle(0);
  QLineEdit& offer = line(Articoli, "offertaprezzo");
  offer.setFocus();
  offer.selectAll();
  key(Qt::Key_Delete);
  leave(offer);
  EXPECT_EQ(scalar("SELECT offertaprezzo IS NULL FROM articoli WHERE ID = 1"), "1");
  EXPECT_EQ(offer.text(), "");
}

TEST_F(FieldNotes, ADepartmentWithoutATitleShowsThatItHasNone) {
  open();
  QLineEdit& title = line(Categorie, "titolo");
  title.setFocus();
  title.selectAll();
  key(Qt::Key_Delete);
  EXPECT_EQ(treeText("cat001"), "(senza nome)");
  leave(title);
  EXPECT_EQ(treeText("cat001"), "(senza nome)");
}

TEST_F(FieldNotes, TheRatesAndTheDiscountSayWhatIsComputed) {
  const std::string_view rate = editorOf(Generale, "cambio")->toolTip;
  const std::string_view reverse = editorOf(Generale, reverseRateField)->toolTip;
  EXPECT_NE(rate.find("Con 0,8 un prezzo di 10 diventa 12,5"), std::string_view::npos);
  EXPECT_EQ(10 / 0.8, 12.5);
  EXPECT_NE(reverse.find("con un cambio di 0,8 è " + reverseRate("0,8", ',')), std::string_view::npos);
  EXPECT_EQ(editorOf(Generale, "sconto")->toolTip, "Vale per tutti gli articoli che non sono in offerta");
}

TEST_F(FieldNotes, DescriptionAndNotesGrowWithTheWindow) {
  open();
  const auto heights = [this](int height) {
    window->resize(1100, height);
    processEvents();
    return field<QPlainTextEdit>(Categorie, "descrizione").height() + field<QPlainTextEdit>(Categorie, "note").height();
  };
  const int low = heights(1000);
  EXPECT_GT(heights(1300), low + 200);
}

TEST_F(FieldNotes, ALongTextOpensInALargerWindowAndComesBackWithOk) {
  open();
  auto& text = field<QPlainTextEdit>(Categorie, "descrizione");
  for (const bool taken : {false, true}) {
    comeBack();
    text.setFocus();
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, window.get(), [&] {
      auto* larger = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      if (larger == nullptr || !larger->isActiveWindow()) return;
      poll.stop();
      EXPECT_EQ(larger->windowTitle(), "Korvane - Descrizione");
      auto* inside = larger->findChild<QPlainTextEdit*>();
      QTest::keyClicks(inside, "Cotto|");
      QTest::keyClick(inside, taken ? Qt::Key_Return : Qt::Key_Escape, taken ? Qt::ControlModifier : Qt::NoModifier);
    });
    poll.start(2);
    key(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(scalar("SELECT COALESCE(descrizione, '') FROM categorie WHERE ID = 'cat001'"), taken ? "Cotto" : "");
  }
}

}  // namespace
}  // namespace kv::test
