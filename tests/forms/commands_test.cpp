// Every command of the main window, by its button and by its entry in the menus: both have the effect told of it.

#include "forms/driven_window.h"

namespace kv::test {
namespace {

enum class By { Button, Menu };

/// A command with what it starts from and what is to be seen behind it.
struct Deed {
  int number = 0;
  Tab tab = Tab::Articles;
  const char* department = "cat001";
  const char* look = "";  ///< "tree", "list", "selected", "dialogs", "opened", or a query
  const char* wanted = "";
  const char* prepare = "";  ///< statements on the shop before it is opened
  const char* dialog = "";   ///< the dialog that answers with `reply`
  const char* reply = "";
};

constexpr const char* picturedShop =
    "UPDATE articoli SET immagine0 = 'foto.gif', imgX0 = 1, imgY0 = 1, immagine1 = 'foto.gif', imgX1 = 1, imgY1 = 1,"
    " immagine2 = 'foto.gif', imgX2 = 1, imgY2 = 1;"
    "UPDATE categorie SET immagine0 = 'foto.gif', imgX0 = 1, imgY0 = 1, immagine1 = 'foto.gif', imgX1 = 1, imgY1 = 1;"
    "UPDATE generale SET immagine0 = 'foto.gif', imgX0 = 1, imgY0 = 1, immagine1 = 'foto.gif', imgX1 = 1, imgY1 = 1";

Deed onArticles(int number, const char* wanted, const char* prepare = "") {
  return {number, Tab::Articles, "cat001", "list", wanted, prepare};
}
Deed onTree(int number, const char* department, const char* wanted, const char* prepare = "") {
  return {number, Tab::Departments, department, "tree", wanted, prepare};
}
Deed setsPicture(int number, Tab tab, const char* look) {
  return {number, tab, "cat001", look, "foto.gif|1|1", "", "frmImmagine", "foto.gif"};
}
Deed clearsPicture(int number, Tab tab, const char* look) {
  return {number, tab, "cat001", look, "|0|0", picturedShop};
}
Deed definesVariant(int number, const char* wanted) {
  return {number, Tab::Articles, "cat001", "dialogs", wanted, "", "frmOpzioni"};
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
  return {
      onArticles(0, "[Brina] Alba Cielo"),
      onArticles(1, "Alba Cielo [Brina]"),
      onArticles(2, "Alba [-] Brina Cielo"),
      onArticles(3, "Alba Brina [-] Cielo"),
      onArticles(4, "Alba [Cielo]"),
      {5, Articles, "cat001", "SELECT titolo, prezzo FROM cliparticoli", "Brina|200000"},
      onArticles(6, "Alba Brina [Eco] Cielo", "INSERT INTO cliparticoli (titolo) VALUES ('Eco')"),
      {7, Departments, "cat001", "open", "### cat001"},
      {8, Departments, "cat001", "open", "###"},
      setsPicture(9, Articles, article0),
      clearsPicture(10, Articles, article0),
      onTree(11, "cat003", "Negozio(Vasi(Piccoli) Orci Piatti)", "INSERT INTO clipcategorie (titolo) VALUES ('Orci')"),
      {12, Departments, "cat002", "SELECT titolo FROM clipcategorie", "Piccoli"},
      onTree(13, "cat002", "Negozio(Vasi Piatti)"),
      onTree(14, "cat003", "Negozio(Vasi(Piccoli) Piatti Nuovo Reparto)"),
      onTree(15, "cat003", "Negozio(Vasi(Piccoli) Nuovo Reparto Piatti)"),
      onTree(16, "cat001", "Negozio(Piatti Vasi(Piccoli))"),
      onTree(17, "cat003", "Negozio(Piatti Vasi(Piccoli))"),
      clearsPicture(18, Departments, department0),
      setsPicture(19, Departments, department0),
      onTree(20, "cat003", "Negozio(Vasi(Piccoli) Piatti(Nuovo Reparto))"),
      {21, Articles, "cat001", "list", "[Duna]", "", "frmSearch", "4"},
      clearsPicture(22, Articles, article1),
      setsPicture(23, Articles, article1),
      clearsPicture(24, Departments, department1),
      setsPicture(25, Departments, department1),
      setsPicture(26, Articles, article2),
      clearsPicture(27, Articles, article2),
      clearsPicture(28, Departments, logo0),
      setsPicture(29, Departments, logo0),
      definesVariant(30, "frmOpzioni 1"),
      definesVariant(31, "frmOpzioni 2"),
      setsPicture(32, Departments, logo1),
      clearsPicture(33, Departments, logo1),
      definesVariant(34, "frmOpzioni 3"),
      definesVariant(35, "frmOpzioni 4"),
      {50, Departments, "cat001", "dialogs", "frmElabora", "", "frmElabora"},
      {51, Departments, "cat001", "dialogs", "frmAvviso;frmImpostaFTP;frmFTP", "", "frmImpostaFTP", "OK"},
      {52, Departments, "cat001", "opened", "http://www.bottega.example/bo/index.php",
       "UPDATE generale SET URL = 'www.bottega.example', cartellaCGI = 'bo'"}};
}

class EveryCommand : public DrivenWindow, public ::testing::WithParamInterface<std::tuple<Deed, By>> {
 protected:
  void prepare(const Deed& deed) {
    write(joinPath(shop, "work/foto.gif"), onePixelGif(1, 2, 3));
    write(joinPath(shop, "kvftp.dat"), "#\r\n");
    if (*deed.prepare != '\0') run(shop, deed.prepare);
    openWide();
    answer("frmAvviso", "OK");
    answer("frmFTP", "OK");
    if (*deed.dialog != '\0') answer(deed.dialog, deed.reply);
    go(deed.department);
    if (deed.tab == Tab::Articles) goArticle(1);
    if (deed.number == 8) window->tree().expandAll();
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

/// Commands that stand in the menus alone.
bool hasButton(int number) { return number != 8; }

TEST_P(EveryCommand, DoesWhatIsToldOfIt) {
  const auto& [deed, by] = GetParam();
  prepare(deed);
  if (by == By::Menu) {
    EXPECT_TRUE(chooseCommand(deed.number));
  } else if (hasButton(deed.number)) {
    // The logos are set on the page of the shop.
    if (commandOf(deed.number)->subject == CommandSubject::Shop) goTab(Tab::Site);
    EXPECT_TRUE(press(deed.number));
  } else {
    EXPECT_TRUE(buttonsOf(deed.number).empty());
    return;
  }
  EXPECT_EQ(look(deed.look), deed.wanted);
}

std::string nameOfDeed(const ::testing::TestParamInfo<std::tuple<Deed, By>>& each) {
  const auto& [deed, by] = each.param;
  return "Command" + std::to_string(deed.number) + (by == By::Button ? "ByItsButton" : "ByItsEntry");
}
INSTANTIATE_TEST_SUITE_P(Table, EveryCommand,
                         ::testing::Combine(::testing::ValuesIn(deeds()), ::testing::Values(By::Button, By::Menu)),
                         nameOfDeed);

TEST(TheDeeds, CoverTheCommandTable) {
  std::vector<int> told, tried;
  for (const Command& command : commandTable()) told.push_back(command.number);
  for (const Deed& deed : deeds()) tried.push_back(deed.number);
  EXPECT_EQ(tried, told);
}

class Commands : public DrivenWindow {};

TEST_F(Commands, TheNumbers36To49AreNowhereAndDoNothing) {
  openWide();
  const std::string before = whole(), shown = allShown();
  for (int number = 36; number < 50; ++number) {
    EXPECT_EQ(window->menus().command(number), nullptr) << number;
    window->workbench().EseguiComando(number);
  }
  settle();
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
  settle();
  for (const int number : {30, 31, 34, 35}) EXPECT_TRUE(press(number));
  EXPECT_TRUE(chooseCommand(30));
  EXPECT_EQ(dialogsRun, (std::vector<std::string>{"frmOpzioni 1_3", "frmOpzioni 2_3", "frmOpzioni 3_3",
                                                  "frmOpzioni 4_3", "frmOpzioni 1_3"}));
}

TEST_F(Commands, TheNamesOfTheVariantsAreShownAnewBehindTheirDialog) {
  openWide();
  goArticle(1);
  EXPECT_EQ(line(EditedSet::Articoli, "opzione1").text(), "(nessuna)");
  window->workbench().ports().dialogs["frmOpzioni"] = [this](const std::string&) {
    EXPECT_TRUE(window->workbench().sets().store(EditedSet::Articoli, "opzione1", Value(std::int64_t{2})));
    return std::string("OK");
  };
  EXPECT_TRUE(press(30));
  EXPECT_EQ(line(EditedSet::Articoli, "opzione1").text(), "Colore");
}

TEST_F(Commands, TheImageDialogIsGivenThePictureInUseAndTheRowIsSavedBefore) {
  run(shop, "UPDATE articoli SET immagine1 = 'vecchia.gif' WHERE ID = 2");
  openWide();
  goArticle(1);
  type(line(EditedSet::Articoli, "titolo"), "Galaverna");
  std::string saved;
  window->workbench().ports().dialogs["frmImmagine"] = [&](const std::string& current) {
    saved = scalar("SELECT titolo FROM articoli WHERE ID = 2") + " " + current;
    return std::string();
  };
  EXPECT_TRUE(press(23));
  EXPECT_EQ(saved, "Galaverna vecchia.gif");
  EXPECT_EQ(scalar("SELECT immagine1 FROM articoli WHERE ID = 2"), "vecchia.gif") << "left without a choice";
}

}  // namespace
}  // namespace kv::test
