#pragma once
// An open catalogue with a small tree, its cursors and the commands on it.

#include <string>
#include <vector>

#include "store/catalogue/tree_editing.h"
#include "store/catalogue/undo_history.h"
#include "store/shop_fixture.h"
#include "support/row_text.h"

namespace kv::test {

/// What the listener was told, in order.
class RecordingListener final : public SetsListener {
 public:
  std::vector<std::string> told;
  void departmentMoved() override { told.emplace_back("department"); }
  void articleMoved() override { told.emplace_back("article"); }
  void articlesChanged() override { told.emplace_back("articles"); }
  void treeRebuilt() override { told.emplace_back("tree"); }
  void titleChanged(const std::string& department, const std::string& title) override {
    told.push_back("title " + department + "=" + title);
  }
  void statusChanged() override {}
};

class TreeFixture : public ShopFixture {
 protected:
  TreeFixture() {
    const std::string folder = makeShop("negozio");
    run(folder, "DELETE FROM articoli; DELETE FROM sqlite_sequence");
    session.ShopFolder = folder;
    session.languageCount = 2;
    auto opened = Database::open(folder + "/catalog.mdb", OpenMode::Exclusive).value();
    session.catalogue = std::move(opened);
  }
  ~TreeFixture() override {
    history.end();
    sets.release();
  }

  void bind() {
    ASSERT_TRUE(sets.CambiaLingua(1));
    ASSERT_TRUE(sets.recount());
    sets.listen(&listener);
    history.begin();
  }
  void sql(const std::string& statements) {
    const auto done = session.catalogue.execute(statements);
    ASSERT_TRUE(done) << done.error().what;
  }
  /// A department "cat<number>" of the given parent and order.
  void department(int number, const std::string& parent, int order, int level = 1) {
    const std::string key = "cat" + std::string(number < 10 ? "00" : "0") + std::to_string(number);
    sql("INSERT INTO categorie (contatore, ID, pagina, genitore, ordinamento, livello, titolo) VALUES (" +
        std::to_string(number) + ", '" + key + "', '" + key + "', '" + parent + "', " + std::to_string(order) + ", " +
        std::to_string(level) + ", 'Reparto " + std::to_string(number) + "')");
    if (parent != "###") sql("UPDATE categorie SET hafigli = 1 WHERE ID = '" + parent + "'");
  }
  void article(const std::string& department, int order, const std::string& title) {
    sql("INSERT INTO articoli (catID, ordinamento, titolo) VALUES ('" + department + "', " + std::to_string(order) +
        ", '" + title + "')");
  }
  /// The rows of a query: fields parted by "|", rows by "\n".
  std::string rows(const std::string& query) { return test::rows(session.catalogue, query); }
  std::string articles(const std::string& department) {
    return rows("SELECT ordinamento, titolo FROM articoli WHERE catID = '" + department + "' ORDER BY ordinamento, ID");
  }
  std::string departments() {
    return rows("SELECT ID, genitore, livello, ordinamento, COALESCE(hafigli, 0) FROM categorie ORDER BY contatore");
  }
  void go(const std::string& ID) {
    const auto found = sets.goToDepartment(ID);
    ASSERT_TRUE(found);
    ASSERT_TRUE(*found) << ID;
  }
  void goArticle(std::int64_t ID) {
    const auto found = sets.goToArticle(ID);
    ASSERT_TRUE(found);
    ASSERT_TRUE(*found) << ID;
  }

  CatalogueSets sets{session};
  RecordingListener listener;
  std::vector<std::string> states;
  TreeEditing editing{
      sets,
      user,
      {[this](std::string_view key, bool on) { states.push_back(std::string(key) + (on ? "+" : "-")); }, {}}};
  UndoHistory history{sets};
};

}  // namespace kv::test
