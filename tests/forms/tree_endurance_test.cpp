// Random operations in the real window from two seeds, undo and redo among them: after each one the tree, the list and
// the fields show what the catalogue holds. KORVANE_TEST_SEED, KORVANE_TEST_SEEDS and KORVANE_TEST_OPERATIONS run
// others or more.

#include <QLabel>
#include <QMimeData>
#include <random>

#include "forms/window_fixture.h"
#include "platform/database/recordset.h"
#include "platform/qt/frm_dialog.h"
#include "platform/text/text.h"
#include "support/row_text.h"
#include "support/test_seed.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

constexpr int usualOperations = 400;
constexpr unsigned usualSeeds = 2;
constexpr int returns = 3;  ///< times at which everything is undone
constexpr std::int64_t manyDepartments = 20;
constexpr std::int64_t manyArticles = 40;
constexpr std::array treeCommands{
    "department.insertAfter", "department.insertBefore", "department.insertBelow", "department.down", "department.up",
    "department.delete",      "department.copy",         "department.paste",       "tree.expand",     "tree.collapse"};
constexpr std::array articleCommands{"article.insertBefore", "article.insertAfter", "article.up",   "article.down",
                                     "article.delete",       "article.copy",        "article.paste"};
constexpr const char* deleteDepartment = "department.delete";

class TreeEndurance : public WindowFixture, public ::testing::WithParamInterface<unsigned> {
 protected:
  int pick(int below) { return std::uniform_int_distribution<int>(0, below - 1)(chance); }
  template <class List>
  auto oneOf(const List& list) {
    return list[static_cast<std::size_t>(pick(static_cast<int>(list.size())))];
  }

  /// Runs a command if it is enabled.
  void choose(std::string_view name) {
    const WorkbenchCommands& commands = bench().commands();
    commands.choose(*commands.table().named(name));
  }
  Workbench& bench() { return window->workbench(); }
  CatalogueSets& sets() { return bench().sets(); }
  DepartmentModel& model() { return window->tree().departments(); }

  std::string anyDepartment() {
    const auto& nodes = sets().tree();
    const int place = pick(static_cast<int>(nodes.size()) + 1);
    return place == 0 ? std::string(treeRoot) : nodes[static_cast<std::size_t>(place - 1)].ID;
  }

  void moveCursors() {
    if (pick(2) == 0) return window->tree().setCurrentIndex(model().indexOf(anyDepartment()));
    const int count = window->articles().articles().rowCount();
    if (count > 0) window->articles().setCurrentIndex(window->articles().articles().index(pick(count), 0));
  }

  void runCommand() {
    const bool many = count("categorie") > manyDepartments || count("articoli") > manyArticles;
    const char* command = pick(3) > 0 ? oneOf(treeCommands) : oneOf(articleCommands);
    if (many) command = deleteDepartment;
    SCOPED_TRACE(std::string("command ") + command);
    choose(command);
  }

  /// A drop as the view hands it to the model; the model refuses what may not be.
  void drag() {
    const std::string key = anyDepartment();
    const std::string target = anyDepartment();
    const QModelIndex onto = model().indexOf(target);
    if (key == treeRoot) return;
    const std::unique_ptr<QMimeData> data(model().mimeData({model().indexOf(key)}));
    const bool taken = model().canDropMimeData(data.get(), Qt::MoveAction, -1, -1, onto);
    ASSERT_EQ(taken, key != target && !isAbove(key, target)) << key << " on " << target;
    if (!taken) return;
    model().dropMimeData(data.get(), Qt::MoveAction, -1, -1, onto);
    processEvents();
    ASSERT_EQ(scalar("SELECT genitore FROM categorie WHERE ID = '" + key + "'"), target);
  }
  bool isAbove(const std::string& key, std::string below) {
    while (below != treeRoot && below != key) {
      below = scalar("SELECT genitore FROM categorie WHERE ID = '" + below + "'");
    }
    return below == key;
  }

  /// Types a title, and leaves it by Tab, by another row, by a command or by undo.
  void typeTitle() {
    const bool article = sets().onArticle() && pick(2) == 0;
    if (!article && !sets().onDepartment()) return;
    bench().selectTab(article ? Tab::Articles : Tab::Departments);
    processEvents();
    const EditedSet set = article ? EditedSet::Articoli : EditedSet::Categorie;
    QLineEdit& title = line(set, article && pick(3) == 0 ? "codice" : "titolo");
    const QString text = QStringLiteral("t%1").arg(pick(500));
    type(title, text);
    if (!article) {
      ASSERT_EQ(treeText(sets().department()), text);
    }
    switch (pick(4)) {
      case 0:
        moveCursors();
        break;
      case 1:
        runCommand();
        break;
      case 2:
        choose("undo");
        break;
      default:
        break;
    }
    // The same row again is no move.
    if (title.hasFocus()) leave(title);
  }

  void operate() {
    user.answers.assign(3, pick(3) > 0 ? Answer::Yes : Answer::No);
    user.shown.clear();
    const int kind = pick(100);
    if (kind < 22) return moveCursors();
    if (kind < 52) return runCommand();
    if (kind < 62) return drag();
    if (kind < 77) return typeTitle();
    if (kind < 88) return choose("undo");
    if (kind < 94) return choose("redo");
    if (kind < 97) return bench().selectTab(pick(2) == 0 ? Tab::Departments : Tab::Articles);
    if (kind < 98) return bench().selectListino(pick(listini));
    bench().CambiaLingua(pick(2) + 1);
  }

  std::int64_t count(const std::string& table) { return std::stoll(scalar("SELECT COUNT(*) FROM " + table)); }
  std::string suffix() const { return session.currentLanguage == 2 ? "_l2" : ""; }

  // The tree as text: depth, key and title of each node, children below their parent.
  void walk(const QModelIndex& node, int depth, std::string& text) {
    text += std::to_string(depth) + "|" + model().keyOf(node) + "|" + fromQt(node.data().toString()) + "\n";
    for (int row = 0; row < model().rowCount(node); ++row) {
      const QModelIndex child = model().index(row, 0, node);
      ASSERT_EQ(model().parent(child), node);
      ASSERT_EQ(model().indexOf(model().keyOf(child)), child);
      walk(child, depth + 1, text);
    }
  }
  void read(const std::string& parent, const std::string& title, int depth, std::string& text) {
    text += std::to_string(depth) + "|" + parent + "|" + title + "\n";
    auto child = session.catalogue.prepare("SELECT ID, COALESCE(titolo" + suffix() +
                                           ", '(senza nome)') FROM categorie WHERE genitore = ? "
                                           "ORDER BY ordinamento, contatore");
    ASSERT_TRUE(child);
    child->bind(1, parent);
    while (valueOf(child->step())) read(std::string(child->text(0)), std::string(child->text(1)), depth + 1, text);
  }

  void checkTree() {
    std::string shown;
    std::string stored;
    walk(model().index(0, 0), 0, shown);
    read(std::string(treeRoot), std::string(treeRootTitle), 0, stored);
    ASSERT_EQ(shown, stored);
    ASSERT_EQ(scalar("SELECT COUNT(*) FROM categorie c WHERE COALESCE(hafigli, 0) <> "
                     "EXISTS (SELECT 1 FROM categorie WHERE genitore = c.ID)"),
              "0");
    ASSERT_EQ(model().keyOf(window->tree().currentIndex()), sets().department());
  }

  void checkList() {
    std::string shown;
    ArticleModel& list = window->articles().articles();
    for (int row = 0; row < list.rowCount(); ++row) {
      for (int column = 0; column <= ArticleModel::Price; ++column) shown += fromQt(cell(row, column)) + "|";
      shown += "\n";
    }
    std::string stored;
    const std::string price = bench().listino() == 0 ? "prezzo" : "prezzo" + std::to_string(bench().listino());
    auto row = session.catalogue.prepare("SELECT codice, titolo" + suffix() + ", " + price +
                                         ", titolo FROM articoli WHERE catID = ? ORDER BY ordinamento, ID");
    ASSERT_TRUE(row);
    const std::string department = sets().department();
    row->bind(1, department);
    while (valueOf(row->step())) {
      const std::string amount = row->isNull(2) ? "" : shownNumber(asText(row->value(2)), ',');
      // A title to be translated shows the one of the first language.
      const std::string_view titolo = trim(row->text(1)).empty() ? row->text(3) : row->text(1);
      stored += std::string(row->text(0)) + "|" + std::string(titolo) + "|" + amount + "|\n";
    }
    row->reset();
    ASSERT_EQ(shown, stored);
    const int place = sets().onArticle() ? static_cast<int>(sets().dataArticoli().position()) : -1;
    ASSERT_EQ(window->articles().currentIndex().row(), place);
  }

  void checkFields() {
    const std::string ID = sets().department();
    ASSERT_EQ(fromQt(line(EditedSet::Categorie, "titolo").text()),
              sets().onDepartment() ? scalar("SELECT titolo" + suffix() + " FROM categorie WHERE ID = '" + ID + "'")
                                    : std::string());
    ASSERT_EQ(fromQt(line(EditedSet::Articoli, "titolo").text()),
              sets().onArticle()
                  ? scalar("SELECT titolo" + suffix() + " FROM articoli WHERE ID = " + std::to_string(sets().article()))
                  : std::string());
    ASSERT_EQ(line(EditedSet::Articoli, "titolo").isEnabled(), sets().onArticle());
    const std::string total = std::to_string(count("articoli"));
    const std::string here = std::to_string(count("articoli WHERE catID = '" + ID + "'"));
    ASSERT_EQ(fromQt(window->findChild<QLabel*>(QStringLiteral("lblStato"))->text()),
              " Articoli: " + (sets().onDepartment() ? here + " /" + total : total));
  }

  void check() {
    processEvents();
    checkTree();
    if (!HasFatalFailure()) checkList();
    if (!HasFatalFailure()) checkFields();
  }

  std::string whole() {
    return rows(session.catalogue, "SELECT * FROM categorie ORDER BY contatore") +
           rows(session.catalogue, "SELECT * FROM articoli ORDER BY ID") +
           rows(session.catalogue, "SELECT * FROM generale") + rows(session.catalogue, "SELECT * FROM lingue");
  }

  std::mt19937 chance{GetParam()};
};

TEST_P(TreeEndurance, TheWindowShowsWhatIsStoredAfterEveryOperation) {
  const int operations = operationsOf(usualOperations);
  const int operationsBetweenReturns = std::max(operations / returns, 1);
  open();
  ASSERT_TRUE(session.catalogue.execute("PRAGMA synchronous=OFF"));  // the shop lives for one test
  const std::string start = whole();
  for (int n = 1; n <= operations; ++n) {
    SCOPED_TRACE("operation " + std::to_string(n));
    operate();
    check();
    if (HasFatalFailure()) return;
    if (n % operationsBetweenReturns != 0) continue;
    while (!bench().history().undoName().empty()) choose("undo");
    ASSERT_EQ(whole(), start);
    for (int steps = pick(200); steps > 0 && !bench().history().redoName().empty(); --steps) choose("redo");
    check();
    if (HasFatalFailure()) return;
  }
  EXPECT_EQ(scalar("PRAGMA integrity_check"), "ok");
}

INSTANTIATE_TEST_SUITE_P(Seeds, TreeEndurance, ::testing::Range(seed(), seed() + seeds(usualSeeds)),
                         ::testing::PrintToStringParamName());

}  // namespace
}  // namespace kv::test
