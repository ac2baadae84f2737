#pragma once
// Names inside a shop folder and the application folder, and the plain operations on such folders. A shop path is
// full, with "/" and without a trailing separator.

#include <string>
#include <string_view>
#include <vector>

#include "platform/database/database.h"
#include "platform/ports/result.h"
#include "platform/ports/user_port.h"

namespace kv {

inline constexpr std::string_view catalogueFile = "catalog.mdb";
inline constexpr std::string_view transferFile = "kvftp.mdb";
inline constexpr std::string_view tagSeedFile = "source.new";
inline constexpr std::string_view templateFolder = "template";
inline constexpr std::string_view languagesFolder = "languages";

/// The path without separators at its end; a root keeps its own.
std::string withoutTrailingSeparator(std::string_view path);

/// Whether a folder is the application folder; case is ignored.
bool isApplicationFolder(std::string_view folder, std::string_view applicationFolder);

/// ScegliCartella (choose a folder): asks the user for one. The path without trailing separator, empty when cancelled.
std::string ScegliCartella(UserPort& user, const std::string& prompt, const std::string& initial);

/// ApriDatabase (open a database): exclusive for the session's own handle, shared for reading a few values. A
/// shared file that may not be written is opened read-only. Failures: as Database::open.
Result<Database> ApriDatabase(const std::string& path, bool exclusive);

/// CopiaAlbero (copy a tree): lists the source first, creates each folder under `to`, `to` with its parents included,
/// then copies each file over the one there. Stops at the first failure.
Result<> CopiaAlbero(const std::string& from, const std::string& to);

/// SvuotaCartella (empty a folder): deletes its files, subfolders untouched.
Result<> SvuotaCartella(const std::string& path);

/// The schema generation in `versione` of `generale`; null reads as 0. Corrupt when the table has no row.
Result<int> catalogueVersion(Database& catalogue);

/// Where an installed template is, below the application folder: "template/name", with upper and lower case as they are
/// on the disk.
std::string installedTemplate(const std::string& applicationFolder, const std::string& name);

/// The page models of a template package: the names of its files modello*.htm, less ".htm".
std::vector<std::string> pageModels(const std::string& packageFolder);

}  // namespace kv
