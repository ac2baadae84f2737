// Every command of the main window, by its button and by its entry in the menus: both have the effect told of it.

#include "forms/driven_window.h"

namespace kv::test {
namespace {

enum class By { Button, Menu };

/// A command with what it starts from and what is to be seen after it.
struct Deed {
  const char* command = "";
  Tab tab = Tab::Articles;
  const char* department = "cat001";
  const char* look = "";  ///< "tree", "list", "selected", "dialogs", "opened", or a query
  const char* wanted = "";
  const char* prepare = "";                              ///< statements on the shop before it is opened
  void (*answer)(RememberedDialogs& dialogs) = nullptr;  ///< sets what its dialog answers
};

constexpr const char* picturedShop =
    "UPDATE articoli SET immagine0 = 'foto.gif', imgX0 = 1, imgY0 = 1, immagine1 = 'foto.gif', imgX1 = 1, imgY1 = 1,"
    " immagine2 = 'foto.gif', imgX2 = 1, imgY2 = 1;"
    "UPDATE categorie SET immagine0 = 'foto.gif', imgX0 = 1, imgY0 = 1, immagine1 = 'foto.gif', imgX1 = 1, imgY1 = 1;"
    "UPDATE generale SET immagine0 = 'foto.gif', imgX0 = 1, imgY0 = 1, immagine1 = 'foto.gif', imgX1 = 1, imgY1 = 1";

Deed onArticles(const char* command, const char* wanted, const char* prepare = "") {
  return {command, Tab::Articles, "cat001", "list", wanted, prepare};
}
Deed onTree(const char* command, const char* department, const char* wanted, const char* prepare = "") {
  return {command, Tab::Departments, department, "tree", wanted, prepare};
}
Deed setsPicture(const char* command, Tab tab, const char* look) {
  return {command, tab, "cat001", look, "foto.gif|1|1", "", [](RememberedDialogs& dialogs) {
            dialogs.answerPicture("foto.gif");
          }};
}
Deed clearsPicture(const char* command, Tab tab, const char* look) {
  return {command, tab, "cat001", look, "|0|0", picturedShop};
}
Deed definesVariant(const char* command, const char* wanted) {
  return {command, Tab::Articles, "cat001", "dialogs", wanted};
}

constexpr const char* article0 = "SELECT immagine0, imgX0, imgY0 FROM articoli WHERE ID = 2";
constexpr const char* article1 = "SELECT immagine1, imgX1, imgY1 FROM articoli WHERE ID = 2";
constexpr const char* article2 = "SELECT immagine2, imgX2, imgY2 FROM articoli WHERE ID = 2";
constexpr const char* department0 = "SELECT immagine0, imgX0, imgY0 FROM categorie WHERE ID = 'cat001'";
constexpr const char* department1 = "SELECT immagine1, imgX1, imgY1 FROM categorie WHERE ID = 'cat001'";
constexpr const char* logo0 = "SELECT immagine0, imgX0, imgY0 FROM generale";
constexpr const char* logo1 = "SELECT immagine1, imgX1, imgY1 FROM generale";

/// The second of the three articles is the current one.
std::vector<Deed> deeds() {
  using enum Tab;
  return {onArticles("article.up", "[Brina] Alba Cielo"),
          onArticles("article.down", "Alba Cielo [Brina]"),
          onArticles("article.insertBefore", "Alba [-] Brina Cielo"),
          onArticles("article.insertAfter", "Alba Brina [-] Cielo"),
          onArticles("article.delete", "Alba [Cielo]"),
          {"article.copy", Articles, "cat001", "SELECT titolo, prezzo FROM cliparticoli", "Brina|200000"},
          onArticles("article.paste", "Alba Brina [Eco] Cielo", "INSERT INTO cliparticoli (titolo) VALUES ('Eco')"),
          {"tree.expand", Departments, "cat001", "open", "### cat001"},
          {"tree.collapse", Departments, "cat001", "open", "###"},
          setsPicture("article.picture0.set", Articles, article0),
          clearsPicture("article.picture0.clear", Articles, article0),
          onTree("department.paste", "cat003", "Negozio(Vasi(Piccoli) Orci Piatti)",
                 "INSERT INTO clipcategorie (titolo) VALUES ('Orci')"),
          {"department.copy", Departments, "cat002", "SELECT titolo FROM clipcategorie", "Piccoli"},
          onTree("department.delete", "cat002", "Negozio(Vasi Piatti)"),
          onTree("department.insertAfter", "cat003", "Negozio(Vasi(Piccoli) Piatti Nuovo Reparto)"),
          onTree("department.insertBefore", "cat003", "Negozio(Vasi(Piccoli) Nuovo Reparto Piatti)"),
          onTree("department.down", "cat001", "Negozio(Piatti Vasi(Piccoli))"),
          onTree("department.up", "cat003", "Negozio(Piatti Vasi(Piccoli))"),
          clearsPicture("department.picture0.clear", Departments, department0),
          setsPicture("department.picture0.set", Departments, department0),
          onTree("department.insertBelow", "cat003", "Negozio(Vasi(Piccoli) Piatti(Nuovo Reparto))"),
          {"article.search", Articles, "cat001", "list", "[Duna]", "",
           [](RememberedDialogs& dialogs) { dialogs.answerSearch(4); }},
          clearsPicture("article.picture1.clear", Articles, article1),
          setsPicture("article.picture1.set", Articles, article1),
          clearsPicture("department.picture1.clear", Departments, department1),
          setsPicture("department.picture1.set", Departments, department1),
          setsPicture("article.picture2.set", Articles, article2),
          clearsPicture("article.picture2.clear", Articles, article2),
          clearsPicture("shop.picture0.clear", Departments, logo0),
          setsPicture("shop.picture0.set", Departments, logo0),
          definesVariant("article.variant1", "defineVariant 1"),
          definesVariant("article.variant2", "defineVariant 2"),
          setsPicture("shop.picture1.set", Departments, logo1),
          clearsPicture("shop.picture1.clear", Departments, logo1),
          definesVariant("article.variant3", "defineVariant 3"),
          definesVariant("article.variant4", "defineVariant 4"),
          {"build", Departments, "cat001", "dialogs", "build"},
          {"publish", Departments, "cat001", "dialogs", "remindToBuild;publishOptions;publish", "",
           [](RememberedDialogs& dialogs) { dialogs.answer(&WorkbenchDialogs::publishOptions, true); }},
          {"backOffice", Departments, "cat001", "opened", "http://www.bottega.example/bo/index.php",
           "UPDATE generale SET URL = 'www.bottega.example', cartellaCGI = 'bo'"}};
}

class EveryCommand : public DrivenWindow, public ::testing::WithParamInterface<std::tuple<Deed, By>> {
 protected:
  void prepare(const Deed& deed) {
    write(joinPath(shop, "work/foto.gif"), onePixelGif(1, 2, 3));
    write(joinPath(shop, "kvftp.dat"), "#\r\n");
    if (*deed.prepare != '\0') run(shop, deed.prepare);
    openWide();
    answer(&WorkbenchDialogs::remindToBuild, true);
    answer(&WorkbenchDialogs::publish, true);
    if (deed.answer != nullptr) deed.answer(*this);
    go(deed.department);
    if (deed.tab == Tab::Articles) goArticle(1);
    if (deed.command == std::string_view("tree.collapse")) window->tree().expandAll();
    dialogsRun.clear();
    user.answers = {Answer::Yes, Answer::Yes};
  }
  std::string look(const std::string& at) {
    if (at == "tree") return treeShown();
    if (at == "list") return listShown();
    if (at == "dialogs") return joined(dialogsRun);
    if (at == "opened") return joined(opened);
    if (at != "open") return rows(at);
    std::string text;
    for (const char* key : {"###", "cat001"}) {
      if (window->tree().isExpanded(window->tree().departments().indexOf(key)))
        text += (text.empty() ? "" : " ") + std::string(key);
    }
    return text;
  }
  static std::string joined(const std::vector<std::string>& texts) {
    std::string text;
    for (const std::string& each : texts) text += (text.empty() ? "" : ";") + each;
    return text;
  }
};

/// False for commands that are in the menus alone.
bool hasButton(std::string_view name) { return name != "tree.collapse"; }

TEST_P(EveryCommand, DoesWhatIsToldOfIt) {
  const auto& [deed, by] = GetParam();
  prepare(deed);
  const std::string_view name = deed.command;
  if (by == By::Menu) {
    EXPECT_TRUE(choose(name));
  } else if (hasButton(name)) {
    // The logos are set on the page of the shop.
    if (name.starts_with("shop.picture")) goTab(Tab::Site);
    EXPECT_TRUE(press(name));
  } else {
    EXPECT_TRUE(buttonsOf(name).empty());
    return;
  }
  EXPECT_EQ(look(deed.look), deed.wanted);
}

std::string nameOfDeed(const ::testing::TestParamInfo<std::tuple<Deed, By>>& each) {
  const auto& [deed, by] = each.param;
  std::string name = deed.command;
  std::ranges::replace(name, '.', '_');
  return name + (by == By::Button ? "_ByItsButton" : "_ByItsEntry");
}
INSTANTIATE_TEST_SUITE_P(Table, EveryCommand,
                         ::testing::Combine(::testing::ValuesIn(deeds()), ::testing::Values(By::Button, By::Menu)),
                         nameOfDeed);

TEST(TheDeeds, CoverTheNumberedCommands) {
  std::set<std::string> told, tried;
  for (const Command& command : allCommands()) {
    if (command.number >= 0) told.insert(command.name);
  }
  for (const Deed& deed : deeds()) tried.insert(deed.command);
  EXPECT_EQ(tried, told);
}

class Commands : public DrivenWindow {};

TEST_F(Commands, TheNumbers36To49AreNowhereAndDoNothing) {
  openWide();
  const std::string before = whole(), shown = allShown();
  for (int number = 36; number < 50; ++number) {
    EXPECT_EQ(window->menus().command(number), nullptr) << number;
    window->workbench().commands().EseguiComando(number);
  }
  processEvents();
  EXPECT_EQ(whole(), before);
  EXPECT_EQ(allShown(), shown);
  EXPECT_TRUE(user.shown.empty());
  EXPECT_TRUE(dialogsRun.empty());
}

TEST_F(Commands, AVariantSlotNamesTheListThatIsShown) {
  openWide();
  goArticle(1);
  auto* strip = window->page(Tab::Articles).findChild<QTabBar*>(QStringLiteral("tabListino"));
  QTest::mouseClick(strip, Qt::LeftButton, {}, strip->tabRect(3).center());
  processEvents();
  for (const char* name : {"article.variant1", "article.variant2", "article.variant3", "article.variant4"})
    EXPECT_TRUE(press(name));
  EXPECT_TRUE(choose("article.variant1"));
  EXPECT_EQ(dialogsRun, (std::vector<std::string>{"defineVariant 1_3", "defineVariant 2_3", "defineVariant 3_3",
                                                  "defineVariant 4_3", "defineVariant 1_3"}));
}

TEST_F(Commands, TheNamesOfTheVariantsAreShownAgainAfterTheirDialog) {
  openWide();
  goArticle(1);
  EXPECT_EQ(line(EditedSet::Articoli, "opzione1").text(), "(nessuna)");
  dialogs().defineVariant = [this](const VariantSlot&) {
    EXPECT_TRUE(window->workbench().sets().store(EditedSet::Articoli, "opzione1", Value(std::int64_t{2})));
    return true;
  };
  EXPECT_TRUE(press("article.variant1"));
  EXPECT_EQ(line(EditedSet::Articoli, "opzione1").text(), "Colore");
}

TEST_F(Commands, TheImageDialogIsGivenThePictureInUseAndTheRowIsSavedBefore) {
  run(shop, "UPDATE articoli SET immagine1 = 'vecchia.gif' WHERE ID = 2");
  openWide();
  goArticle(1);
  type(line(EditedSet::Articoli, "titolo"), "Galaverna");
  std::string saved;
  dialogs().choosePicture = [&](const std::string& current) -> std::optional<std::string> {
    saved = scalar("SELECT titolo FROM articoli WHERE ID = 2") + " " + current;
    return std::nullopt;
  };
  EXPECT_TRUE(press("article.picture1.set"));
  EXPECT_EQ(saved, "Galaverna vecchia.gif");
  EXPECT_EQ(scalar("SELECT immagine1 FROM articoli WHERE ID = 2"), "vecchia.gif") << "left without a choice";
}

}  // namespace
}  // namespace kv::test
