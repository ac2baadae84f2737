#include "publish/passwords/password_run.h"

#include <algorithm>
#include <utility>

#include "platform/files/files.h"
#include "platform/ports/failure_text.h"
#include "platform/text/text.h"
#include "publish/run/publish_run.h"
#include "publish/settings/server_names.h"
#include "publish/settings/server_trust.h"
#include "publish/update/database_update.h"

namespace kv {
namespace {

constexpr std::string_view passwordsLoaded = "OK";
constexpr const char* passwordsInterrupted = "Aggiornamento interrotto";
constexpr const char* passwordsDone = "Aggiornamento password completato.";
// A page of an error may be long; a message box is not.
constexpr std::size_t longestWarning = 2000;

}  // namespace

std::string PasswordJob::serverFolderKey() const { return serverHost(connection.host) + "/" + serverFolder(folderFTP); }

Result<PasswordJob> passwordJobOf(Session& session) {
  const auto publish = publishJobOf(session);
  if (!publish) return fail(publish.error());
  const auto update = updateJobOf(session);
  if (!update) return fail(update.error());
  const PublishSettings settings = readPublishSettings(session.ShopFolder);
  PasswordJob job;
  job.shopFolder = publish->shopFolder;
  job.onlineFolder = publish->onlineFolder;
  job.connection = connectionOf(publish->login, readFirewallSettings(session.ShopFolder), settings.silenceSeconds);
  job.connection.host = publish->login.host;  // as typed: it is shown
  job.folderFTP = publish->folderFTP;
  job.siteBase = update->siteBase;
  job.disabled = settings.disabled;
  return job;
}

PasswordRun::PasswordRun(PasswordJob job, PasswordParts parts)
    : job_(std::move(job)), parts_(std::move(parts)), target_(serverFolder(job_.folderFTP)) {}

bool PasswordRun::send(const std::string& name) {
  TransferEvents events;
  events.line = [this](const std::string& text) {
    const auto line = shownLine(text);
    if (!line) return;
    log_.write(*line);
    parts_.view.dialogue(*line);
  };
  events.yield = [this] { return mayGoOn(); };
  events.trust = [this](const UntrustedServer& server) {
    return parts_.user.question(trustQuestion(server)) == Answer::Yes;
  };
  parts_.transfer.listen(std::move(events));
  bool loaded = false;
  if (job_.disabled ? carriedByHand(name) : upload(name)) {
    const std::string answer = UpdateDB(name);
    loaded = answer == passwordsLoaded;
    if (loaded) {
      remove(name);
      parts_.user.message(passwordsDone, Icon::Information);
    } else {
      parts_.user.message(answer.empty() ? passwordsInterrupted : answer, Icon::Exclamation);
    }
  }
  leaveServer();
  parts_.transfer.listen({});
  return loaded;
}

bool PasswordRun::carriedByHand(const std::string& name) {
  parts_.view.title("Korvane - Trasferimento file");
  const Question question{"Il file \"" + name + "\"\ncontenuto nella cartella locale: \n\"" + job_.onlineFolder +
                              "\"\n\ndeve essere trasferito manualmente sul server \"" + job_.connection.host +
                              "\" nella cartella:\n\"" + job_.folderFTP +
                              "\"\n\nEseguire adesso il trasferimento manuale\ne premere OK solo quando è stato "
                              "completato",
                          Buttons::OkCancel, Answer::Cancel, Icon::Question};
  return parts_.user.question(question) == Answer::Ok;
}

bool PasswordRun::upload(const std::string& name) {
  if (!enterServer({"Trasferimento file", "kvftp3.log"})) {
    ignore(forgetScript(job_.shopFolder, name), "the next run finds that it isn't there");
    return false;
  }
  removeLeftScripts(name);
  parts_.view.operation("Invio del file " + name);
  const TransferCompletion deleted = parts_.transfer.deleteFile(name);
  if (!isFileCommandFailure(deleted.code) && !wait(deleted)) return false;
  if (!wait(parts_.transfer.upload(joinPath(job_.onlineFolder, name), name, TransferMode::Binary))) return false;
  leaveServer();
  return !cancelled_;
}

void PasswordRun::remove(const std::string& name) {
  if (job_.disabled) {
    parts_.user.message(
        "Eliminare adesso dal server il file \"" + name + "\"\ncontenuto nella cartella:\n\"" + job_.folderFTP + "\"",
        Icon::Exclamation);
    return;
  }
  if (!enterServer({"Rimozione file di aggiornamento", "kvftp4.log"})) return;
  parts_.view.operation("Rimozione del file " + name);
  if (!wait(parts_.transfer.deleteFile(name))) return;
  ignore(forgetScript(job_.shopFolder, name), "the next run finds that it isn't there");
}

std::string PasswordRun::UpdateDB(const std::string& name) {
  parts_.view.operation("Aggiornamento delle password sul server");
  if (parts_.busy) parts_.busy(true);
  HttpRequest request;
  request.url = job_.siteBase + "/" + name;
  const auto response = parts_.http.send(request, [this] { return mayGoOn(); });
  if (parts_.busy) parts_.busy(false);
  if (response) {
    const std::string answer = replaceAll(fromWindows1252(cleanAnswer(response->body)), "\r\n", "\n");
    return std::string(firstCharacters(answer, longestWarning));
  }
  return response.error().kind == ErrorKind::Cancelled ? std::string() : failureText(response.error());
}

bool PasswordRun::enterServer(const Step& step) {
  parts_.view.title("Korvane - " + step.title);
  log_.open(joinPath(job_.shopFolder, step.log));
  job_.connection.host = serverHost(job_.connection.host);
  const std::string path = target_ == "." ? "" : (target_.starts_with('/') ? "" : "/") + target_;
  parts_.view.operation("Connessione a " + job_.connection.host + path);
  if (!wait(parts_.transfer.connect(job_.connection)) || !wait(parts_.transfer.logIn())) return false;
  if (!wait(parts_.transfer.currentFolder())) return false;
  const TransferCompletion entered = parts_.transfer.changeFolder(target_);
  if (entered.code != transferFolderMissing) return wait(entered);
  parts_.user.message("La cartella specificata (" + target_ + ")\nnon è presente sul server", Icon::Exclamation);
  return false;
}

void PasswordRun::removeLeftScripts(const std::string& except) {
  const std::string here = job_.serverFolderKey();
  for (const LeftScript& left : leftScripts(job_.shopFolder)) {
    if (left.serverFolder != here || left.name == except) continue;
    const TransferCompletion deleted = parts_.transfer.deleteFile(left.name);
    // A server says the same of a file that isn't there and of one that must not be deleted.
    const bool gone = deleted.succeeded() || (isFileCommandFailure(deleted.code) && !isListed(left.name));
    if (gone) ignore(forgetScript(job_.shopFolder, left.name), "it is looked for once more");
  }
}

bool PasswordRun::isListed(const std::string& name) {
  const TransferCompletion listing = parts_.transfer.list();
  if (!listing.succeeded()) return true;
  return std::any_of(listing.lines.begin(), listing.lines.end(),
                     [&](const std::string& line) { return line.find(name) != std::string::npos; });
}

void PasswordRun::leaveServer() {
  if (cancelled_) parts_.transfer.abort();
  // What there was to do is done: a server that closes without a word is no failure.
  if (parts_.transfer.isConnected()) parts_.transfer.quit();
  log_.close();
}

bool PasswordRun::wait(const TransferCompletion& completion) {
  if (completion.succeeded()) return !cancelled_;
  if (cancelled_ || completion.code == transferCancelled) return false;
  const std::string hint = completion.code == transferNoData ? otherModeHint : "";
  parts_.user.message("Errore: " + completion.text + hint, Icon::Exclamation);
  return false;
}

bool PasswordRun::mayGoOn() {
  if (!cancelled_ && !parts_.user.yield()) cancelled_ = true;
  return !cancelled_;
}

}  // namespace kv
