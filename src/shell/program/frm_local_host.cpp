#include "shell/program/frm_local_host.h"

#include "platform/files/files.h"
#include "platform/files/user_folders.h"
#include "platform/qt/frm_dialog.h"

namespace kv {
namespace {

constexpr int waitMilliseconds = 50;
constexpr int startMilliseconds = 10'000;
constexpr int endMilliseconds = 20'000;  // a database that has much to write

const QString saidBy = QStringLiteral("local-host: ");

/// The rest of the line that begins with a word; empty when there is none, or its end hasn't come yet.
QString lineAfter(const QByteArray& text, const QByteArray& word) {
  for (const QByteArray& line : text.left(text.lastIndexOf('\n') + 1).split('\n')) {
    if (line.startsWith(word)) return QString::fromUtf8(line.mid(word.size())).trimmed();
  }
  return {};
}

}  // namespace

HostProcess::HostProcess(std::string applicationFolder, std::string programs)
    : applicationFolder_(std::move(applicationFolder)), programs_(std::move(programs)) {}

HostProcess::~HostProcess() { stop(); }

LocalHost HostProcess::port() {
  LocalHost host;
  host.programFolders = {"/usr/local/sbin", "/usr/local/bin", "/usr/sbin", "/usr/bin", "/sbin", "/bin"};
  host.start = [this](const std::string& shopFolder) { return start(shopFolder); };
  host.wait = [this] { return wait(); };
  host.stop = [this] { stop(); };
  return host;
}

Result<> HostProcess::start(const std::string& shopFolder) {
  stop();
  said_.clear();
  const std::string home = userFolder("XDG_CACHE_HOME", ".cache") + "/korvane/vedi";
  process_.start(QStringLiteral("python3"),
                 {toQt(joinPath(applicationFolder_, "host/local-host")), QStringLiteral("view"), toQt(shopFolder),
                  QStringLiteral("--home"), toQt(home), QStringLiteral("--cli"),
                  toQt(joinPath(programs_, "korvane-cli")), QStringLiteral("--app"), toQt(applicationFolder_)});
  if (process_.waitForStarted(startMilliseconds)) return {};
  return fail(ErrorKind::Other, "python3", fromQt(process_.errorString()));
}

HostReport HostProcess::wait() {
  HostReport report;
  if (process_.state() != QProcess::NotRunning) process_.waitForReadyRead(waitMilliseconds);
  said_ += process_.readAllStandardOutput();
  report.isRunning = process_.state() != QProcess::NotRunning;
  if (!report.isRunning) {
    QString said = QString::fromUtf8(process_.readAllStandardError()).trimmed();
    if (said.startsWith(saidBy)) said.remove(0, saidBy.size());
    report.failure = fromQt(said);
    return report;
  }
  // The first line with the address comes once everything is served.
  report.address = fromQt(lineAfter(said_, "shop "));
  return report;
}

void HostProcess::stop() {
  if (process_.state() == QProcess::NotRunning) return;
  process_.terminate();
  process_.closeWriteChannel();
  process_.waitForFinished(endMilliseconds);
}

}  // namespace kv
