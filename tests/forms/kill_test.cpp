// The window is killed at random moments while somebody types into it: every field that was left before is in the
// catalogue, the catalogue is whole, and the shop opens again. KORVANE_TEST_SEED=<number> runs other keys.

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <map>
#include <random>
#include <set>

#include "platform/text/text.h"
#include "shell/workbench_fixture.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int rounds = 20;
constexpr auto patience = std::chrono::seconds(60);  // for the first field of a round
constexpr int longestRound = 400;                    // milliseconds from there to the kill

/// The killable window as a process of its own, and what it says.
class Typing {
 public:
  Typing(const std::string& application, const std::string& shop, const std::string& settings, unsigned turn) {
    int ends[2] = {-1, -1};
    if (pipe(ends) != 0) return;
    const std::string number = std::to_string(turn);
    pid_ = fork();
    if (pid_ == 0) {
      dup2(ends[1], STDOUT_FILENO);
      ::close(ends[0]);
      ::close(ends[1]);
      setenv("XDG_CONFIG_HOME", settings.c_str(), 1);
      execl(KORVANE_KILLABLE_WINDOW, KORVANE_KILLABLE_WINDOW, application.c_str(), shop.c_str(), number.c_str(),
            nullptr);
      _exit(127);
    }
    ::close(ends[1]);
    from_ = ends[0];
  }
  Typing(const Typing&) = delete;
  Typing& operator=(const Typing&) = delete;
  ~Typing() {
    killNow();
    ::close(from_);
  }

  /// Listens until `said` or the moment; false when neither came, for the program is gone.
  bool listen(Clock::time_point until, std::string_view said = {}) {
    while (said.empty() || text_.find(said) == std::string::npos) {
      const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now()).count();
      if (left <= 0) return said.empty();
      pollfd end{from_, POLLIN, 0};
      if (poll(&end, 1, static_cast<int>(left)) > 0 && !readMore()) return false;
    }
    return true;
  }
  void killNow() {
    if (pid_ <= 0) return;
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
    while (readMore()) {
    }
  }
  /// Everything it said; whole only after killNow().
  const std::string& text() const { return text_; }

 private:
  bool readMore() {
    std::array<char, 4096> bytes{};
    const ssize_t size = read(from_, bytes.data(), bytes.size());
    if (size > 0) text_.append(bytes.data(), static_cast<std::size_t>(size));
    return size > 0;
  }

  pid_t pid_ = -1;
  int from_ = -1;
  std::string text_;
};

class KilledWindow : public ShopFixture {
 protected:
  KilledWindow() : shop(makeShop("negozio")) { run(shop, threeDepartments); }

  /// What a field was last left with, and what was being typed since: a kill in the middle may have saved it or not.
  struct Known {
    bool wasLeft = false;
    std::set<std::string> values;
  };

  void note(const std::string& text) {
    for (const std::string_view each : splitLines(text)) {
      const std::string line(each);
      const std::size_t first = line.find('|');
      const std::size_t last = line.rfind('|');
      if (first == last) continue;
      Known& field = expected[line.substr(first + 1, last - first - 1)];
      if (line.starts_with("left|")) {
        field = {true, {}};
        ++fieldsLeft;
      }
      field.values.insert(line.substr(last + 1));
    }
  }

  void checkCatalogue() {
    ASSERT_EQ(read(shop, "PRAGMA integrity_check"), "ok");
    auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Shared);
    ASSERT_TRUE(catalogue) << catalogue.error().what;
    for (const auto& [field, known] : expected) {
      if (!known.wasLeft) continue;
      const std::size_t table = field.find('|');
      const std::size_t column = field.rfind('|');
      const std::string name = field.substr(0, table);
      const std::string where = name == "generale" ? "" : " WHERE ID = '" + field.substr(column + 1) + "'";
      const auto value =
          catalogue->scalar("SELECT " + field.substr(table + 1, column - table - 1) + " FROM " + name + where);
      ASSERT_TRUE(value) << value.error().what;
      ASSERT_TRUE(known.values.contains(asText(*value)))
          << field << " is \"" << asText(*value) << "\", left with \"" << *known.values.begin() << "\"";
    }
  }

  std::string shop;
  std::map<std::string, Known> expected;  ///< by table, column and key
  int fieldsLeft = 0;
};

TEST_F(KilledWindow, EveryFieldLeftBeforeIsInTheCatalogueAndTheShopOpensAgain) {
  SCOPED_TRACE("KORVANE_TEST_SEED=" + std::to_string(seed()));
  std::mt19937 chance(seed());
  for (int round = 1; round <= rounds; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    Typing typing(application, shop, root / "impostazioni", static_cast<unsigned>(chance()));
    ASSERT_TRUE(typing.listen(Clock::now() + patience, "left|")) << typing.text();
    const int length = std::uniform_int_distribution<int>(0, longestRound)(chance);
    ASSERT_TRUE(typing.listen(Clock::now() + std::chrono::milliseconds(length))) << typing.text();
    typing.killNow();
    ASSERT_EQ(typing.text().find("refused"), std::string::npos) << typing.text();
    note(typing.text());
    checkCatalogue();
    if (HasFatalFailure()) return;
  }
  EXPECT_GE(fieldsLeft, rounds);
}

}  // namespace
}  // namespace kv::test
