#pragma once
// Files and folders of the machine. Paths are UTF-8 with "/"; names match without regard to case, listings are
// sorted by lower-cased name. What is written replaces the old file in one step, so that a full disk or a kill
// leaves the old file whole. Root is held to the owner's permission bits like any other user, so that what a merchant
// protects stays protected. Symbolic links to files and folders are followed
// where nothing else is said.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/result.h"

namespace kv {

/// The bytes of a file. Missing when it isn't there, ReadOnly/Other when it can't be read.
Result<std::string> readBytes(const std::string& path);
/// The first bytes of a file, at most `limit` of them. Failures as readBytes.
Result<std::string> readStart(const std::string& path, std::size_t limit);
/// What becomes of a symbolic link that is in the way of a file to be written.
enum class AtLink {
  Follow,  ///< the file that it leads to is written
  Replace  ///< the link itself is replaced, and what it leads to stays as it is
};

/// Replaces a file by writing a temporary one beside it and renaming that. Full on a full disk, ReadOnly when it may
/// not be written, Missing when its folder isn't there. The old file's permission bits are kept. The bytes are handed
/// to the system before the rename and not flushed to the disk: a kill of the process at any moment leaves the old or
/// the new file, a build's thousands of pages cost no flush each.
Result<> writeBytes(const std::string& path, std::string_view bytes, AtLink links = AtLink::Follow);

/// A Windows-1252 file as UTF-8, every character and line end kept. Failures as readBytes.
Result<std::string> readText(const std::string& path);
/// Replaces a file by the Windows-1252 bytes of UTF-8 text, line ends as in `text`. Failures as writeBytes.
Result<> writeText(const std::string& path, std::string_view text);

/// A typed path as an absolute one without trailing separator and without "." and "..". An empty text stays empty.
std::string absolutePath(const std::string& path);

/// Whether there is a regular file of exactly this name.
bool fileExists(const std::string& path);
/// Whether there is a folder of exactly this name.
bool folderExists(const std::string& path);
/// Whether there is a symbolic link of exactly this name, whatever it leads to.
bool isLink(const std::string& path);
/// Whether a symbolic link leads to a file that isn't below `folder`, which may be a link itself. False for anything
/// that is no link.
bool leadsOutOf(const std::string& path, const std::string& folder);

/// By what two states of a file are told apart without reading it.
struct FileStamp {
  std::uint64_t size = 0;      ///< bytes
  std::int64_t changedAt = 0;  ///< time of the last change, in nanoseconds since 1970-01-01 00:00 UTC
  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};
/// Size and time of the last change of a file. Missing when it isn't there.
Result<FileStamp> fileStamp(const std::string& path);

/// The entry of `folder` whose name equals `name` when case is ignored, as a full path; an exact match wins.
/// Empty when there is none.
std::optional<std::string> findEntry(const std::string& folder, std::string_view name);

/// findEntry, or "folder/name" where there is no such entry yet. `name` may name an entry of a subfolder, as
/// "db/x.mdb": each part of it is found likewise.
std::string entryPath(const std::string& folder, std::string_view name);

/// Names (not paths) of the files of a folder that match a pattern: "*" any text, "?" any character, "*.*"
/// every file. Case is ignored; sorted by lower-cased name. Empty when the folder is missing. The temporary files of
/// an interrupted writeBytes (".<name>.kvtmp...") are never listed.
std::vector<std::string> listFiles(const std::string& folder, std::string_view pattern);
/// Names of the subfolders, sorted likewise, hidden ones (".x") left out. Empty when the folder is missing.
std::vector<std::string> listFolders(const std::string& folder);

/// Creates a folder; one that is there already is no failure, a file of that name is one (Exists). Parents must exist.
Result<> createFolder(const std::string& path);
/// Creates a folder and those of its parents that are missing. Exists when one of them is a file.
Result<> createFolders(const std::string& path);
/// Deletes a file, a link itself and not what it leads to; Missing when it isn't there.
Result<> deleteFile(const std::string& path);
/// Removes an empty folder; Missing when it isn't there, Other when it isn't empty.
Result<> removeFolder(const std::string& path);
/// Moves a file or a folder within one file system; a file at `to` is replaced. Missing when
/// `from` isn't there.
Result<> renameFile(const std::string& from, const std::string& to);
/// Copies one file over `to`, in one step like writeBytes; the copy can be written by the owner and keeps the
/// modification time, so that a publish doesn't take it for a new picture.
Result<> copyFile(const std::string& from, const std::string& to, AtLink links = AtLink::Follow);
/// The same, and `goOn` is asked every few MiB; false ends the copy as Cancelled, and `to` stays as it was.
Result<> copyFile(const std::string& from, const std::string& to, AtLink links, const std::function<bool()>& goOn);
/// Copies a tree: lists it first, then creates each folder under `to`, then copies each file over the one there.
/// A file or folder in `to` whose name differs in case alone is the one copied over. When `to` lies inside `from` it
/// is left out of the list. Missing when `from` isn't there.
Result<> copyTree(const std::string& from, const std::string& to);
/// Deletes the files of a folder, subfolders untouched. Stops at the first failure. Missing when the folder is.
Result<> emptyFolder(const std::string& path);
/// Removes the temporary files of killed writes and copies in a folder (not below it). No other process may be writing
/// there.
void removeUnfinishedFiles(const std::string& folder);
/// Gives the owner write permission on every file and folder below `path`, itself included. ReadOnly when the disk
/// itself can't be written. Links aren't followed.
Result<> makeWritable(const std::string& path);

/// "folder/name", without a doubled separator; when one of the two is empty, the other one.
std::string joinPath(std::string_view folder, std::string_view name);
/// The part of a path after the last "/"; all of it when there is none.
std::string_view baseName(std::string_view path);
/// The part of a path before the last "/"; "/" for an entry of the root, empty when there is no "/".
std::string_view folderOf(std::string_view path);
/// Whether a path is the root of a file system tree: "/" here, or a drive ("C:\", "C:/") of another system, the drive
/// being any one character.
bool isRoot(std::string_view path);

}  // namespace kv
