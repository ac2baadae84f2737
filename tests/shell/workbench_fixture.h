#pragma once
// A workbench over a small open shop, with a window that only remembers what it was told.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

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
  std::string selected, status, title;
  int listino = 0, busy = 0, mostBusy = 0, edits = 0;
  std::multiset<EditedSet> fields;
  bool hidden = false, closed = false;

  void finishEdits() override {
    ++edits;
    if (const auto action = std::exchange(typing, nullptr)) action();
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

class WorkbenchFixture : public ShopFixture {
 protected:
  WorkbenchFixture() {
    shop = makeShop("negozio");
    run(shop, threeDepartments);
    write(application + "/serverpath.net", shop + "\r\n");
    for (const char* name :
         {"frmElabora", "frmImpostaFTP", "frmFTP", "frmAvviso", "frmSearch", "frmImmagine", "frmOpzioni"}) {
      addDialog(name, "");
    }
  }
  ~WorkbenchFixture() override { closeSession(session, env); }

  /// A dialog that remembers its calls and answers with a text.
  void addDialog(const std::string& name, const std::string& answer) {
    ports.dialogs[name] = [this, name, answer](const std::string& argument) {
      dialogsRun.push_back(argument.empty() ? name : name + " " + argument);
      return answer;
    };
  }
  void answer(const std::string& name, const std::string& text) {
    addDialog(name, text);
    if (bench) bench->ports().dialogs[name] = ports.dialogs[name];
  }

  void start() {
    ports.open = [this](const std::string& file, const std::string&) {
      opened.push_back(file);
      return openResult;
    };
    bench = std::make_unique<Workbench>(session, env, view, ports);
    env.hooks.bind = [this](Session&) { bench->bindSession(); };
    env.hooks.release = [this](Session&) { bench->releaseSession(); };
    env.hooks.reload = [this] {
      if (loadSession(session, env) == LoadResult::Opened) bench->showShop();
    };
    ASSERT_EQ(startSession(session, env), LoadResult::Opened);
    bench->showShop();
    user.shown.clear();
  }

  void go(const std::string& ID) { bench->goToDepartment(ID); }
  void article(std::size_t place) { bench->goToArticlePlace(place); }
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
  const MenuEntry& menu(MenuAction action, int argument = 0) {
    for (const MenuEntry& entry : menuTable()) {
      if (entry.action == action && entry.argument == argument) return entry;
    }
    throw std::runtime_error("no such entry");
  }
  EntryState state(MenuAction action, int argument = 0) { return bench->stateOf(menu(action, argument)); }
  void choose(MenuAction action, int argument = 0) { bench->runEntry(menu(action, argument)); }

  std::string shop;
  FakeView view;
  WorkbenchPorts ports;
  std::unique_ptr<Workbench> bench;
  std::vector<std::string> dialogsRun, opened;
  int openResult = openedWell;
};

}  // namespace kv::test
