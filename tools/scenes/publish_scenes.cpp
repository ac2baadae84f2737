#include <QTemporaryDir>
#include <array>
#include <utility>

#include "platform/files/files.h"
#include "publish/run/frm_ftp.h"
#include "scenes.h"

namespace kv::scenes {
namespace {

constexpr int pagesInThePicture = 48;
constexpr int pageOfThePicture = 30;  // while which one is sent the picture is taken
constexpr std::size_t pageSize = 41'500;
constexpr int shownMilliseconds = 200;  // a run shows itself a few times in a second

/// A server that agrees to everything. In the middle of one page it has the picture taken; then the run is cancelled.
class ServerInThePicture final : public Transfer {
 public:
  explicit ServerInThePicture(std::function<void()> take) : take_(std::move(take)) {}

  void listen(TransferEvents events) override { events_ = std::move(events); }
  TransferCompletion connect(const ConnectionSettings& /*settings*/) override {
    return said("220 FTP server ready", {});
  }
  TransferCompletion logIn() override { return said("USER bottega", "230 User bottega logged in"); }
  TransferCompletion currentFolder() override { return {transferDone, "/", {}}; }
  TransferCompletion changeFolder(const std::string& folder) override {
    return said("CWD " + folder, "250 CWD command successful");
  }
  TransferCompletion parentFolder() override { return {}; }
  TransferCompletion makeFolder(const std::string& /*folder*/) override { return {}; }
  TransferCompletion deleteFile(const std::string& name) override {
    return said("DELE " + name, "250 DELE command successful");
  }
  TransferCompletion renameFile(const std::string& /*from*/, const std::string& /*to*/) override { return {}; }
  TransferCompletion upload(const std::string& /*path*/, const std::string& name, TransferMode /*mode*/) override {
    ignore(said("EPSV", "229 Entering Extended Passive Mode (|||50211|)"), "the next line tells");
    ignore(said("STOR " + name, "150 Opening BINARY mode data connection for " + name), "the next line tells");
    if (++uploads_ < pageOfThePicture) return said({}, "226 Transfer complete");
    events_.sent(pageSize * 2 / 5);
    ignore(waitFor(shownMilliseconds, events_.yield), "the picture is taken as the window is then");
    take_();
    return {transferCancelled, {}, {}};
  }
  TransferCompletion append(const std::string& path, const std::string& name, TransferMode mode) override {
    return upload(path, name, mode);
  }
  TransferCompletion rawCommand(const std::string& command) override { return said(command, "200 OK"); }
  TransferCompletion list() override { return {}; }
  TransferCompletion quit() override { return {}; }
  void abort() override {}
  bool isConnected() const override { return uploads_ < pageOfThePicture; }

 private:
  TransferCompletion said(const std::string& command, const std::string& reply) {
    for (const std::string& line : {command, reply}) {
      if (!line.empty()) events_.line(line);
    }
    return events_.yield() ? TransferCompletion() : TransferCompletion{transferCancelled, {}, {}};
  }

  std::function<void()> take_;
  TransferEvents events_;
  int uploads_ = 0;
};

/// Goes on by itself, so that the picture always shows the same speed.
class ClockInThePicture final : public Clock {
 public:
  double now() override { return now_ += 0.1; }

 private:
  double now_ = 1'790'000'000;
};

void makePages(const std::string& folder) {
  for (int i = 1; i <= pagesInThePicture; ++i) {
    const std::string number = std::to_string(i);
    const std::string name = "cat" + std::string(3 - number.size(), '0') + number + ".php";
    ignore(writeBytes(joinPath(folder, name), std::string(pageSize, ' ')), "the picture shows fewer files");
  }
}

void takeRunningPublish(Stage& stage, const QString& name) {
  const QTemporaryDir folder;
  PublishJob job;
  job.shopFolder = fromQt(folder.path());
  job.onlineFolder = joinPath(job.shopFolder, "online");
  job.scriptFolder = joinPath(job.shopFolder, "scripts");
  job.login = {"ftp.bottega.example", "bottega", "segreta"};
  job.folderFTP = "/www/negozio";
  job.folderCGI = "/www/cgi-bin";
  for (const std::string& made : {job.onlineFolder, job.scriptFolder}) {
    ignore(createFolders(made), "the picture shows what the run says then");
  }
  makePages(job.onlineFolder);
  PublishSettings settings;
  settings.onlyShopFiles = false;
  ServerInThePicture server([&] {
    Stage::processEvents();
    stage.take(name);
  });
  ClockInThePicture clock;
  frmFTP window(job, uploadOptions(job, settings, {}), {server, stage.user(), clock}, &stage.window());
  window.exec();
}

}  // namespace

std::span<const Scene> publishScenes() {
  static constexpr std::array scenes{Scene{"pubblicazione-in-corso", takeRunningPublish}};
  return scenes;
}

}  // namespace kv::scenes
