// Kills between and in the steps of the history: no acknowledged edit is lost, opening works, and the record of the
// steps never names one that didn't happen.
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <random>
#include <set>

#include "platform/files/files.h"
#include "store/catalogue/step_log.h"
#include "store/tree_fixture.h"
#include "support/fixed_clock.h"
#include "support/test_seed.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

class KilledHistory : public TreeFixture {
 protected:
  static constexpr int longestLife = 400;      // steps of a process that nobody kills
  static constexpr std::size_t lineBytes = 6;  // "+10007": a sign and the step

  std::string catalogue() const { return joinPath(session.ShopFolder, "catalog.mdb"); }

  /// Adds an article with each step, undoes some of them and repeats some of those; tells of each when it is done.
  void work(int told, unsigned number) {
    std::mt19937 chance{number};
    StepLog log(session.ShopFolder, clock);
    bind();
    history.listen(&log);
    const auto writeStep = [&](char what, int step) {
      const std::string line = what + std::to_string(10000 + step);
      if (::write(told, line.data(), line.size()) != static_cast<ssize_t>(line.size())) ::_exit(1);
    };
    for (int step = 1; step <= longestLife; ++step) {
      const std::string name = std::to_string(step);
      const auto added = history.record("passo " + name, [&] {
        return session.catalogue.execute("INSERT INTO articoli (catID, codice) VALUES ('cat001', '" + name + "')");
      });
      if (!added) ::_exit(1);
      writeStep('+', step);
      if (chance() % 3 != 0) continue;
      if (!history.undo()) ::_exit(1);
      writeStep('-', step);
      if (chance() % 2 != 0) continue;
      if (!history.redo()) ::_exit(1);
      writeStep('+', step);
    }
  }

  /// Runs a process that is killed after so many microseconds from its first step on; what it told.
  std::string killedAfter(unsigned microseconds, unsigned number) {
    std::array<int, 2> channel{};
    EXPECT_EQ(::pipe(channel.data()), 0);
    const pid_t child = ::fork();
    if (child == 0) {
      auto opened = Database::open(catalogue(), OpenMode::Exclusive);
      if (!opened) ::_exit(1);
      session.catalogue = std::move(*opened);
      work(channel[1], number);
      ::_exit(0);
    }
    ::close(channel[1]);
    std::string told;
    std::array<char, 512> bytes{};
    for (bool isKilled = false;; isKilled = true) {
      const ssize_t read = ::read(channel[0], bytes.data(), bytes.size());
      if (read <= 0) break;
      told.append(bytes.data(), static_cast<std::size_t>(read));
      if (isKilled) continue;
      ::usleep(microseconds);
      ::kill(child, SIGKILL);
    }
    ::close(channel[0]);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0) << "a step failed";
    return told;
  }

  /// The steps whose article is in the catalogue.
  static std::set<int> articlesIn(Database& database) {
    std::set<int> steps;
    auto rows = database.prepare("SELECT codice FROM articoli");
    EXPECT_TRUE(rows);
    while (rows && rows->step().value_or(false)) steps.insert(std::stoi(std::string(rows->text(0))));
    return steps;
  }

  void expectWhole(const std::string& told, const std::string& trace) {
    SCOPED_TRACE(trace);
    auto opened = Database::open(catalogue(), OpenMode::Exclusive);
    ASSERT_TRUE(opened) << opened.error().what;
    EXPECT_EQ(asText(opened->scalar("PRAGMA integrity_check").value_or(Value("unreadable"))), "ok");
    const std::set<int> articles = articlesIn(*opened);
    // The last thing that was told may have been followed by one more, which is there or not.
    std::set<int> expected;
    int highest = 0;
    for (std::size_t i = 0; i + lineBytes <= told.size(); i += lineBytes) {
      const int step = std::stoi(told.substr(i + 1, lineBytes - 1)) - 10000;
      highest = std::max(highest, step);
      if (told[i] == '+') {
        expected.insert(step);
      } else {
        expected.erase(step);
      }
    }
    for (int step = 1; step < highest; ++step) EXPECT_EQ(articles.contains(step), expected.contains(step)) << step;
    StepLog log(session.ShopFolder, clock);
    for (const LoggedStep& step : log.steps()) {
      const int number = std::stoi(step.name.substr(step.name.rfind(' ') + 1));
      EXPECT_LE(number, articles.empty() ? highest : std::max(highest, *articles.rbegin())) << step.name;
      const bool isLast = number >= highest;
      const bool isThere = articles.contains(number);
      EXPECT_TRUE(isLast || (step.state == StepState::Done) == isThere) << step.name;
    }
  }
};

TEST_F(KilledHistory, LosesNoEditThatWasDoneAndNamesNoStepThatWasNot) {
  sql("DELETE FROM articoli; DELETE FROM categorie");
  department(1, "###", 100);
  session.catalogue.close();
  const std::string before = valueOf(readBytes(catalogue()));
  std::mt19937 chance{seed()};
  std::uniform_int_distribution<unsigned> moment{0, 40'000};
  for (int i = 0; i < operationsOf(5); ++i) {
    ASSERT_TRUE(writeBytes(catalogue(), before));
    ignore(deleteFile(StepLog(session.ShopFolder, clock).path()), "there is none at first");
    const std::string told = killedAfter(moment(chance), seed() + static_cast<unsigned>(i));
    expectWhole(told, "kill " + std::to_string(i) + ", seed " + std::to_string(seed()));
  }
}

}  // namespace
}  // namespace kv::test
