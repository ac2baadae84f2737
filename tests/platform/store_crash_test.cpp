// Who holds a file, and what is left when its holder is killed: every acknowledged row, and no lock.

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <random>

#include "platform/store_fixture.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

/// A process that runs a piece of code and can be killed at any moment. It reports what it has done through a pipe.
class Child {
 public:
  explicit Child(const std::function<void(int)>& work) {
    int ends[2] = {-1, -1};
    if (pipe(ends) != 0) return;
    pid_ = fork();
    if (pid_ == 0) {
      ::close(ends[0]);
      work(ends[1]);
      _exit(0);
    }
    ::close(ends[1]);
    from_ = ends[0];
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    killNow();
    ::close(from_);
  }

  /// The next number it reported; -1 when it is gone.
  int next() const {
    int number = -1;
    return read(from_, &number, sizeof number) == sizeof number ? number : -1;
  }
  void killNow() {
    if (pid_ <= 0) return;
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
  }

 private:
  pid_t pid_ = -1;
  int from_ = -1;
};

void report(int to, int number) {
  if (write(to, &number, sizeof number) != sizeof number) _exit(1);
}

class StoreCrash : public StoreTest {
 protected:
  StoreCrash() {
    run(database_, "CREATE TABLE t (n INTEGER PRIMARY KEY, a LONGTEXT); CREATE INDEX ix_t_a ON t (a)");
    database_.close();
  }

  /// Adds rows from `first` on, each acknowledged once it is written.
  std::function<void(int)> adding(int first) const {
    return [path = path_, first](int to) {
      auto database = Database::open(path, OpenMode::Exclusive);
      if (!database) _exit(1);
      auto insert = checked(database->prepare("INSERT INTO t VALUES (?, hex(randomblob(700)))"));
      for (int number = first; insert; ++number) {
        insert->bind(1, number);
        if (!insert->execute()) _exit(1);
        report(to, number);
      }
    };
  }

  /// Changes most pages of the file in a transaction that spills out of its cache, and waits there for its end.
  std::function<void(int)> stoppingHalfWay() const {
    return [path = path_](int to) {
      auto database = Database::open(path, OpenMode::Shared);
      if (!database || !database->execute("PRAGMA cache_size=5; PRAGMA cache_spill=1")) _exit(1);
      if (!database->begin() || !database->execute("UPDATE t SET a = 'mezza ' || n || hex(randomblob(400))")) _exit(1);
      report(to, 1);
      for (;;) pause();
    };
  }

  void fill(int count) {
    auto database = valueOf(Database::open(path_, OpenMode::Exclusive));
    run(database, "WITH RECURSIVE c(n) AS (VALUES (1) UNION ALL SELECT n + 1 FROM c WHERE n < " +
                      std::to_string(count) + ") INSERT INTO t SELECT n, 'intera ' || hex(randomblob(400)) FROM c");
  }
};

TEST_F(StoreCrash, ASecondOpenerOfAnExclusiveFileGetsInUse) {
  auto holder = valueOf(Database::open(path_, OpenMode::Exclusive));
  for (const OpenMode mode : {OpenMode::Shared, OpenMode::Exclusive, OpenMode::ReadOnly, OpenMode::Scratch}) {
    EXPECT_EQ(kindOf(Database::open(path_, mode)), ErrorKind::InUse);
  }
  run(holder, "INSERT INTO t VALUES (1, 'uno')");
  EXPECT_EQ(kindOf(Database::open(path_, OpenMode::Shared)), ErrorKind::InUse);
  holder.close();
  EXPECT_TRUE(Database::open(path_, OpenMode::Exclusive));
}

TEST_F(StoreCrash, AnotherProcessGetsInUseToo) {
  auto holder = valueOf(Database::open(path_, OpenMode::Exclusive));
  Child other([this](int to) {
    auto database = Database::open(path_, OpenMode::Exclusive);
    report(to, database ? -2 : static_cast<int>(database.error().kind));
    database = Database::open(path_, OpenMode::ReadOnly);
    report(to, database ? -2 : static_cast<int>(database.error().kind));
  });
  EXPECT_EQ(other.next(), static_cast<int>(ErrorKind::InUse));
  EXPECT_EQ(other.next(), static_cast<int>(ErrorKind::InUse));
}

TEST_F(StoreCrash, AScratchFileIsHeldLikeAnExclusiveOne) {
  auto holder = valueOf(Database::open(path_, OpenMode::Scratch));
  EXPECT_EQ(kindOf(Database::open(path_, OpenMode::Shared)), ErrorKind::InUse);
}

TEST_F(StoreCrash, SharedHandlesReadSideBySideAndKeepAnExclusiveOneOutWhileTheyRead) {
  fill(3);
  auto first = valueOf(Database::open(path_, OpenMode::Shared));
  auto second = valueOf(Database::open(path_, OpenMode::Shared));
  auto reading = valueOf(first.prepare("SELECT n FROM t"));
  ASSERT_TRUE(valueOf(reading.step()));
  EXPECT_EQ(rows(second, "SELECT count(*) FROM t"), "3\n");
  EXPECT_EQ(kindOf(Database::open(path_, OpenMode::Exclusive)), ErrorKind::InUse);
  reading.reset();
  EXPECT_TRUE(Database::open(path_, OpenMode::Exclusive));
}

TEST_F(StoreCrash, TwoWritersOfASharedFileMeetInUse) {
  auto first = valueOf(Database::open(path_, OpenMode::Shared));
  auto second = valueOf(Database::open(path_, OpenMode::Shared));
  ASSERT_TRUE(first.begin());
  EXPECT_EQ(kindOf(second.begin()), ErrorKind::InUse);
  EXPECT_EQ(kindOf(second.execute("INSERT INTO t VALUES (1, 'x')")), ErrorKind::InUse);
  ASSERT_TRUE(first.commit());
  EXPECT_TRUE(second.begin());
}

TEST_F(StoreCrash, EveryAcknowledgedRowSurvivesAKillAtAnyMoment) {
  std::minstd_rand random(20040506);
  int acknowledged = 0;
  for (int round = 0; round < 20; ++round) {
    Child child(adding(acknowledged + 1));
    for (auto left = random() % 12; left > 0; --left) {
      const int number = child.next();
      ASSERT_GT(number, acknowledged);
      acknowledged = number;
    }
    usleep(static_cast<useconds_t>(random() % 3000));
    child.killNow();
    for (int number = child.next(); number > 0; number = child.next()) acknowledged = number;
    auto database = valueOf(Database::open(path_, OpenMode::Exclusive));
    // One more row may have been written whose acknowledgement was not sent any more.
    const std::string last = std::to_string(acknowledged);
    ASSERT_EQ(rows(database, "SELECT count(*) FROM t WHERE n <= " + last), last + "\n");
    ASSERT_EQ(rows(database, "PRAGMA integrity_check"), "ok\n");
    acknowledged = static_cast<int>(asInteger(valueOf(database.scalar("SELECT coalesce(max(n), 0) FROM t"))));
    ASSERT_LE(acknowledged, std::stoi(last) + 1);
  }
  EXPECT_GT(acknowledged, 0);
}

TEST_F(StoreCrash, AKilledHolderLeavesNoLock) {
  Child child(adding(1));
  ASSERT_EQ(child.next(), 1);
  EXPECT_EQ(kindOf(Database::open(path_, OpenMode::Exclusive)), ErrorKind::InUse);
  child.killNow();
  EXPECT_TRUE(Database::open(path_, OpenMode::Exclusive));
}

TEST_F(StoreCrash, AChangeCutShortIsUndoneByTheNextOpenerWhateverItsMode) {
  for (const OpenMode mode : {OpenMode::ReadOnly, OpenMode::Shared, OpenMode::Exclusive}) {
    auto before = valueOf(Database::open(path_, OpenMode::Shared));
    run(before, "DELETE FROM t");
    before.close();
    fill(200);
    Child child(stoppingHalfWay());
    ASSERT_EQ(child.next(), 1);
    child.killNow();
    const std::string asItLies = "file:" + path_ + "?immutable=1";
    ASSERT_EQ(rowsOfPlainEngine(asItLies, "SELECT count(*) > 0 FROM t NOT INDEXED WHERE a LIKE 'mezza%'"), "1\n");
    auto database = valueOf(Database::open(path_, mode));
    EXPECT_EQ(rows(database, "SELECT count(*), count(DISTINCT a) FROM t WHERE a LIKE 'intera*'"), "200|200\n");
    EXPECT_EQ(rows(database, "PRAGMA integrity_check"), "ok\n");
  }
}

TEST_F(StoreCrash, AFileInTheMiddleOfAnothersChangeIsNotUndone) {
  fill(200);
  Child child(stoppingHalfWay());
  ASSERT_EQ(child.next(), 1);
  EXPECT_EQ(kindOf(Database::open(path_, OpenMode::ReadOnly)), ErrorKind::InUse);
  EXPECT_EQ(kindOf(Database::open(path_, OpenMode::Exclusive)), ErrorKind::InUse);
}

}  // namespace
}  // namespace kv::test
