// Undo and redo from the menu of the main window: each step by its name, and tree, list and fields as they were.

#include "forms/driven_window.h"

namespace kv::test {
namespace {

struct Step {
  const char* name;  ///< how the menu calls it
  Tab tab;
  const char* department;
  int command = -1;  ///< or typed into a field:
  EditedSet set = EditedSet::Articoli;
  const char* column = "";
  const char* typed = "";
};

void PrintTo(const Step& step, std::ostream* out) { *out << step.name << ' ' << step.command << step.column; }

std::vector<Step> steps() {
  using enum Tab;
  using enum EditedSet;
  std::vector<Step> all{
      {"Sposta articolo", Articles, "cat001", 0},           {"Sposta articolo", Articles, "cat001", 1},
      {"Aggiungi articolo", Articles, "cat001", 2},         {"Aggiungi articolo", Articles, "cat001", 3},
      {"Elimina articolo", Articles, "cat001", 4},          {"Incolla articoli", Articles, "cat001", 6},
      {"Imposta immagine", Articles, "cat001", 9},          {"Elimina immagine", Articles, "cat001", 10},
      {"Incolla reparto", Departments, "cat003", 11},       {"Elimina reparto", Departments, "cat003", 13},
      {"Elimina reparto", Departments, "cat002", 13},       {"Aggiungi reparto", Departments, "cat003", 14},
      {"Aggiungi reparto", Departments, "cat003", 15},      {"Sposta reparto", Departments, "cat001", 16},
      {"Sposta reparto", Departments, "cat003", 17},        {"Elimina immagine", Departments, "cat001", 18},
      {"Imposta immagine", Departments, "cat001", 19},      {"Aggiungi sottoreparto", Departments, "cat003", 20},
      {"Elimina immagine", Articles, "cat001", 22},         {"Imposta immagine", Articles, "cat001", 23},
      {"Elimina pulsante", Departments, "cat001", 24},      {"Imposta pulsante", Departments, "cat001", 25},
      {"Imposta immagine piccola", Articles, "cat001", 26}, {"Elimina immagine piccola", Articles, "cat001", 27},
      {"Elimina logo", Departments, "cat001", 28},          {"Imposta logo", Departments, "cat001", 29},
      {"Definisci variante", Articles, "cat001", 30},       {"Imposta logo piccolo", Departments, "cat001", 32},
      {"Elimina logo piccolo", Departments, "cat001", 33}};
  all.push_back({"Modifica Titolo", Articles, "cat001", -1, Articoli, "titolo", "Galaverna"});
  all.push_back({"Modifica Prezzo", Articles, "cat001", -1, Articoli, "prezzo", "12*"});
  all.push_back({"Modifica Titolo", Departments, "cat002", -1, Categorie, "titolo", "Ciotole"});
  all.push_back({"Modifica Sconto", Departments, "cat001", -1, Categorie, "sconto", "15"});
  all.push_back({"Modifica URL del sito", Internet, "cat001", -1, Generale, "URL", "www.bottega.example"});
  all.push_back({"Modifica Cartella FTP del negozio", Internet, "cat001", -1, Generale, "folderFTP", "/www/shop"});
  return all;
}

class UndoInTheWindow : public DrivenWindow {
 protected:
  UndoInTheWindow() {
    run(shop,
        "UPDATE articoli SET immagine0 = 'altra.gif', immagine1 = 'altra.gif', immagine2 = 'altra.gif';"
        "UPDATE categorie SET immagine0 = 'altra.gif', immagine1 = 'altra.gif';"
        "UPDATE generale SET immagine0 = 'altra.gif', immagine1 = 'altra.gif';"
        "INSERT INTO cliparticoli (titolo) VALUES ('Eco'), ('Fonte');"
        "INSERT INTO clipcategorie (titolo, incolla_articoli) VALUES ('Orci', 1)");
    write(joinPath(shop, "work/foto.gif"), onePixelGif(1, 2, 3));
    write(joinPath(shop, "work/altra.gif"), onePixelGif(1, 2, 3));
  }
  void openAll() {
    openWide();
    answer("frmImmagine", "foto.gif");
    window->workbench().ports().dialogs["frmOpzioni"] = [this](const std::string&) {
      EXPECT_TRUE(window->workbench().sets().store(EditedSet::Articoli, "opzione1", Value(std::int64_t{2})));
      return std::string("OK");
    };
    window->tree().expandAll();
    user.answers.assign(4, Answer::Yes);
  }
  QString undoText() { return entryText(MenuAction::Undo); }
  QString redoText() { return entryText(MenuAction::Redo); }
};

class EachStep : public UndoInTheWindow, public ::testing::WithParamInterface<Step> {};

TEST_P(EachStep, IsNamedTakenBackAndDoneAgain) {
  const Step& step = GetParam();
  openAll();
  go(step.department);
  if (step.tab == Tab::Articles) {
    goArticle(1);
  } else {
    goTab(step.tab);
  }
  EXPECT_EQ(undoText(), "Annulla");
  EXPECT_FALSE(window->menus().entry(MenuAction::Undo)->isEnabled());
  const std::string before = whole(), shownBefore = allShown();
  if (step.command >= 0) {
    EXPECT_TRUE(chooseCommand(step.command));
  } else {
    type(line(step.set, step.column), step.typed);
    leave(line(step.set, step.column));
  }
  const std::string after = whole(), shownAfter = allShown();
  EXPECT_NE(after, before);
  EXPECT_NE(shownAfter, shownBefore);
  EXPECT_EQ(undoText(), QStringLiteral("Annulla: ") + QString::fromUtf8(step.name));
  EXPECT_TRUE(choose(MenuAction::Undo));
  EXPECT_EQ(whole(), before);
  EXPECT_EQ(allShown(), shownBefore);
  EXPECT_EQ(redoText(), QStringLiteral("Ripeti: ") + QString::fromUtf8(step.name));
  EXPECT_TRUE(choose(MenuAction::Redo));
  EXPECT_EQ(whole(), after);
  EXPECT_EQ(allShown(), shownAfter);
  EXPECT_FALSE(window->menus().entry(MenuAction::Redo)->isEnabled());
}

INSTANTIATE_TEST_SUITE_P(Named, EachStep, ::testing::ValuesIn(steps()));

TEST_F(UndoInTheWindow, ManyStepsGoBackInTheirOrderAndForwardAgain) {
  openAll();
  const std::string first = whole();
  std::vector<std::string> states{first};
  for (const int number : {14, 16, 20, 15}) {
    go("cat003");
    EXPECT_TRUE(press(number));
    states.push_back(whole());
  }
  go("cat001");
  goArticle(2);
  type(line(EditedSet::Articoli, "titolo"), "Nube");
  for (const int number : {0, 3, 4}) {
    EXPECT_TRUE(press(number));
    if (number == 0) states.push_back("typed and moved");
    states.push_back(whole());
  }
  for (std::size_t i = states.size() - 1; i-- > 0;) {
    window->articles().setFocus();
    key(Qt::Key_Z, Qt::ControlModifier);
    if (states[i] != "typed and moved") {
      EXPECT_EQ(whole(), states[i]) << i;
    }
  }
  EXPECT_EQ(whole(), first);
  EXPECT_FALSE(window->menus().entry(MenuAction::Undo)->isEnabled());
  for (std::size_t i = 1; i < states.size(); ++i) {
    window->articles().setFocus();
    key(Qt::Key_Y, Qt::ControlModifier);
    if (states[i] != "typed and moved") {
      EXPECT_EQ(whole(), states[i]) << i;
    }
  }
}

TEST_F(UndoInTheWindow, WhatIsBeingTypedIsTheFirstToGoBack) {
  openAll();
  EXPECT_TRUE(press(14));
  type(line(EditedSet::Categorie, "titolo"), "Ciotole");
  EXPECT_TRUE(choose(MenuAction::Undo));
  EXPECT_EQ(treeShown(), "Negozio(Vasi(Piccoli) Nuovo Reparto Piatti)");
  EXPECT_EQ(line(EditedSet::Categorie, "titolo").text(), "Nuovo Reparto");
}

TEST_F(UndoInTheWindow, AFlagAndAChoiceOfAListAreSteps) {
  openAll();
  field<QCheckBox>(EditedSet::Categorie, "nascosto").click();
  settle();
  EXPECT_EQ(undoText(), "Annulla: Modifica Nascondi nell'elenco dei reparti");
  EXPECT_TRUE(choose(MenuAction::Undo));
  EXPECT_FALSE(field<QCheckBox>(EditedSet::Categorie, "nascosto").isChecked());
}

TEST_F(UndoInTheWindow, AChangeOfShopForgetsTheSteps) {
  openAll();
  env.hooks.reload = [this] {
    if (loadSession(session, env) == LoadResult::Opened) window->workbench().showShop();
  };
  EXPECT_TRUE(press(14));
  EXPECT_TRUE(choose(MenuAction::Undo));
  EXPECT_TRUE(press(14));
  const std::string other = makeShop("altro");
  user.folders = {other};
  EXPECT_TRUE(choose(MenuAction::OpenShop));
  EXPECT_EQ(fromQt(window->windowTitle()), "Korvane - " + other);
  EXPECT_EQ(undoText(), "Annulla");
  EXPECT_EQ(redoText(), "Ripeti");
  EXPECT_FALSE(window->menus().entry(MenuAction::Undo)->isEnabled());
  EXPECT_FALSE(window->menus().entry(MenuAction::Redo)->isEnabled());
  EXPECT_EQ(treeShown(), "Negozio");
}

}  // namespace
}  // namespace kv::test
