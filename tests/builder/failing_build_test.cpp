// A build during which a call of the files or of the store fails, or memory runs out, at moments spread over the whole
// run: it finishes or says why not, the catalogue is as it was, each page is the old one or the new one whole, nothing
// unfinished is left, and the next build makes what a build never disturbed makes.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <new>

#include "platform/files/files.h"
#include "support/failing_files.h"
#include "support/failing_store.h"
#include "support/row_text.h"
#include "support/temp_shop.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

using Files = std::map<std::string, std::string>;

/// Moments of a run at which a call fails; KORVANE_TEST_MOMENTS tries more.
std::int64_t moments() { return numberFromEnvironment("KORVANE_TEST_MOMENTS", 60); }

/// Every file below a folder by its path with its bytes, the marker of the build left out: its name is new each time.
void addFiles(const std::string& folder, Files& files) {
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file() || entry.path().extension() == ".sc") continue;
    files[entry.path().string()] = readBytes(entry.path().string()).value_or("(unreadable)");
  }
}

/// The user of another one while memory runs out: the n-th report of progress, or step that lets events in, throws.
class ForgetfulUser final : public UserPort {
 public:
  /// failing: from 1; 0: none, they are only counted.
  ForgetfulUser(UserPort& user, std::int64_t failing) : user_(user), point_(failing, AfterFailure::Works) {}

  void message(const std::string& text, Icon icon) override { user_.message(text, icon); }
  Answer question(const Question& question) override { return user_.question(question); }
  std::string chooseFolder(const std::string& prompt, const std::string& initial) override {
    return user_.chooseFolder(prompt, initial);
  }
  void progress(const Progress& progress) override {
    if (point_.next()) throw std::bad_alloc();
    user_.progress(progress);
  }
  bool yield() override {
    if (point_.next()) throw std::bad_alloc();
    return user_.yield();
  }
  std::int64_t calls() const { return point_.calls(); }
  bool hasFailed() const { return point_.hasFailed(); }

 private:
  UserPort& user_;
  FailurePoint point_;
};

class FailingBuild : public ::testing::Test {
 protected:
  /// A shop in two languages, built with each of two titles.
  void SetUp() override {
    shop.templateFile("index.htm", "<html><<1-titolo>>|<<1-vetrina>></html>");
    shop.sql("INSERT INTO lingue (lingua1, lingua2) VALUES ('italiano', 'inglese')");
    for (const char* id : {"cat001", "cat002"}) {
      shop.department(id);
      for (int i = 0; i < 2; ++i) shop.article(id, {{"titolo", std::string("Articolo")}, {"prezzo", money("12.5")}});
    }
    queries_ = catalogueQueries();
    for (std::size_t title = 0; title < 2; ++title) {
      setTitles(title);
      catalogue_[title] = catalogueRows();
      ASSERT_EQ(build(), BuildOutcome::Done);
      pages_[title] = pages();
      rows_[title] = builtRows();
    }
    ASSERT_NE(pages_[0], pages_[1]);
  }

  void setTitles(std::size_t title) {
    const std::string text = title == 0 ? "Vasi" : "Piatti";
    shop.sql("UPDATE categorie SET titolo = '" + text + "', titolo_l2 = '" + text + " en';" +
             "UPDATE articoli SET titolo = '" + text + " '||ID; UPDATE generale SET titolo = '" + text + "'");
  }
  BuildOutcome build() {
    shop.random = FixedRandom();
    shop.user.shown.clear();
    return shop.build();
  }
  BuildOutcome build(ForgetfulUser& user) {
    shop.user.shown.clear();
    Environment env{user, shop.settings, shop.clock, shop.random, shop.applicationFolder(), {}};
    return MakePages(shop.session, env, {});
  }

  Files pages() const {
    Files files;
    addFiles(shop.session.onlineFolder, files);
    addFiles(shop.session.scriptFolder, files);
    return files;
  }
  std::string builtRows() const {
    std::string text;
    for (const char* table : {"articoli", "articoli_l2", "dettaglio", "ordinamento"}) {
      text += shop.rows(std::string("SELECT * FROM ") + table) + "\n";
    }
    return text;
  }
  /// The queries for all rows of the catalogue but for the token that a build writes.
  std::vector<std::string> catalogueQueries() {
    std::vector<std::string> queries;
    const auto tables = shop.session.catalogue.tables();
    EXPECT_TRUE(tables);
    for (const TableInfo& table : tables.value_or(std::vector<TableInfo>())) {
      std::string columns;
      for (const ColumnInfo& column : table.columns) {
        if (column.name != "db_security") columns += (columns.empty() ? "\"" : ", \"") + column.name + "\"";
      }
      queries.push_back("SELECT " + columns + " FROM " + table.name);
    }
    return queries;
  }
  std::string catalogueRows() {
    std::string text;
    for (const std::string& query : queries_) text += query + "\n" + test::rows(shop.session.catalogue, query);
    return text;
  }
  std::string unfinished() const {
    std::string names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(shop.folder())) {
      if (entry.path().filename().string().find(".kvtmp") != std::string::npos) names += entry.path().string() + "\n";
    }
    return names;
  }

  /// Builds with the other titles while something fails; `disturb` builds, and says whether anything did fail.
  void disturbedBuild(const std::function<bool(BuildOutcome&)>& disturb) {
    present_ = 1 - present_;
    setTitles(present_);
    BuildOutcome outcome = BuildOutcome::Cancelled;
    const bool failed = disturb(outcome);
    EXPECT_TRUE(failed);
    EXPECT_TRUE(outcome == BuildOutcome::Done || (outcome == BuildOutcome::Failed && !shop.user.shown.empty()));
    EXPECT_EQ(catalogueRows(), catalogue_[present_]);
    EXPECT_EQ(unfinished(), "");
    for (const auto& [path, bytes] : pages()) {
      // The file by which a folder is tried stays, empty, when it cannot be removed; the next build removes it.
      if (path.ends_with(".csv") && bytes.empty()) continue;
      const bool whole = bytes == found(pages_[0], path) || bytes == found(pages_[1], path);
      EXPECT_TRUE(whole) << path << " is neither the old page nor the new one:\n" << bytes;
    }
    EXPECT_EQ(build(), BuildOutcome::Done);
    EXPECT_TRUE(pages() == pages_[present_]);
    EXPECT_EQ(builtRows(), rows_[present_]);
    EXPECT_FALSE(folderExists(shop.folder() + "/tmp"));
  }
  static std::string found(const Files& files, const std::string& path) {
    const auto page = files.find(path);
    return page == files.end() ? "(none)" : page->second;
  }

  /// The moments of a run of so many calls, spread evenly.
  static std::vector<std::int64_t> spread(std::int64_t calls) {
    std::vector<std::int64_t> chosen;
    const std::int64_t step = std::max<std::int64_t>(calls / moments(), 1);
    for (std::int64_t n = 1; n <= calls; n += step) chosen.push_back(n);
    return chosen;
  }

  TempShop shop{2};
  Files pages_[2];
  std::string rows_[2];
  std::vector<std::string> queries_;
  std::string catalogue_[2];
  std::size_t present_ = 1;  ///< the titles of the last build
};

class FailingBuildTest : public FailingBuild, public ::testing::WithParamInterface<AfterFailure> {};

TEST_P(FailingBuildTest, ACallOfTheFilesFails) {
  std::int64_t calls = 0;
  {
    const FailingFiles files;
    ASSERT_EQ(build(), BuildOutcome::Done);
    calls = files.calls();
  }
  ASSERT_GT(calls, 0);
  for (const std::int64_t n : spread(calls)) {
    SCOPED_TRACE("call " + std::to_string(n) + " of " + std::to_string(calls));
    disturbedBuild([&](BuildOutcome& outcome) {
      const FailingFiles files(n, GetParam());
      outcome = build();
      return files.hasFailed();
    });
    if (HasFailure()) return;
  }
}

TEST_P(FailingBuildTest, ACallOfTheStoreFails) {
  std::int64_t calls = 0;
  {
    const FailingStore store;
    ASSERT_EQ(build(), BuildOutcome::Done);
    calls = store.calls();
  }
  ASSERT_GT(calls, 0);
  for (const std::int64_t n : spread(calls)) {
    SCOPED_TRACE("call " + std::to_string(n) + " of " + std::to_string(calls));
    disturbedBuild([&](BuildOutcome& outcome) {
      const FailingStore store(n, GetParam());
      outcome = build();
      return store.hasFailed();
    });
    if (HasFailure()) return;
  }
}

TEST_F(FailingBuild, MemoryRunsOut) {
  ForgetfulUser counting(shop.user, 0);
  ASSERT_EQ(build(counting), BuildOutcome::Done);
  ASSERT_GT(counting.calls(), 0);
  for (const std::int64_t n : spread(counting.calls())) {
    SCOPED_TRACE("call " + std::to_string(n) + " of " + std::to_string(counting.calls()));
    disturbedBuild([&](BuildOutcome& outcome) {
      ForgetfulUser user(shop.user, n);
      outcome = build(user);
      EXPECT_EQ(outcome, BuildOutcome::Failed);
      EXPECT_EQ(shop.user.shown.size(), 1U);
      const std::string told = shop.user.shown.empty() ? "" : shop.user.shown[0].text;
      EXPECT_TRUE(told.starts_with("Una o più pagine dei reparti contengono troppi articoli:\n")) << told;
      return user.hasFailed();
    });
    if (HasFailure()) return;
  }
}

TEST_F(FailingBuild, AFolderThatCantBeListedLeavesNothingOfTheSiteOut) {
  shop.shopFile("work/foto.gif", "GIF89a");
  shop.shopFile("code/mio.php", "<?php");
  shop.application("backoffice/ordini.php", "<?php");
  shop.templateFile("inglese/bandiera.gif", "GIF89a");
  ASSERT_EQ(build(), BuildOutcome::Done);
  const std::vector<std::string> listed = shop.fileList();
  const std::string package = "template/prova";
  for (const std::string folder : {"/work", "/tmp/1", "/tmp/2", "/backoffice", "/code", "/prova", "/inglese"}) {
    FailingFiles files(1, AfterFailure::FailsToo);
    files.onlyAt({FileStep::List});
    files.onlyFor(folder);
    EXPECT_EQ(build(), BuildOutcome::Failed) << folder;
    EXPECT_EQ(shop.user.shown.size(), 1U) << folder;
  }
  ASSERT_EQ(build(), BuildOutcome::Done);
  EXPECT_EQ(shop.fileList(), listed);
}

INSTANTIATE_TEST_SUITE_P(Damage, FailingBuildTest, ::testing::Values(AfterFailure::Works, AfterFailure::FailsToo),
                         [](const auto& tried) { return tried.param == AfterFailure::Works ? "Once" : "FromThenOn"; });

}  // namespace
}  // namespace kv::test
