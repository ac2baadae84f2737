#include "sqlexport/last_run.h"

#include "platform/files/files.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "sqlexport/sql_style.h"

namespace kv {
namespace {

enum LastRunLine : std::size_t { HostLine, AddressLine, DatabaseHostLine, DatabaseNameLine, LanguagesLine };

/// A column as a line of the file holds it.
std::string lastRunLine(std::string text) {
  for (char& c : text) {
    if (c == '\r' || c == '\n') c = ' ';
  }
  return text;
}

/// Whether a column is the one that a line of the file holds.
bool isAsBefore(const std::string& column, const std::string& line) {
  // What the code page lacks is written as a reference, and compared as one.
  return equalsIgnoringCase(fromWindows1252(toWindows1252(lastRunLine(column))), line);
}

std::string sameDatabaseQuestion(const LastRun& last, const PublishedShop& shop) {
  return "L'ultimo aggiornamento del database è relativo all'indirizzo FTP \"" + last[HostLine] +
         "\".\nL'indirizo FTP è cambiato ma l'URL del sito (\"" + shop.URL +
         "\") è rimasta uguale.\nIl nuovo indirizzo (\"" + shop.hostname +
         "\")\ncorrisponde al precedente (cioè il database utilizzato è sempre lo stesso)?";
}

Result<> deleteIfThere(const std::string& path) {
  auto deleted = deleteFile(path);
  if (!deleted && deleted.error().kind == ErrorKind::Missing) return {};
  return deleted;
}

}  // namespace

Result<PublishedShop> readPublishedShop(Database& catalogue) {
  auto row = catalogue.prepare("SELECT hostname, URL, db_hostname, db_dbname, db_security FROM generale");
  if (!row) return fail(row.error());
  const auto found = row->step();
  if (!found) return fail(found.error());
  PublishedShop shop;
  if (!*found) return shop;
  int at = 0;
  for (std::string* column : {&shop.hostname, &shop.URL, &shop.db_hostname, &shop.db_dbname, &shop.db_security}) {
    *column = row->text(at++);
  }
  return shop;
}

std::string lastDatabasePath(const std::string& shopFolder) { return entryPath(shopFolder, "db/last.mdb"); }
std::string lastRunPath(const std::string& shopFolder) { return entryPath(shopFolder, "db/last.ini"); }

LastRun readLastRun(const std::string& shopFolder) {
  LastRun lines;
  const auto text = readText(lastRunPath(shopFolder));
  if (!text) return lines;
  for (std::size_t at = 0; const std::string_view line : splitLines(*text)) {
    if (at == lines.size()) break;
    lines[at++] = line;
  }
  return lines;
}

Result<> keepLastRun(const std::string& shopFolder, const PublishedShop& shop, double languages,
                     const std::function<bool()>& goOn) {
  if (auto forgotten = forgetLastRun(shopFolder); !forgotten) return forgotten;
  const std::array<std::string, lastRunLines> lines{shop.hostname, shop.URL, shop.db_hostname, shop.db_dbname,
                                                    trimmedNumber(languages)};
  std::string text;
  for (const std::string& line : lines) text += lastRunLine(line) + "\r\n";
  if (auto written = writeText(lastRunPath(shopFolder), text); !written) return written;
  // The copy comes to its name whole, and last: without it the lines say nothing.
  return copyFile(entryPath(shopFolder, "db/sql.mdb"), lastDatabasePath(shopFolder), AtLink::Follow, goOn);
}

Result<> forgetLastRun(const std::string& shopFolder) { return deleteIfThere(lastDatabasePath(shopFolder)); }

bool CanUseIncremental(const LastRunFolders& folders, const PublishedShop& shop, UserPort& user, bool askUser) {
  if (!fileExists(lastDatabasePath(folders.shopFolder)) || !fileExists(lastRunPath(folders.shopFolder))) return false;
  const LastRun last = readLastRun(folders.shopFolder);
  if (notedLanguages(folders.onlineFolder, shop.db_security) != leadingNumber(last[LanguagesLine])) return false;
  if (!isAsBefore(shop.db_hostname, last[DatabaseHostLine])) return false;
  if (!isAsBefore(shop.db_dbname, last[DatabaseNameLine])) return false;
  if (isAsBefore(shop.hostname, last[HostLine])) return true;
  if (!isAsBefore(shop.URL, last[AddressLine])) return false;
  if (!askUser) return true;
  return user.question({sameDatabaseQuestion(last, shop), Buttons::YesNo, Answer::No, Icon::Question}) == Answer::Yes;
}

}  // namespace kv
