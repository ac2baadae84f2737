#pragma once
// Dated copies of the catalogue in the folder `backup` of the shop: one at each opening, the last ten kept; and the
// restoring of one of them. A copy carries the time it was made in its name (UTC) and the time of the
// catalogue's last change as its own.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "store/shop/session.h"

namespace kv {

/// The folder of the copies, in the shop folder.
inline constexpr std::string_view backupFolder = "backup";
/// How many copies are kept.
inline constexpr std::size_t copiesKept = 10;

/// One dated copy.
struct BackupCopy {
  std::string name;          ///< of the file: "catalog-20260712T071500Z.mdb", with "-2" for a second one of that time
  std::int64_t madeAt = 0;   ///< seconds since 1970-01-01 00:00 UTC, from the name
  std::int64_t savedAt = 0;  ///< last change of the catalogue it was made from, in the same seconds
  std::uint64_t size = 0;    ///< bytes
};

/// The copies of a shop, newest first. Other files in the folder are no copies.
std::vector<BackupCopy> backupCopies(const std::string& shopFolder);
/// All copies that can be restored, newest first: the dated ones, and the numbered backups of the shop folder
/// (catalog.000), whose time of making is that of the catalogue's last change.
std::vector<BackupCopy> restorableCopies(const std::string& shopFolder);

/// Makes a dated copy of a catalogue that nobody has open, unless the newest copy has its size and time, and deletes
/// the oldest beyond ten. The unfinished change of a killed writer is undone first. True when a copy was made.
/// A failure leaves the catalogue and the older copies unchanged: InUse, Corrupt (so that a damaged catalogue never
/// replaces a good copy), ReadOnly, Missing, Full.
Result<bool> keepDatedCopy(const std::string& shopFolder, Clock& clock);

/// The hook CopiaCatalogo of the programs: keepDatedCopy, with a message to the user when it fails for a
/// reason that opening the shop doesn't report, such as a full disk. `env` outlives the hook.
std::function<void(const std::string& shopFolder)> catalogueCopier(Environment& env);

/// Replaces the catalogue, which is not open, by the dated copy or numbered backup of this name in one step. A dated
/// copy of the present one is made first, even of a damaged one. Corrupt or Missing when the copy can't be read; then
/// nothing has changed.
Result<> restoreCopy(const std::string& shopFolder, std::string_view name, Clock& clock);

/// RipristinaCopia (restore a copy): releases the catalogue, restores the copy and restarts the session. A failure is
/// shown to the user, and the session restarts on the catalogue as it is. True when the copy is the catalogue now.
bool RipristinaCopia(Session& session, Environment& env, const std::string& name);

/// The question before a copy replaces the catalogue; No is the default.
Question restoreQuestion(const BackupCopy& copy);

/// A time as the merchant reads it, "12/07/2026 09:15", in the machine's time zone. `seconds` since 1970-01-01 UTC.
std::string formatTime(std::int64_t seconds);
/// A size in bytes as the merchant reads it: "850 KB", "1,2 MB".
std::string formatSize(std::uint64_t bytes);

}  // namespace kv
