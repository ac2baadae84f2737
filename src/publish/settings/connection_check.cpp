#include "publish/settings/connection_check.h"

#include <utility>

#include "platform/text/text.h"
#include "publish/settings/server_names.h"
#include "publish/settings/server_trust.h"

namespace kv {
namespace {

constexpr int checkSeconds = 20;  // a server that says nothing for so long is told, and not waited for

std::string folderLine(const TransferCompletion& entered, const std::string& folder) {
  const std::string start = "Cartella del negozio (" + folder + "): ";
  if (entered.succeeded()) return start + "presente.";
  if (entered.code == transferFolderMissing) {
    return start + "non c'è ancora, oppure non vi si può accedere; il primo aggiornamento propone di crearla.";
  }
  return start + entered.text;
}

/// The lines about the server of files.
std::string checkServer(const ConnectionCheck& check, const CheckParts& parts) {
  TransferEvents events;
  events.yield = parts.yield;
  events.trust = [&parts](const UntrustedServer& server) {
    return parts.user.question(trustQuestion(server)) == Answer::Yes;
  };
  parts.transfer.listen(std::move(events));
  ConnectionSettings settings = check.connection;
  settings.silenceSeconds = checkSeconds;
  TransferCompletion completion = parts.transfer.connect(settings);
  if (!completion.succeeded()) {
    return "Server FTP: non raggiunto (" + completion.text + "). Ricontrollare l'host e le impostazioni avanzate.\n";
  }
  completion = parts.transfer.logIn();
  if (!completion.succeeded()) {
    parts.transfer.abort();
    return "Server FTP: raggiunto, ma l'accesso è negato (" + completion.text +
           "). Ricontrollare nome utente e password.\n";
  }
  const std::string folder = serverFolder(check.folderFTP);
  const std::string found = folderLine(parts.transfer.changeFolder(folder), folder);
  parts.transfer.quit();
  parts.transfer.listen({});
  return "Server FTP: accesso riuscito.\n" + found + "\n";
}

Result<HttpResponse> fetch(const std::string& url, const CheckParts& parts) {
  HttpRequest request;
  request.url = url;
  request.timeoutSeconds = checkSeconds;
  return parts.http.send(request, parts.yield);
}

std::string checkDatabase(const std::string& siteBase, const CheckParts& parts) {
  const auto page = fetch(siteBase + "/index.php", parts);
  if (page && page->status == http::ok) return "Database: raggiunto.";
  if (page && page->status == http::unavailable) {
    return "Database: non raggiunto. Ricontrollare host, nome utente, password e nome del database, poi costruire e "
           "aggiornare di nuovo il negozio.";
  }
  return "Database: si può verificare dopo il primo aggiornamento.";
}

/// The lines about the site.
std::string checkSite(const std::string& siteBase, const CheckParts& parts) {
  if (siteBase.empty()) return "PHP: manca l'URL del sito.";
  const auto answer = fetch(siteBase + "/updatedb.php?w=phpinfo", parts);
  if (!answer) return "PHP: il sito " + siteBase + " non risponde (" + answer.error().what + ").";
  if (answer->status == http::notFound) {
    return "PHP: il negozio non è ancora all'indirizzo " + siteBase +
           "; se è già stato aggiornato, ricontrollare URL e cartella.";
  }
  if (startsWithIgnoringCase(answer->body, "<?php")) {
    return "PHP: il server mostra il testo degli script invece di eseguirli. Chiedere al fornitore di attivare PHP.";
  }
  if (answer->status != http::ok || !answer->body.starts_with("PHP ")) {
    return "PHP: risposta inattesa (" + std::to_string(answer->status) + ") da " + siteBase + ".";
  }
  const auto lines = splitLines(answer->body);
  return "PHP: risponde (" + fromWindows1252(lines.front()) + ").\n" + checkDatabase(siteBase, parts);
}

}  // namespace

std::string checkConnection(const ConnectionCheck& check, const CheckParts& parts) {
  const std::string server = checkServer(check, parts);
  return server + checkSite(check.siteBase, parts);
}

}  // namespace kv
