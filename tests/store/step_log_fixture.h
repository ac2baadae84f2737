#pragma once
// A shop of one article with a history whose steps are kept beyond the session.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "store/catalogue/way_back.h"
#include "store/tree_fixture.h"
#include "support/fixed_clock.h"
#include "support/value_of.h"

namespace kv::test {

class StepLogFixture : public TreeFixture {
 protected:
  void SetUp() override {
    sql("PRAGMA synchronous=OFF");  // the shop lives for one test
    sql("DELETE FROM categorie");
    department(1, "###", 100);
    sql("INSERT INTO articoli (ID, catID, codice, prezzo) VALUES (1, 'cat001', 'A', 10000)");
    bind();
    startSession();
  }
  void TearDown() override { history.listen(nullptr); }

  void startSession(const StepLimits& limits = {}) {
    log.emplace(session.ShopFolder, clock, limits);
    history.listen(&*log);
    history.clear();
  }
  void step(const std::string& name, const std::string& statement) {
    ASSERT_TRUE(history.record(name, [&] { return session.catalogue.execute(statement); }));
  }
  std::vector<std::string> listed() {
    std::vector<std::string> lines;
    for (const LoggedStep& one : log->steps()) lines.push_back(one.name + " " + std::string(stateText(one.state)));
    return lines;
  }
  std::string price() { return asText(valueOf(session.catalogue.scalar("SELECT prezzo FROM articoli WHERE ID = 1"))); }
  std::int64_t stepNamed(const std::string& name) {
    for (const LoggedStep& one : log->steps()) {
      if (one.name == name) return one.ID;
    }
    return 0;
  }
  /// Runs a statement on the file of the steps, as another program would.
  void onFile(const std::string& statement) {
    auto file = Database::open(log->path(), OpenMode::Shared);
    ASSERT_TRUE(file);
    ASSERT_TRUE(file->execute(statement));
  }
  void goBack(const WayBack& way) {
    ASSERT_TRUE(history.record(wayBackStep(way), [&] { return goBackByRows(session.catalogue, *log, way); }));
  }

  FixedClock clock;
  std::optional<StepLog> log;
};

}  // namespace kv::test
