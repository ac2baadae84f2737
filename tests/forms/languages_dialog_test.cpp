// The languages of the shop in their window, and the note on sending the language.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "dialog_fixture.h"
#include "tags/language/frm_info_lingua.h"
#include "tags/language/frm_lingue.h"

namespace kv {
namespace {

using test::click;
using test::control;
using ::testing::ElementsAre;

class TheLanguagesDialog : public test::DialogFixture {
 protected:
  static void choose(const frmLingue& dialog, const char* box, const char* text) {
    auto* field = control<QComboBox>(dialog, box);
    field->setCurrentIndex(field->findText(text));
  }
};

TEST_F(TheLanguagesDialog, StartsOnTheShopsLanguagesWithTheBoxesBeyondDisabled) {
  ASSERT_TRUE(storeLanguages(session, {2, session.languageNames}, {}));
  frmLingue dialog(session, env);
  show(dialog);
  EXPECT_EQ(dialog.windowTitle(), "Korvane - Configurazione lingue");
  EXPECT_EQ(control<QComboBox>(dialog, "cboNumero")->currentText().toInt(), session.languageCount);
  for (int n = 1; n <= 4; ++n) {
    const auto* box = control<QComboBox>(dialog, ("cboLingua" + std::to_string(n)).c_str());
    EXPECT_EQ(fromQt(box->currentText()), session.languageNames[static_cast<std::size_t>(n - 1)]);
    EXPECT_EQ(box->isEnabled(), n <= 2) << n;
    EXPECT_GE(box->count(), 2) << "the installed modules";
  }
  EXPECT_EQ(test::defaultButton(dialog), "OK");
  EXPECT_EQ(test::namelessControls(dialog), "");
  test::keepPicture(dialog, "lingue");
}

TEST_F(TheLanguagesDialog, OkStoresAndTellsTheWindow) {
  std::vector<std::string> calls;
  session.currentLanguage = 2;
  frmLingue dialog(session, env,
                   {[&calls] { calls.emplace_back("MostraLingue"); },
                    [&calls](int language) { calls.push_back("CambiaLingua " + std::to_string(language)); }});
  show(dialog);
  choose(dialog, "cboNumero", "1");
  choose(dialog, "cboLingua1", "inglese");
  QTest::keyClick(&dialog, Qt::Key_Return);
  EXPECT_EQ(dialog.tag(), "OK");
  EXPECT_EQ(stored("lingua1 || '|' || lingua2", "lingue"), "inglese|");
  EXPECT_EQ(session.languageCount, 1);
  EXPECT_THAT(calls, ElementsAre("MostraLingue", "CambiaLingua 1"));
}

TEST_F(TheLanguagesDialog, TwoEqualLanguagesAreWarnedOfAndTheSecondIsNextToBeChosen) {
  ASSERT_TRUE(storeLanguages(session, {2, {"italiano", "inglese"}}, {}));
  frmLingue dialog(session, env);
  show(dialog);
  choose(dialog, "cboLingua2", "italiano");
  QTest::keyClick(&dialog, Qt::Key_Return);
  ASSERT_EQ(user.texts(), std::vector<std::string>{"La lingua 2 è uguale a un'altra: italiano.\nIl negozio avrebbe due "
                                                   "volte le stesse pagine. Continuare comunque?"});
  EXPECT_EQ(user.shown[0].preset, Answer::No);
  EXPECT_TRUE(dialog.isVisible());
  EXPECT_TRUE(control<QComboBox>(dialog, "cboLingua2")->hasFocus());
  EXPECT_EQ(stored("lingua2", "lingue"), "inglese");
  user.answers = {Answer::Yes};
  QTest::keyClick(&dialog, Qt::Key_Return);
  EXPECT_EQ(stored("lingua2", "lingue"), "italiano");
}

TEST_F(TheLanguagesDialog, ABoxThatComesIntoUseProposesAModule) {
  ASSERT_TRUE(storeLanguages(session, {1, session.languageNames}, {}));
  frmLingue dialog(session, env);
  show(dialog);
  choose(dialog, "cboNumero", "4");
  for (const char* name : {"cboLingua1", "cboLingua2", "cboLingua3", "cboLingua4"}) {
    EXPECT_TRUE(control<QComboBox>(dialog, name)->isEnabled());
    EXPECT_FALSE(control<QComboBox>(dialog, name)->currentText().isEmpty()) << name;
  }
}

TEST_F(TheLanguagesDialog, ShowsALanguageWhoseModuleIsNotInstalled) {
  session.languageNames[0] = "klingon";
  frmLingue dialog(session, env);
  show(dialog);
  EXPECT_EQ(control<QComboBox>(dialog, "cboLingua1")->currentText(), "klingon");
}

TEST_F(TheLanguagesDialog, EscapeStoresNothing) {
  const std::string before = stored("lingua1 || '|' || lingua2", "lingue");
  frmLingue dialog(session, env);
  show(dialog);
  choose(dialog, "cboLingua1", "tedesco");
  expectEscapeLeaves(dialog);
  EXPECT_EQ(stored("lingua1 || '|' || lingua2", "lingue"), before);
}

TEST(TheLanguageNote, ClosesByEnterAndEscape) {
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
    frmInfoLingua note;
    note.show();
    EXPECT_EQ(note.windowTitle(), "Invio informazioni sulla lingua");
    EXPECT_EQ(test::defaultButton(note), "OK");
    test::keepPicture(note, "info_lingua");
    QTest::keyClick(&note, key);
    EXPECT_FALSE(note.isVisible());
  }
}

}  // namespace
}  // namespace kv
