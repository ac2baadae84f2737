#pragma once
// Dated copies of the catalogue in the folder `backup` of the shop: one at each opening, the last ten kept, and one
// put back in place of the catalogue. A copy carries the time it was made in its name (UTC) and the time of the
// catalogue's last change as its own.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "store/shop/session.h"

namespace kv {

inline constexpr std::string_view backupFolder = "backup";
inline constexpr std::size_t copiesKept = 10;

struct BackupCopy {
  std::string name;          ///< of the file: "catalog-20260712T071500Z.mdb", "-2" and so on behind the second one
  std::int64_t madeAt = 0;   ///< seconds since 1970-01-01 00:00 UTC, from the name
  std::int64_t savedAt = 0;  ///< last change of the catalogue it was made from, in the same seconds
  std::uint64_t size = 0;    ///< bytes
};

/// The copies of a shop, newest first. Other files in the folder are no copies.
std::vector<BackupCopy> backupCopies(const std::string& shopFolder);

/// Makes a dated copy of a catalogue that nobody has open, unless the newest copy has its size and time, and deletes
/// the oldest beyond ten. What a killed writer left in the catalogue is undone first. True when a copy was made.
/// Failures leave the catalogue and the older copies alone: InUse, Corrupt (a damaged catalogue drives no good copy
/// out), ReadOnly, Missing, Full.
Result<bool> keepDatedCopy(const std::string& shopFolder, Clock& clock);

/// The hook CopiaCatalogo of a program with windows: keepDatedCopy, told to the user when it fails for a reason that
/// the opening itself doesn't tell, such as a full disk. `with` outlives the hook.
std::function<void(const std::string& shopFolder)> catalogueCopier(Environment& env);

/// Puts a copy, by its name, in the place of the catalogue, in one step, after a dated copy of the present one, a
/// damaged one too. The catalogue is not open. Corrupt or Missing when the copy can't be read: nothing has changed
/// then.
Result<> restoreCopy(const std::string& shopFolder, std::string_view name, Clock& clock);

/// RipristinaCopia (restore a copy): releases the catalogue, restores the copy and restarts the session. A failure is
/// told to the user, and the session restarted on the catalogue as it is. True when the copy is in place.
bool RipristinaCopia(Session& session, Environment& env, const std::string& name);

/// What is asked before a copy takes the place of the catalogue; No is the default.
Question restoreQuestion(const BackupCopy& copy);

/// "12/07/2026 09:15", in the machine's time zone.
std::string shownTime(std::int64_t seconds);
/// "850 KB", "1,2 MB".
std::string shownSize(std::uint64_t bytes);

}  // namespace kv
