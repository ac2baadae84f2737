#include "publish/update/database_update.h"

#include <array>

#include "commerce/prices/price_history.h"
#include "platform/files/files.h"
#include "platform/ports/failure_text.h"
#include "platform/text/public_address.h"
#include "platform/text/text.h"
#include "publish/orders/wire/order_key.h"
#include "publish/update/sent_sql.h"
#include "sqlexport/export_files.h"
#include "sqlexport/sql_style.h"

namespace kv {
namespace {

constexpr std::string_view confirmed = "OK";
constexpr std::string_view notAuthorised = "accesso al database non autorizzato";
constexpr std::string_view rule = "_______________________";
constexpr int tokenLength = 20;
constexpr std::uint32_t alphabetLength = 26;
// A large shop takes the host minutes; nobody's answer takes longer than a night.
constexpr int updateTimeout = 28800;
constexpr int diagnosisTimeout = 60;
constexpr int firstRefusal = 400;
constexpr std::size_t enoughSql = 64;         // bytes that tell an SQL file by its first line
constexpr std::size_t longestShown = 32'000;  // characters of an answer; its log has all of them
constexpr std::size_t longestMessage = 2'000;

/// Characters that keep a request from being answered from a cache.
std::string requestToken(RandomSource& random) {
  std::string token;
  for (int i = 0; i < tokenLength; ++i) token += static_cast<char>('a' + random.below(alphabetLength));
  return token;
}

HttpRequest updateRequest(const UpdateJob& job, const UpdateParts& parts, int language) {
  HttpRequest request;
  request.url = job.siteBase + "/" + updateScript(language);
  request.method = "POST";
  request.body = "rnd=" + requestToken(parts.random) + "&sec=" + job.shop.db_security;
  if (!job.orderKey.empty()) request.body += "&chiave=" + job.orderKey;
  request.headers = {"Content-Type: application/x-www-form-urlencoded"};
  request.timeoutSeconds = updateTimeout;
  return request;
}

/// Text of the host with as many characters as a window can show.
std::string shownText(std::string_view answer, std::size_t most) {
  // No character takes more than one byte there.
  std::string text = replaceAll(fromWindows1252(answer.substr(0, most)), "\r\n", "\n");
  return answer.size() > most ? text + " ...\n" : text;
}

/// One language's answer, cleaned and logged; the failure of a transport is an answer like another, in words.
/// Cancelled, or why the log can't be written.
Result<std::string> askHost(const UpdateJob& job, const UpdateParts& parts, int language) {
  const auto response = parts.http.send(updateRequest(job, parts, language), parts.yield);
  if (!response && response.error().kind == ErrorKind::Cancelled) return fail(response.error());
  std::string answer = cleanAnswer(response ? response->body : toWindows1252(failureText(response.error())));
  const std::string log = joinPath(job.shopFolder, "db" + std::to_string(language) + ".log");
  if (auto written = writeBytes(log, replaceAll(answer, "\n", "\r\n")); !written) return fail(written.error());
  return answer;
}

/// The answers as they are collected for the caller and shown in the window.
struct Answers {
  std::string collected;  // bytes of the host
  std::string shown;      // UTF-8
  bool failed = false;

  void add(int language, const std::string& answer) {
    const bool ok = answer == confirmed;
    collected += answer + "\r\n\r\n";
    if (!ok) shown += shownText(answer, longestShown) + "\n";
    shown.append("Lingua").append(std::to_string(language)).append(ok ? ": OK\n" : ": ERRORE\n");
    shown.append(rule).append("\n\n");
    failed = failed || !ok;
  }
};

/// Asks the host what PHP it has. The name of the script follows a backslash, as hosts of another system take it;
/// today's servers refuse that byte in an address, take it for a part of the folder's name, or want a slash. So the
/// same request is sent with the backslash percent-encoded (RFC 3986, section 2.1) and at last with a slash, as a
/// browser reads it (WHATWG URL Standard, section 4.4), until a server answers with a page.
void logDiagnosis(const UpdateJob& job, const UpdateParts& parts) {
  for (const std::string_view separator : {"\\", "%5C", "/"}) {
    HttpRequest request;
    request.url = job.siteBase + std::string(separator) + "updatedb.php?w=phpinfo";
    request.timeoutSeconds = diagnosisTimeout;
    const auto response = parts.http.send(request, parts.yield);
    if (!response && response.error().kind == ErrorKind::Cancelled) return;
    if (!response) continue;
    ignore(writeBytes(joinPath(job.shopFolder, "php.log"), response->body), "it only helps to find the cause");
    if (response->status < firstRefusal) return;
  }
}

/// Warns when a visitor could read what was loaded. The host's own script removes the files; some hosts don't let it.
void warnOfExposedSql(const UpdateJob& job, const UpdateParts& parts) {
  HttpRequest request;
  request.url = job.siteBase + "/db.sql";
  request.headers = {"Range: bytes=0-63"};  // a host may send all of it nevertheless
  request.enough = enoughSql;
  request.timeoutSeconds = diagnosisTimeout;
  const auto response = parts.http.send(request, parts.yield);
  if (!response || response->status >= firstRefusal) return;
  if (!response->body.starts_with("#" + job.shop.db_security)) return;
  parts.user.message(
      "Il file db.sql, con i dati del negozio, può essere letto da chiunque all'indirizzo\n" + request.url +
          "\nEliminarlo dal server e chiedere al fornitore di rendere scrivibile la cartella del negozio.",
      Icon::Exclamation);
}

/// Makes the build's database the base of the next difference. After a failure there is none, and the next run is a
/// full one. False when the user has cancelled the copy: there is no base either then.
bool rememberUpdate(const UpdateJob& job, double languages, const std::function<bool()>& yield) {
  // A difference that was kept belongs to the base it was made from: sent once more, it would insert its rows twice.
  if (!deleteCache(ExportKind::Incremental, job.onlineFolder, job.shop.db_security)) return true;
  const auto kept = keepLastRun(job.shopFolder, job.shop, languages, yield);
  if (kept) return true;
  ignore(forgetLastRun(job.shopFolder), "there is none after a failed keeping");
  return kept.error().kind != ErrorKind::Cancelled;
}

/// Notes what the host has just confirmed to show: the lowest prices before later reductions are found in it. False
/// when the user has cancelled it.
bool rememberPrices(const UpdateJob& job, const UpdateParts& parts) {
  const auto noted = recordPublishedPrices(job.shopFolder, parts.clock->now(), parts.yield);
  if (noted) return true;
  if (noted.error().kind == ErrorKind::Cancelled) return false;
  parts.user.message(
      failureText(noted.error(), "prezzi.mdb") +
          "\n\nIl negozio è aggiornato, ma i prezzi pubblicati non sono stati annotati: il prezzo più basso degli "
          "ultimi 30 giorni accanto a una riduzione potrebbe non essere esatto.",
      Icon::Exclamation);
  return true;
}

std::string failureTag(const UpdateJob& job, const std::string& answers) {
  if (startsWithIgnoringCase(trim(answers), notAuthorised)) return shownText(answers, longestMessage);
  return "Si sono verificati errori nell'aggiornamento del database:\nconsultare i file " + job.shopFolder +
         "/db1.log ... db4.log per maggiori dettagli";
}

double languagesOf(const UpdateJob& job) { return notedLanguages(job.onlineFolder, job.shop.db_security); }

}  // namespace

Result<UpdateJob> updateJobOf(Session& session) {
  auto shop = readPublishedShop(session.catalogue);
  if (!shop) return fail(shop.error());
  const auto folder = session.catalogue.scalar("SELECT cartella FROM generale");
  if (!folder) return fail(folder.error());
  const std::string base = publicAddress(shop->URL, asText(*folder));
  auto key = orderKey(session);
  if (!key) return fail(key.error());
  return UpdateJob{session.ShopFolder, session.onlineFolder, base, std::move(*shop), std::move(*key)};
}

std::string updateScript(int language) {
  return "updatedb" + (language > 1 ? "_l" + std::to_string(language) : std::string()) + ".php";
}

std::string cleanAnswer(std::string_view answer) {
  while (!answer.empty() && (answer.back() == '\r' || answer.back() == '\n' || answer.back() == '\t')) {
    answer.remove_suffix(1);
  }
  return std::string(trim(answer));
}

Result<std::string> UpdateDB(const UpdateJob& job, const UpdateParts& parts) {
  Answers answers;
  const double languages = languagesOf(job);
  for (int language = 1; language <= maxLanguages && language <= languages; ++language) {
    const auto answer = askHost(job, parts, language);
    if (!answer && answer.error().kind == ErrorKind::Cancelled) return fail(answer.error());
    answers.add(language, answer ? *answer : toWindows1252(failureText(answer.error())));
    if (parts.show) parts.show(answers.shown);
  }
  if (!answers.failed) return std::string();
  logDiagnosis(job, parts);
  return answers.collected;
}

std::string updateDatabase(const UpdateJob& job, const UpdateParts& parts) {
  const double languages = languagesOf(job);
  if (const auto gone = forgetLastRun(job.shopFolder); !gone) return failureText(gone.error(), "last.mdb");
  // Without a number of languages nothing would be asked, and nothing may be taken for loaded.
  if (languages < 1) return failureTag(job, {});
  if (const auto gone = forgetSentSql(job.shopFolder); !gone) return failureText(gone.error(), "kvftp.mdb");
  const auto answers = UpdateDB(job, parts);
  if (!answers) return {};
  if (!answers->empty()) return failureTag(job, *answers);
  if (!rememberPrices(job, parts) || !rememberUpdate(job, languages, parts.yield)) return {};
  warnOfExposedSql(job, parts);
  return std::string(confirmed);
}

Question interruptQuestion() {
  return {
      "Se si annulla l'operazione i dati del negozio online potrebbero essere\n"
      "incoerenti e sarà necessario ripetere al più presto l'aggiornamento.\n\n"
      "Si desidera comunque interrompere l'aggiornamento?",
      Buttons::YesNo, Answer::No, Icon::Question};
}

}  // namespace kv
