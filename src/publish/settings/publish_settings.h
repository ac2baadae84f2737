#pragma once
// kvftp.ini of a shop folder: which files a publish run sends and how the host's database is renewed. A shop whose
// choices are all the default ones has no such file.

#include <array>
#include <string>
#include <string_view>

#include "platform/files/settings.h"
#include "platform/ports/result.h"
#include "sqlexport/sql_style.h"

namespace kv {

inline constexpr std::string_view publishSettingsFile = "kvftp.ini";

/// The value of `types` that lets every file pass.
inline constexpr std::string_view allTypes = "ALL.";
/// The four groups of extensions that can be chosen, in the order in which they are written.
inline constexpr std::array<std::string_view, 4> typeGroups{".htm.html.shtm.shtml.css.js", ".gif.jpg.jpeg.png.bmp",
                                                            ".mdb.csv.sql", ".pl.asp.php"};

/// The choices. The keys from `safeUpload` on are later additions: each is written, after the others, only where it
/// differs from its default.
struct PublishSettings {
  bool onlyModified = true;     ///< MODE: send only files that are newer than what was sent
  bool onlyShopFiles = true;    ///< SHOP: send only files of the last build's list
  std::string types{allTypes};  ///< TYPE: "ALL.", or extensions and a last dot: ".gif.jpg."
  bool allRecords = true;       ///< OPDB: the whole database; else what has changed, where that is possible
  bool disabled = false;        ///< DISA: no FTP, the merchant carries the files himself
  bool optimised = false;       ///< OPTM: the separator ";\g" in the SQL files
  bool lockTables = true;       ///< LOCK: the host has MySQL 3.x; off for MySQL 4.x
  bool safeUpload = false;      ///< SAFE: each file under a temporary name first, then renamed
  bool contentCheck = false;    ///< HASH: a file with the bytes last sent isn't sent again
  bool retry = false;           ///< RETR: a broken transfer is tried again, three times
  int connections = 1;          ///< CONN: over how many connections files are sent at once, 1 to 4
  bool cleanUp = false;         ///< PULI: files of ours that the last build no longer lists are offered for removal
  int silenceSeconds = 60;      ///< WAIT: how long a server may be silent, 5 to 3600
  friend bool operator==(const PublishSettings&, const PublishSettings&) = default;
};

/// The choices that a text of "KEY: value" lines makes; what it doesn't name keeps its default.
PublishSettings parsePublishSettings(std::string_view text);
/// The text of kvftp.ini in UTF-8.
std::string publishSettingsText(const PublishSettings& settings);

/// The choices of a shop; the default ones where there is no file or it can't be read.
PublishSettings readPublishSettings(const std::string& shopFolder);
/// Writes kvftp.ini, or deletes it when all choices are the default ones. Failures as writeBytes and deleteFile.
Result<> writePublishSettings(const std::string& shopFolder, const PublishSettings& settings);

/// AvanzateTrasf (advanced transfer settings): reads the choices and puts those of the SQL files into force: the
/// setting QS2 becomes ";\g" or empty, and the lock flag follows LOCK. Without a file the lock flag stays as it is.
PublishSettings AvanzateTrasf(const std::string& shopFolder, Settings& settings, LockStatements& lock);

/// The text of `types` for a choice of groups; "." alone when none is chosen.
std::string typesOf(const std::array<bool, typeGroups.size()>& chosen);
/// Whether each group is part of `types`; all of them for "ALL.".
std::array<bool, typeGroups.size()> groupsOf(std::string_view types);
/// Whether a file may be sent as far as its extension goes. The extension runs from the last dot on, in any case, and
/// is accepted when the list holds it with a dot after it; a name without a dot has none and passes only "ALL.".
bool acceptsType(std::string_view types, std::string_view fileName);

}  // namespace kv
