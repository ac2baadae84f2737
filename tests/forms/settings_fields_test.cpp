// Fields of the settings that bring others along: the currency note, addresses, server folders, what a flag frees, and
// the moments at which what is typed reaches its row.

#include <QAbstractItemView>

#include "forms/driven_window.h"
#include "platform/database/recordset.h"

namespace kv::test {
namespace {

using enum EditedSet;

class SettingsFields : public DrivenWindow {
 protected:
  void put(std::string_view column, const QString& keys) {
    goTab(editorOf(Generale, column)->tab);
    QLineEdit& into = line(Generale, column);
    into.setFocus();
    into.selectAll();
    if (keys.isEmpty()) QTest::keyClick(&into, Qt::Key_Delete);
    typeCharacters(into, keys);
    leave(into);
  }
  std::string text(std::string_view column) { return fromQt(line(Generale, column).text()); }
  std::string addresses() { return text(shopAddressField) + " " + text(backOfficeAddressField); }
  void clickCheck(std::string_view column) {
    goTab(editorOf(Generale, column)->tab);
    auto& check = field<QCheckBox>(Generale, column);
    window->page(editorOf(Generale, column)->tab).ensureWidgetVisible(&check);
    processEvents();
    QTest::mouseClick(&check, Qt::LeftButton, {}, QPoint(8, check.height() / 2));
    processEvents();
  }
};

TEST_F(SettingsFields, TheCurrencySignBringsItsNoteAndStays) {
  run(shop, "UPDATE generale SET usa_cambio = 1");
  open();
  for (const char* column : {"valuta1", "valuta2"}) {
    user.shown.clear();
    put(column, QString::fromUtf8("€"));
    ASSERT_EQ(user.shown.size(), 1U) << column;
    EXPECT_EQ(user.shown[0],
              said("Attenzione: il carattere \"€\" non è supportato da tutti i browser e dalle e-mail,\n"
                   "e potrebbe quindi creare problemi.\n\n"
                   "Si consiglia di utilizzare invece la notazione estesa \"Euro\" o l'abbreviazione ufficiale "
                   "\"EUR\".",
                   Icon::Exclamation));
    EXPECT_EQ(text(column), "€");
    EXPECT_EQ(scalar("SELECT " + std::string(column) + " FROM generale"), "€");
    put(column, "EUR");
    EXPECT_EQ(user.shown.size(), 1U) << "no sign, no note";
  }
}

TEST_F(SettingsFields, TheAddressesFollowEveryChangeAndCannotBeTyped) {
  open();
  EXPECT_EQ(addresses(), " ");
  put("URL", "www.bottega.example/");
  EXPECT_EQ(addresses(), "http://www.bottega.example/index.php http://www.bottega.example/index.php");
  put("cartella", "/negozio/");
  put("cartellaCGI", "gestione");
  EXPECT_EQ(addresses(), "http://www.bottega.example/negozio/index.php http://www.bottega.example/gestione/index.php");
  put("URL", "https://altro.example");
  EXPECT_EQ(addresses(), "https://altro.example/negozio/index.php https://altro.example/gestione/index.php");
  for (const std::string_view shown : {shopAddressField, backOfficeAddressField}) {
    EXPECT_TRUE(line(Generale, shown).isReadOnly());
    const std::string before = text(shown);
    QTest::keyClicks(&line(Generale, shown), "x");
    EXPECT_EQ(text(shown), before);
  }
  put("URL", "");
  EXPECT_EQ(addresses(), " ");
}

TEST_F(SettingsFields, TheScriptNamesGoBackToTheirDefaults) {
  open();
  const std::string names = "SELECT CGIsearch, CGIordine FROM generale";
  const auto spoil = [this] {
    ASSERT_TRUE(session.catalogue.execute("UPDATE generale SET CGIsearch = 'mio.php', CGIordine = ''"));
    ASSERT_TRUE(window->workbench().sets().dataGenerale().requery());
    window->workbench().sets().dataGenerale().moveFirst();
  };
  spoil();
  put("URL", "www.bottega.example");
  EXPECT_EQ(rows(names), "kvsearch.php|kvorder.php");
  spoil();
  put("cartella", "negozio");
  EXPECT_EQ(rows(names), "kvsearch.php|kvorder.php");
  spoil();
  clickCheck("serverNT");
  EXPECT_EQ(rows(names), "kvsearch.php|kvorder.php");
  spoil();
  put("cartellaCGI", "bo");
  EXPECT_EQ(rows(names), "mio.php|");
}

TEST_F(SettingsFields, AServerFolderGivesItsWebFolderUntilThatIsTypedByHand) {
  open();
  put("folderFTP", "/public html/sh|op/");
  EXPECT_EQ(text("folderFTP"), "/publichtml/shop/") << "a space and a bar are no keys of it";
  put("folderFTP", "/public_html/shop/");
  EXPECT_EQ(text("cartella"), "shop");
  put("folderFTP", "/usr/local/etc/httpd/htdocs/vetrina");
  EXPECT_EQ(text("cartella"), "vetrina");
  put("folderFTP", "/httpdocs/");
  EXPECT_EQ(text("cartella"), "");
  put("folderCGI", "www/cgi");
  EXPECT_EQ(text("cartellaCGI"), "cgi");
  put("cartellaCGI", "mia");
  put("folderCGI", "www/altra");
  EXPECT_EQ(text("cartellaCGI"), "mia") << "what was typed by hand stays";
}

TEST_F(SettingsFields, OnAWindowsServerTheFolderIsTakenAsTypedAndPerlIsOff) {
  open();
  goTab(Tab::Internet);
  EXPECT_TRUE(field<QComboBox>(Generale, "perl").isEnabled());
  clickCheck("serverNT");
  EXPECT_EQ(scalar("SELECT serverNT FROM generale"), "1");
  EXPECT_FALSE(field<QComboBox>(Generale, "perl").isEnabled());
  put("folderFTP", "/public_html/shop/");
  EXPECT_EQ(text("cartella"), "public_html/shop");
}

TEST_F(SettingsFields, TheSecondCurrencyIsFreedByItsFlag) {
  open();
  const auto state = [this] {
    return std::string() + (line(Generale, "valuta2").isEnabled() ? "1" : "0") +
           (field<QCheckBox>(Generale, "decimali2").isEnabled() ? "1" : "0") +
           (line(Generale, "cambio").isEnabled() ? "1" : "0") +
           (line(Generale, reverseRateField).isEnabled() ? "1" : "0");
  };
  EXPECT_EQ(state(), "0000");
  clickCheck("usa_cambio");
  EXPECT_EQ(state(), "1111");
  clickCheck("usa_cambio");
  EXPECT_EQ(state(), "0000");
}

TEST_F(SettingsFields, TheBasePriceListRuleNeedsOneOfTheOtherTwo) {
  open();
  auto& rule = field<QCheckBox>(Generale, "reglist");
  EXPECT_FALSE(rule.isEnabled());
  clickCheck("regobbl");
  EXPECT_TRUE(rule.isEnabled());
  clickCheck("regprices");
  clickCheck("regobbl");
  EXPECT_TRUE(rule.isEnabled());
  clickCheck("regprices");
  EXPECT_FALSE(rule.isEnabled());
}

TEST_F(SettingsFields, TheNumberNotationIsTheChoiceOfTheList) {
  open();
  goTab(Tab::Site);
  auto& list = field<QComboBox>(Generale, "notazione");
  list.setFocus();
  key(Qt::Key_Down);
  EXPECT_EQ(scalar("SELECT notazione FROM generale"), "1");
  key(Qt::Key_Up);
  EXPECT_EQ(scalar("SELECT notazione FROM generale"), "0");
}

TEST_F(SettingsFields, TheRelatedWordsAreFilledAgainAndWhatIsTypedStays) {
  run(shop,
      "UPDATE articoli SET correlazione = 'mare' WHERE ID = 2; UPDATE articoli SET correlazione = '  ' WHERE ID = 3;"
      "UPDATE articoli SET correlazione = 'mare' WHERE ID = 4");
  open();
  goArticle(0);
  auto& list = field<QComboBox>(Articoli, "correlazione");
  list.setFocus();
  QTest::keyClicks(list.lineEdit(), "monti");
  QTest::keyClick(&list, Qt::Key_F4);
  processEvents();
  EXPECT_TRUE(list.view()->isVisible());
  list.hidePopup();
  EXPECT_EQ(list.count(), 1);
  EXPECT_EQ(list.itemText(0), "mare");
  EXPECT_EQ(list.currentText(), "monti");
  leave(list);
  EXPECT_EQ(scalar("SELECT correlazione FROM articoli WHERE ID = 1"), "monti");
  list.setFocus();
  list.showPopup();
  list.hidePopup();
  EXPECT_EQ(list.count(), 2) << "the new word is in use now";
}

class Saved : public DrivenWindow {
 protected:
  std::string title() { return scalar("SELECT titolo FROM categorie WHERE ID = 'cat001'"); }
  void SetUp() override {
    openWide();
    type(line(Categorie, "titolo"), "Orci");
    ASSERT_EQ(title(), "Vasi") << "not while it is being typed";
  }
};

TEST_F(Saved, WhenTheFieldIsLeftByTabOrByAClick) {
  QTest::mouseClick(window->tree().viewport(), Qt::LeftButton, {},
                    window->tree().visualRect(window->tree().departments().indexOf("cat001")).center());
  EXPECT_EQ(title(), "Orci");
}

TEST_F(Saved, WhenAnotherDepartmentIsClicked) {
  QTest::mouseClick(window->tree().viewport(), Qt::LeftButton, {},
                    window->tree().visualRect(window->tree().departments().indexOf("cat003")).center());
  EXPECT_EQ(title(), "Orci");
  EXPECT_EQ(scalar("SELECT titolo FROM categorie WHERE ID = 'cat003'"), "Piatti");
  EXPECT_EQ(line(Categorie, "titolo").text(), "Piatti");
}

TEST_F(Saved, WhenTheTabIsChanged) {
  goTab(Tab::Site);
  EXPECT_EQ(title(), "Orci");
}

TEST_F(Saved, WhenTheLanguageIsChanged) {
  key(Qt::Key_2, Qt::ControlModifier);
  EXPECT_EQ(title(), "Orci");
  EXPECT_EQ(scalar("SELECT titolo_l2 FROM categorie WHERE ID = 'cat001'"), "Pots");
}

TEST_F(Saved, WhenThePriceListIsChanged) {
  auto* strip = window->page(Tab::Departments).findChild<QTabBar*>(QStringLiteral("tabListino"));
  QTest::mouseClick(strip, Qt::LeftButton, {}, strip->tabRect(2).center());
  EXPECT_EQ(title(), "Orci");
}

TEST_F(Saved, WhenTheWindowCloses) {
  window->close();
  EXPECT_EQ(title(), "Orci");
}

TEST_F(Saved, WhenABuildStarts) {
  std::string at;
  dialogs().build = [&] {
    at = title();
    return true;
  };
  EXPECT_TRUE(press("build"));
  EXPECT_EQ(at, "Orci");
}

TEST_F(Saved, WhenACommandRuns) {
  EXPECT_TRUE(press("department.insertAfter"));
  EXPECT_EQ(treeShown(), "Negozio(Orci(Piccoli) Nuovo Reparto Piatti)");
}

}  // namespace
}  // namespace kv::test
