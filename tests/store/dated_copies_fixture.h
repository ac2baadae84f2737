#pragma once
// A shop whose catalogue gets dated copies, by a clock that a test moves.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "shop_fixture.h"
#include "store/shop/backup_copies.h"

namespace kv::test {

inline constexpr double firstCopySecond = 1783840500;  // 2026-07-12 07:15:00 UTC

/// Leaves a catalogue whose writer was killed in the middle of a change that had reached the disk.
inline void killInTheMiddleOfAChange(const std::string& catalogue) {
  const pid_t child = fork();
  if (child == 0) {
    auto database = Database::open(catalogue, OpenMode::Exclusive);
    if (!database) std::_Exit(1);
    ignore(database->execute("PRAGMA cache_size=1"), "the process is killed soon");
    ignore(database->begin(), "the process is killed soon");
    ignore(database->execute("UPDATE articoli SET titolo = 'a meta'"), "the process is killed soon");
    ignore(database->execute("INSERT INTO articoli (titolo) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 "
                             "FROM n WHERE i < 2000) "
                             "SELECT 'riga ' || i FROM n"),
           "the process is killed soon");
    std::_Exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_EQ(status, 0);
  ASSERT_GT(std::filesystem::file_size(catalogue + "-journal"), 0U);
}

class DatedCopies : public ShopFixture {
 protected:
  DatedCopies() {
    folder = makeShop("uno");
    clock.seconds = firstCopySecond;
  }

  /// A change of the catalogue that shows in its size and time.
  void change(const std::string& title) {
    run(folder, "UPDATE articoli SET titolo = '" + title + "'");
    // Two changes may fall into one tick of the disk's clock.
    const auto now = std::filesystem::last_write_time(folder + "/catalog.mdb");
    std::filesystem::last_write_time(folder + "/catalog.mdb", now + std::chrono::seconds(++changes_));
  }
  bool keep() {
    const auto kept = keepDatedCopy(folder, clock);
    EXPECT_TRUE(kept) << kept.error().what;
    clock.seconds += 60;
    return kept.value_or(false);
  }
  std::vector<std::string> names() const {
    std::vector<std::string> found;
    for (const BackupCopy& copy : backupCopies(folder)) found.push_back(copy.name);
    return found;
  }
  std::string title(const std::string& file = "catalog.mdb") const {
    auto catalogue = Database::open(folder + "/" + file, OpenMode::ReadOnly);
    if (!catalogue) return catalogue.error().what;
    const auto value = catalogue->scalar("SELECT titolo FROM articoli");
    return value ? asText(*value) : value.error().what;
  }

  std::string folder;

 private:
  int changes_ = 0;
};

}  // namespace kv::test
