#pragma once
// Files and folders of the machine. Paths are UTF-8 with "/"; names match without regard to case, listings are
// sorted by lower-cased name. What is written replaces the old file in one step, so that a full disk or a kill
// leaves the old file whole. Root is held to the owner's permission bits like any other user, so that what a merchant
// protects stays protected. Symbolic links to files and folders are followed.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/result.h"

namespace kv {

/// Raw bytes of a file. Missing when it isn't there, ReadOnly/Other when it can't be read.
Result<std::string> readBytes(const std::string& path);
/// The first bytes of a file, at most `limit` of them. Failures as readBytes.
Result<std::string> readStart(const std::string& path, std::size_t limit);
/// Replaces a file through a temporary neighbour and a rename. Full on a full disk, ReadOnly when it may not be
/// written, Missing when its folder isn't there. The old file's permission bits are kept.
/// The bytes are handed to the system before the rename and not flushed to the disk: a kill of the process at any
/// moment leaves the old or the new file, a build's thousands of pages cost no flush each.
Result<> writeBytes(const std::string& path, std::string_view bytes);

/// A text file as UTF-8, every byte and line end kept.
Result<std::string> readText(const std::string& path);
/// Writes UTF-8 as Windows-1252, line ends as they stand in `text`.
Result<> writeText(const std::string& path, std::string_view text);

/// A typed path as an absolute one without trailing separator and without "." and "..". An empty text stays empty.
std::string absolutePath(const std::string& path);

bool fileExists(const std::string& path);    ///< a regular file of exactly this name
bool folderExists(const std::string& path);  ///< a folder of exactly this name

/// Size in bytes and time of the last change, in nanoseconds since 1970-01-01 00:00 UTC.
struct FileStamp {
  std::uint64_t size = 0;
  std::int64_t changedAt = 0;
  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};
/// Missing when it isn't there.
Result<FileStamp> fileStamp(const std::string& path);

/// The entry of `folder` whose name equals `name` when case is ignored, as a full path; an exact match wins.
/// Empty when there is none.
std::optional<std::string> findEntry(const std::string& folder, std::string_view name);

/// Names (not paths) of the files of a folder that match a pattern of the old kind: "*" any text, "?" any
/// character, "*.*" every file. Case is ignored; sorted by lower-cased name. Empty when the folder is missing. What
/// an interrupted writeBytes left behind (".<name>.kvtmp...") is never listed.
std::vector<std::string> listFiles(const std::string& folder, std::string_view pattern);
/// Names of the subfolders, sorted likewise, hidden ones (".x") left out.
std::vector<std::string> listFolders(const std::string& folder);

/// Creates a folder; one that is there already is no failure, a file of that name is one (Exists). Parents must exist.
Result<> createFolder(const std::string& path);
/// Creates a folder and its parents.
Result<> createFolders(const std::string& path);
/// Deletes a file, a link itself and not what it leads to; Missing when it isn't there.
Result<> deleteFile(const std::string& path);
/// Removes an empty folder; Missing when it isn't there, Other when it isn't empty.
Result<> removeFolder(const std::string& path);
/// Moves a file or a folder within one file system; a file that stands at `to` is replaced.
Result<> renameFile(const std::string& from, const std::string& to);
/// Copies one file over `to`, in one step like writeBytes; the copy can be written by the owner and keeps the
/// modification time, so that a publish doesn't take it for a new picture.
Result<> copyFile(const std::string& from, const std::string& to);
/// Copies a tree: lists it first, then creates each folder under `to`, then copies each file over what stands there.
/// A file or folder of `to` whose name differs in case alone is the one copied over. When `to` lies inside `from` it
/// is left out of the list. Missing when `from` isn't there.
Result<> copyTree(const std::string& from, const std::string& to);
/// Deletes the files of a folder, subfolders untouched. Stops at the first failure. Missing when the folder is.
Result<> emptyFolder(const std::string& path);
/// Removes what a write or a copy that was killed left unfinished in a folder (not below it). Nobody else may be
/// writing there.
void removeUnfinishedFiles(const std::string& folder);
/// Gives the owner write permission on every file and folder below `path`, itself included. ReadOnly when the disk
/// itself can't be written. Links aren't followed.
Result<> makeWritable(const std::string& path);

/// "folder/name"; no doubled separator; the other one when one of the two is empty. baseName: behind the last "/".
/// folderOf: before it.
std::string joinPath(std::string_view folder, std::string_view name);
std::string_view baseName(std::string_view path);
std::string_view folderOf(std::string_view path);
/// Whether a path is the root of a file system tree: "/" here, or a drive ("C:\", "C:/") brought from elsewhere, the
/// drive being any one character.
bool isRoot(std::string_view path);

}  // namespace kv
