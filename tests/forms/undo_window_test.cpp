// Undo and redo from the menu of the main window: each step by its name, and tree, list and fields as they were.

#include "forms/driven_window.h"

namespace kv::test {
namespace {

struct Step {
  const char* name;  ///< how the menu calls it
  Tab tab;
  const char* department;
  std::string_view command;  ///< empty: typed into a field
  EditedSet set = EditedSet::Articoli;
  const char* column = "";
  const char* typed = "";
};

void PrintTo(const Step& step, std::ostream* out) { *out << step.name << ' ' << step.command << step.column; }

std::vector<Step> steps() {
  using enum Tab;
  using enum EditedSet;
  std::vector<Step> all{{"Sposta articolo", Articles, "cat001", "article.up"},
                        {"Sposta articolo", Articles, "cat001", "article.down"},
                        {"Aggiungi articolo", Articles, "cat001", "article.insertBefore"},
                        {"Aggiungi articolo", Articles, "cat001", "article.insertAfter"},
                        {"Elimina articolo", Articles, "cat001", "article.delete"},
                        {"Incolla articoli", Articles, "cat001", "article.paste"},
                        {"Imposta immagine", Articles, "cat001", "article.picture0.set"},
                        {"Elimina immagine", Articles, "cat001", "article.picture0.clear"},
                        {"Incolla reparto", Departments, "cat003", "department.paste"},
                        {"Elimina reparto", Departments, "cat003", "department.delete"},
                        {"Elimina reparto", Departments, "cat002", "department.delete"},
                        {"Aggiungi reparto", Departments, "cat003", "department.insertAfter"},
                        {"Aggiungi reparto", Departments, "cat003", "department.insertBefore"},
                        {"Sposta reparto", Departments, "cat001", "department.down"},
                        {"Sposta reparto", Departments, "cat003", "department.up"},
                        {"Elimina immagine", Departments, "cat001", "department.picture0.clear"},
                        {"Imposta immagine", Departments, "cat001", "department.picture0.set"},
                        {"Aggiungi sottoreparto", Departments, "cat003", "department.insertBelow"},
                        {"Elimina immagine", Articles, "cat001", "article.picture1.clear"},
                        {"Imposta immagine", Articles, "cat001", "article.picture1.set"},
                        {"Elimina pulsante", Departments, "cat001", "department.picture1.clear"},
                        {"Imposta pulsante", Departments, "cat001", "department.picture1.set"},
                        {"Imposta immagine piccola", Articles, "cat001", "article.picture2.set"},
                        {"Elimina immagine piccola", Articles, "cat001", "article.picture2.clear"},
                        {"Elimina logo", Departments, "cat001", "shop.picture0.clear"},
                        {"Imposta logo", Departments, "cat001", "shop.picture0.set"},
                        {"Definisci variante", Articles, "cat001", "article.variant1"},
                        {"Imposta logo piccolo", Departments, "cat001", "shop.picture1.set"},
                        {"Elimina logo piccolo", Departments, "cat001", "shop.picture1.clear"}};
  all.push_back({"Modifica Titolo", Articles, "cat001", "", Articoli, "titolo", "Galaverna"});
  all.push_back({"Modifica Prezzo", Articles, "cat001", "", Articoli, "prezzo", "12*"});
  all.push_back({"Modifica Titolo", Departments, "cat002", "", Categorie, "titolo", "Ciotole"});
  all.push_back({"Modifica Sconto", Departments, "cat001", "", Categorie, "sconto", "15"});
  all.push_back({"Modifica URL del sito", Internet, "cat001", "", Generale, "URL", "www.bottega.example"});
  all.push_back({"Modifica Cartella FTP del negozio", Internet, "cat001", "", Generale, "folderFTP", "/www/shop"});
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
    answerPicture("foto.gif");
    dialogs().defineVariant = [this](const VariantSlot&) {
      EXPECT_TRUE(window->workbench().sets().store(EditedSet::Articoli, "opzione1", Value(std::int64_t{2})));
      return true;
    };
    window->tree().expandAll();
    user.answers.assign(4, Answer::Yes);
  }
  QString undoText() { return entryText("undo"); }
  QString redoText() { return entryText("redo"); }
};

class EachStep : public UndoInTheWindow, public ::testing::WithParamInterface<Step> {};

TEST_P(EachStep, IsNamedUndoneAndRedone) {
  const Step& step = GetParam();
  openAll();
  go(step.department);
  if (step.tab == Tab::Articles) {
    goArticle(1);
  } else {
    goTab(step.tab);
  }
  EXPECT_EQ(undoText(), "Annulla");
  EXPECT_FALSE(isEntryOn("undo"));
  const std::string before = whole(), shownBefore = allShown();
  if (!step.command.empty()) {
    EXPECT_TRUE(choose(step.command));
  } else {
    type(line(step.set, step.column), step.typed);
    leave(line(step.set, step.column));
  }
  const std::string after = whole(), shownAfter = allShown();
  EXPECT_NE(after, before);
  EXPECT_NE(shownAfter, shownBefore);
  EXPECT_EQ(undoText(), QStringLiteral("Annulla: ") + QString::fromUtf8(step.name));
  EXPECT_TRUE(choose("undo"));
  EXPECT_EQ(whole(), before);
  EXPECT_EQ(allShown(), shownBefore);
  EXPECT_EQ(redoText(), QStringLiteral("Ripeti: ") + QString::fromUtf8(step.name));
  EXPECT_TRUE(choose("redo"));
  EXPECT_EQ(whole(), after);
  EXPECT_EQ(allShown(), shownAfter);
  EXPECT_FALSE(isEntryOn("redo"));
}

INSTANTIATE_TEST_SUITE_P(Named, EachStep, ::testing::ValuesIn(steps()));

TEST_F(UndoInTheWindow, ManyStepsGoBackInTheirOrderAndForwardAgain) {
  openAll();
  const std::string first = whole();
  std::vector<std::string> states{first};
  for (const char* name :
       {"department.insertAfter", "department.down", "department.insertBelow", "department.insertBefore"}) {
    go("cat003");
    EXPECT_TRUE(press(name));
    states.push_back(whole());
  }
  go("cat001");
  goArticle(2);
  type(line(EditedSet::Articoli, "titolo"), "Nube");
  for (const char* name : {"article.up", "article.insertAfter", "article.delete"}) {
    EXPECT_TRUE(press(name));
    if (name == std::string_view("article.up")) states.push_back("typed and moved");
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
  EXPECT_FALSE(isEntryOn("undo"));
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
  EXPECT_TRUE(press("department.insertAfter"));
  type(line(EditedSet::Categorie, "titolo"), "Ciotole");
  EXPECT_TRUE(choose("undo"));
  EXPECT_EQ(treeShown(), "Negozio(Vasi(Piccoli) Nuovo Reparto Piatti)");
  EXPECT_EQ(line(EditedSet::Categorie, "titolo").text(), "Nuovo Reparto");
}

TEST_F(UndoInTheWindow, AFlagAndAChoiceOfAListAreSteps) {
  openAll();
  field<QCheckBox>(EditedSet::Categorie, "nascosto").click();
  processEvents();
  EXPECT_EQ(undoText(), "Annulla: Modifica Nascondi nell'elenco dei reparti");
  EXPECT_TRUE(choose("undo"));
  EXPECT_FALSE(field<QCheckBox>(EditedSet::Categorie, "nascosto").isChecked());
}

TEST_F(UndoInTheWindow, AChangeOfShopForgetsTheSteps) {
  openAll();
  env.hooks.reload = [this](const LoadOptions& options) {
    if (loadSession(session, env, options) == LoadResult::Opened) window->workbench().showShop();
  };
  EXPECT_TRUE(press("department.insertAfter"));
  EXPECT_TRUE(choose("undo"));
  EXPECT_TRUE(press("department.insertAfter"));
  const std::string other = makeShop("altro");
  user.folders = {other};
  EXPECT_TRUE(choose("shop.open"));
  EXPECT_EQ(fromQt(window->windowTitle()), "Korvane - " + other);
  EXPECT_EQ(undoText(), "Annulla");
  EXPECT_EQ(redoText(), "Ripeti");
  EXPECT_FALSE(isEntryOn("undo"));
  EXPECT_FALSE(isEntryOn("redo"));
  EXPECT_EQ(treeShown(), "Negozio");
}

}  // namespace
}  // namespace kv::test
