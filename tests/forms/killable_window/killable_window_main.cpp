// A merchant who types without end into the window of the program, for the test that kills it: the same run as that of
// korvane, with somebody inside who presses keys. What is about to be left and what has been left is written to the
// standard output at once, a line each.
//
// Arguments: APPLICATION SHOP SEED.

#include <unistd.h>

#include <QAbstractItemModel>
#include <QApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>
#include <QTimer>
#include <random>
#include <string>

#include "platform/qt/frm_dialog.h"
#include "shell/program/frm_program.h"
#include "shell/program/installed_data.h"
#include "shell/window/frm_main.h"

namespace {

using kv::EditedSet;

void writeLine(const std::string& line) {
  const std::string whole = line + "\n";
  if (write(STDOUT_FILENO, whole.data(), whole.size()) != static_cast<ssize_t>(whole.size())) _exit(1);
}

/// A field, and what it takes.
struct Field {
  EditedSet set;
  const char* table;
  const char* column;
  bool number;
};
constexpr std::array fields{Field{EditedSet::Categorie, "categorie", "titolo", false},
                            Field{EditedSet::Categorie, "categorie", "descrizione", false},
                            Field{EditedSet::Articoli, "articoli", "titolo", false},
                            Field{EditedSet::Articoli, "articoli", "codice", false},
                            Field{EditedSet::Articoli, "articoli", "prezzo", true},
                            Field{EditedSet::Articoli, "articoli", "note", false},
                            Field{EditedSet::Generale, "generale", "titolo", false}};

class KillableWindow {
 public:
  explicit KillableWindow(unsigned seed) : chance_(seed), next_(1000 + pick(800000)) {
    QObject::connect(&turn_, &QTimer::timeout, [this] { act(); });
    turn_.start(0);
  }

 private:
  int pick(int below) { return std::uniform_int_distribution<int>(0, below - 1)(chance_); }

  /// The window once it can be typed into. Whatever is over it is sent away; a message is a refusal.
  kv::frmMain* window() {
    if (const QWidget* modal = QApplication::activeModalWidget()) {
      writeLine("refused|" + modal->windowTitle().toStdString());
      _exit(3);
    }
    kv::frmMain* found = nullptr;
    for (QWidget* each : QApplication::topLevelWidgets()) {
      if (auto* main = qobject_cast<kv::frmMain*>(each)) {
        found = main;
      } else if (each->isVisible()) {
        each->close();
      }
    }
    if (found == nullptr || !found->isVisible()) return nullptr;
    if (!found->isActiveWindow()) found->activateWindow();
    return found->isActiveWindow() ? found : nullptr;
  }

  void act() {
    kv::frmMain* main = window();
    if (main == nullptr) return;
    if (pick(6) == 0) {
      insertArticle(*main);
    } else {
      typeInto(*main, fields[static_cast<std::size_t>(pick(static_cast<int>(fields.size())))]);
    }
  }

  void goSomewhere(kv::frmMain& main) {
    const auto& nodes = main.workbench().sets().tree();
    main.tree().setCurrentIndex(
        main.tree().departments().indexOf(nodes[static_cast<std::size_t>(pick(static_cast<int>(nodes.size())))].ID));
    const int count = main.articles().articles().rowCount();
    if (count > 0) main.articles().setCurrentIndex(main.articles().articles().index(pick(count), 0));
  }

  static std::string keyOf(kv::frmMain& main, EditedSet set) {
    kv::CatalogueSets& sets = main.workbench().sets();
    if (set == EditedSet::Categorie) return sets.department();
    return set == EditedSet::Articoli ? std::to_string(sets.article()) : "0";
  }

  void typeInto(kv::frmMain& main, const Field& field) {
    goSomewhere(main);
    if (field.set == EditedSet::Articoli && !main.workbench().sets().onArticle()) return;
    const kv::Editor* editor = kv::editorOf(field.set, field.column);
    main.workbench().selectTab(editor->tab);
    QWidget* into = main.page(editor->tab).binding(field.set, field.column)->field();
    into->setFocus();
    QTest::keyClick(into, Qt::Key_A, Qt::ControlModifier);
    const std::string text = (field.number ? "" : "Testo ") + std::to_string(next_++);
    QTest::keyClicks(into, QString::fromStdString(text));
    const std::string line = std::string(field.table) + "|" + field.column + "|" + keyOf(main, field.set) + "|" + text;
    writeLine("leaving|" + line);
    leave(main, *into);
    writeLine("left|" + line);
  }

  /// By Tab, by the key of a tab, by a row of the tree, by a command.
  void leave(kv::frmMain& main, QWidget& field) {
    switch (pick(4)) {
      case 0:
        QTest::keyClick(&field, static_cast<Qt::Key>(Qt::Key_1 + pick(4)), Qt::AltModifier);
        break;
      case 1:
        if (main.tree().isVisible()) {
          QTest::mouseClick(main.tree().viewport(), Qt::LeftButton, {}, QPoint(60, 40));
          if (!field.hasFocus()) break;
        }
        [[fallthrough]];
      default:
        QTest::keyClick(&field, Qt::Key_Tab);
    }
  }

  void insertArticle(kv::frmMain& main) {
    goSomewhere(main);
    main.workbench().selectTab(kv::Tab::Articles);
    main.articles().setFocus();
    writeLine("leaving|insert");
    QTest::keyClick(&main.articles(), Qt::Key_I, Qt::ControlModifier);
    writeLine("left|articoli|ID|" + keyOf(main, EditedSet::Articoli) + "|" + keyOf(main, EditedSet::Articoli));
  }

  QTimer turn_;
  std::mt19937 chance_;
  int next_;
};

}  // namespace

int main(int count, char** values) {
  if (count != 4) return 2;
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QCoreApplication::setApplicationName(QStringLiteral("korvane"));
  const QApplication application(count, values);
  const KillableWindow typing(static_cast<unsigned>(std::stoul(values[3])));
  return kv::runWindow({values[1], values[2]}, kv::programFolder());
}
