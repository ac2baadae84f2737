#pragma once
// A workbench over a small open shop, with a window that only remembers what it was told.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "shell/remembered_dialogs.h"
#include "shell/workbench/commands/command_rows.h"
#include "shell/workbench/commands/language_commands.h"
#include "shell/workbench/commands/view_commands.h"
#include "shell/workbench/workbench.h"
#include "store/shop/load_shop.h"
#include "store/shop/session_start.h"
#include "store/shop_fixture.h"
#include "support/row_text.h"
#include "support/temp_shop.h"

namespace kv::test {

class FakeView final : public WorkbenchView {
 public:
  std::function<void()> typing;  ///< what finishEdits hands over
  Tab tab = Tab::Departments;
  std::map<std::string, bool, std::less<>> enabled;
  std::vector<std::string> told;
  std::vector<std::int64_t> group;       ///< what is selected in the list
  std::vector<std::string> departments;  ///< what is selected in the tree
  std::string selected, status, title;
  int listino = 0, busy = 0, mostBusy = 0, edits = 0;
  std::multiset<EditedSet> fields;
  bool hidden = false, closed = false;
  bool canFinish = true;  ///< false: what is being typed can't be saved

  bool finishEdits() override {
    ++edits;
    if (const auto action = std::exchange(typing, nullptr)) action();
    return canFinish;
  }
  void showTab(Tab shown) override { tab = shown; }
  void enableKey(std::string_view key, bool on) override { enabled[std::string(key)] = on; }
  void entriesChanged() override {}
  void rebuildTree() override { told.emplace_back("tree"); }
  void selectDepartment(const std::string& ID) override { selected = ID; }
  void departmentTitle(const std::string& ID, const std::string& text) override {
    told.push_back("title " + ID + "=" + text);
  }
  void expandTree(bool expanded) override { told.emplace_back(expanded ? "expand" : "collapse"); }
  void articlesChanged() override { told.emplace_back("articles"); }
  void selectArticle() override { told.emplace_back("article"); }
  std::vector<std::int64_t> selectedArticles() const override { return group; }
  std::vector<std::string> selectedDepartments() const override { return departments; }
  void focusTree() override { told.emplace_back("focus tree"); }
  void startRow(EditedSet set) override {
    told.push_back(set == EditedSet::Articoli ? "new article" : "new department");
  }
  void fieldsChanged(EditedSet set) override { fields.insert(set); }
  void showStatus(const std::string& text) override { status = text; }
  void showTitle(const std::string& text) override { title = text; }
  void showBusy(bool on) override {
    busy += on ? 1 : -1;
    mostBusy = std::max(mostBusy, busy);
  }
  void showLanguages() override { told.emplace_back("languages"); }
  void showListino(int shown) override { listino = shown; }
  void hideDetails(bool hide) override { hidden = hide; }
  void close() override { closed = true; }

  bool isOn(std::string_view key) const {
    const auto found = enabled.find(key);
    return found != enabled.end() && found->second;
  }
};

/// Rows of a shop in two languages: two departments at the top, one below the first, four articles, a variant.
inline constexpr const char* threeDepartments =
    "DELETE FROM articoli; DELETE FROM sqlite_sequence; UPDATE lingue SET lingua2 = 'inglese';"
    "INSERT INTO opzioni (ID, nome, nome_l2) VALUES (1, '(nessuna)', '(none)'), (2, 'Colore', 'Colour');"
    "INSERT INTO categorie (contatore, ID, pagina, genitore, ordinamento, livello, titolo, titolo_l2, template,"
    " hafigli) VALUES (1, 'cat001', 'cat001', '###', 100, 1, 'Vasi', 'Pots', 'modello2', 1),"
    " (2, 'cat002', 'cat002', 'cat001', 105, 2, 'Piccoli', 'Small', 'modello1', 0),"
    " (3, 'cat003', 'cat003', '###', 110, 1, 'Piatti', 'Plates', 'modello1', 0);"
    "INSERT INTO articoli (catID, ordinamento, codice, titolo, titolo_l2, prezzo) VALUES"
    " ('cat001', 100, 'A1', 'Alba', 'Dawn', 145000), ('cat001', 105, 'B1', 'Brina', 'Frost', 200000),"
    " ('cat001', 110, 'C1', 'Cielo', 'Sky', 90000), ('cat003', 115, 'D1', 'Duna', 'Dune', 10000)";

class WorkbenchFixture : public ShopFixture, protected RememberedDialogs {
 protected:
  WorkbenchFixture() {
    shop = makeShop("negozio");
    run(shop, threeDepartments);
    write(application + "/serverpath.net", shop + "\r\n");
    ports.commands = allCommands();
    leaveDailyDialogs();
    answer(&WorkbenchDialogs::publish, false);
    answer(&WorkbenchDialogs::remindToBuild, false);
  }
  ~WorkbenchFixture() override { closeSession(session, env); }

  /// Of the workbench once it is there, before of the ports that it will be given.
  WorkbenchDialogs& dialogs() override { return bench ? bench->ports().dialogs : ports.dialogs; }

  void start() {
    ports.open = [this](const std::string& file, const std::string&) {
      opened.push_back(file);
      return openResult;
    };
    bench = std::make_unique<Workbench>(session, env, view, ports);
    env.hooks.bind = [this](Session&) { bench->bindSession(); };
    env.hooks.release = [this](Session&) { bench->releaseSession(); };
    env.hooks.reload = [this](const LoadOptions& options) {
      if (loadSession(session, env, options) == LoadResult::Opened) bench->showShop();
    };
    ASSERT_EQ(startSession(session, env), LoadResult::Opened);
    bench->showShop();
    user.shown.clear();
  }

  void go(const std::string& ID) { bench->goToDepartment(ID); }
  void article(std::size_t place) { bench->goToArticleAt(place); }
  void leave(EditedSet set, std::string_view column, const std::string& text) {
    const Editor* editor = editorOf(set, column);
    ASSERT_NE(editor, nullptr) << column;
    bench->leaveField(*editor, text);
  }
  std::string shown(EditedSet set, std::string_view column) { return bench->shown(*editorOf(set, column)); }
  std::string scalar(const std::string& query) {
    const auto value = session.catalogue.scalar(query);
    return value ? asText(*value) : value.error().what;
  }
  std::string rows(const std::string& query) { return test::rows(session.catalogue, query); }
  std::string titles() { return rows("SELECT titolo FROM articoli WHERE catID = 'cat001' ORDER BY ordinamento, ID"); }
  /// Everything that undo answers for.
  std::string whole() {
    return rows("SELECT * FROM categorie ORDER BY contatore") + rows("SELECT * FROM articoli ORDER BY ID") +
           rows("SELECT * FROM generale");
  }
  const Command& command(std::string_view name) {
    const Command* found = bench->commands().table().named(name);
    if (found == nullptr) throw std::runtime_error("no command " + std::string(name));
    return *found;
  }
  /// Runs a command as its button does, or its menu entry where it has no number.
  void press(std::string_view name) {
    const Command& wanted = command(name);
    if (wanted.number < 0) return bench->commands().choose(wanted);
    bench->commands().EseguiComando(wanted.number);
  }
  /// Runs a command as its menu entry does: nothing when that is off.
  void choose(std::string_view name) { bench->commands().choose(command(name)); }
  /// How its first menu entry shows.
  EntryState state(std::string_view name) {
    const Command& wanted = command(name);
    return bench->commands().stateOf(wanted, wanted.menus.empty() ? nullptr : &wanted.menus.front());
  }
  bool isOffered(std::string_view name) { return bench->commands().isEnabled(command(name)); }
  void undo() { press("undo"); }
  void redo() { press("redo"); }
  std::string undoName() { return bench->history().undoName(); }
  std::string redoName() { return bench->history().redoName(); }

  std::string shop;
  FakeView view;
  WorkbenchPorts ports;
  std::unique_ptr<Workbench> bench;
  std::vector<std::string> opened;
  int openResult = openedWell;
};

}  // namespace kv::test
