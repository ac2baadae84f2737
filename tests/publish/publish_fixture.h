#pragma once
// A built shop of a few files, a server that a test directs, and everything that was shown.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/files/files.h"
#include "publish/run/publish_run.h"
#include "support/fixed_clock.h"
#include "support/scripted_ftp_server.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"

namespace kv::test {

/// Remembers what a run shows.
class RecordingView final : public PublishView {
 public:
  void title(const std::string& text) override { titles.push_back(text); }
  void operation(const std::string& text) override { operations.push_back(text); }
  void dialogue(const std::string& line) override { lines.push_back(line); }
  void progress(const PublishProgress& progress) override { steps.push_back(progress); }

  std::vector<std::string> titles, operations, lines;
  std::vector<PublishProgress> steps;
};

class PublishFixture : public ::testing::Test {
 protected:
  explicit PublishFixture(FtpManners manners = {.home = "/casa"}) : server(std::move(manners)) {
    for (const char* folder : {"online", "scripts"}) EXPECT_TRUE(createFolders(root / folder));
    server.makeFolder("/casa/www/negozio");
    server.makeFolder("/casa/cgi");
    job.shopFolder = root.path();
    job.onlineFolder = root / "online";
    job.scriptFolder = root / "scripts";
    job.login = {"127.0.0.1", "mario", "segreto"};
    job.folderFTP = "www/negozio";
    job.folderCGI = "cgi";
    way.ftpPort = server.port();
    settings.silenceSeconds = 1;
    settings.onlyShopFiles = false;
  }

  /// Writes a file of the shop; its time is `second` seconds after a fixed day.
  void write(const std::string& name, const std::string& bytes, int second = 0) {
    ASSERT_TRUE(writeBytes(root / name, bytes));
    setTime(name, second);
  }
  void setTime(const std::string& name, int second) {
    const timespec time{1'500'000'000 + second, 0};
    const timespec both[2] = {time, time};
    ASSERT_EQ(::utimensat(AT_FDCWD, (root / name).c_str(), both, 0), 0);
  }
  PublishOutcome publish() {
    server.forgetCommands();
    const UploadOptions options = uploadOptions(job, settings, way);
    const auto transfer = makeTransfer();
    return publishShop(job, options, {*transfer, user, view, clock, steps}, &report);
  }
  /// Names of the files that the last run has sent.
  std::vector<std::string> sent() const {
    std::vector<std::string> names;
    for (const std::string& one : server.commands("STOR ")) names.push_back(one.substr(5));
    return names;
  }
  /// "nome|peso" of the rows of the file table, in the order of the names.
  std::string tableRows() const {
    auto database = Database::open(root / "kvftp.mdb", OpenMode::Shared);
    if (!database) return "no table";
    auto query = database->prepare("SELECT nome, peso FROM file ORDER BY nome");
    std::string rows;
    while (query && query->step().value_or(false)) {
      rows += std::string(query->text(0)) + "|" + std::string(query->text(1)) + "\n";
    }
    return rows;
  }
  std::string log(int number) const {
    return readBytes(root / ("kvftp" + std::to_string(number) + ".log")).value_or("(missing)");
  }

  TempFolder root;
  ScriptedFtpServer server;
  PublishJob job;
  PublishSettings settings;
  FirewallSettings way;
  ScriptedUser user;
  RecordingView view;
  FixedClock clock;
  PublishSteps steps;
  PublishReport report;
};

}  // namespace kv::test
