#include "platform/files/files.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "platform/files/file_access.h"
#include "platform/text/text.h"
#include "platform/text/utf8.h"

namespace kv {
namespace {

constexpr std::size_t copyPiece = std::size_t{16} * 1024;
constexpr std::uint64_t copyPiecesBetweenQuestions = 64;
constexpr std::size_t readStep = std::size_t{256} * 1024;
constexpr mode_t newFileMode = 0666;
constexpr mode_t newFolderMode = 0777;

/// Where a copy comes from, and who is asked whether it goes on.
struct CopySource {
  const std::string& path;
  const std::function<bool()>& goOn;

  Result<> ask() const {
    if (goOn && !goOn()) return fail(ErrorKind::Cancelled, path, "cancelled");
    return {};
  }
};

/// Lets the system carry a file over, without a way through this process: whether it has carried all of it, which it
/// can't between any two file systems, nor where a file has no size before it is read. Failures as reading and writing,
/// Cancelled.
Result<bool> takeAll(const OpenedFile& source, Replacement& target, const CopySource& from) {
  const auto size = static_cast<std::uint64_t>(source.status.st_size);
  for (std::uint64_t all = 0; all < size;) {
    if (auto asked = from.ask(); !asked) return fail(asked.error());
    if (!mayProceed(FileStep::Read, from.path)) return systemFailure(errno, from.path);
    const auto taken = target.takeFrom(source.descriptor);
    if (!taken) return fail(taken.error());
    if (*taken == 0) return false;
    all += *taken;
  }
  return size > 0;
}

/// Copies what is left of a file, piece by piece.
Result<> copyPieces(const Descriptor& source, Replacement& target, const CopySource& from) {
  std::array<char, copyPiece> buffer{};
  for (std::uint64_t pieces = 0;; ++pieces) {
    if (pieces % copyPiecesBetweenQuestions == 0) {
      if (auto asked = from.ask(); !asked) return asked;
    }
    const auto count = readPiece(source, buffer.data(), buffer.size(), from.path);
    if (!count) return fail(count.error());
    if (*count == 0) return {};
    if (auto written = target.write({buffer.data(), *count}); !written) return written;
  }
}

/// Whether a path leads to the file of this status.
bool isFileAt(const std::string& path, const struct stat& file, AtLink links) {
  struct stat found {};
  const auto look = links == AtLink::Follow ? ::stat : ::lstat;
  return look(path.c_str(), &found) == 0 && found.st_dev == file.st_dev && found.st_ino == file.st_ino;
}

bool hasKind(const std::string& path, mode_t kind) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && (status.st_mode & S_IFMT) == kind;
}

}  // namespace

Result<std::string> readBytes(const std::string& path) {
  auto file = openToRead(path);
  if (!file) return fail(file.error());
  std::string bytes;
  std::size_t filled = 0;
  // One byte more than the size, so that the end is found without another read.
  bytes.resize(static_cast<std::size_t>(file->status.st_size) + 1);
  for (;;) {
    const auto count = readPiece(file->descriptor, bytes.data() + filled, bytes.size() - filled, path);
    if (!count) return fail(count.error());
    filled += *count;
    if (*count == 0) break;
    if (filled == bytes.size()) bytes.resize(bytes.size() + readStep);
  }
  bytes.resize(filled);
  return bytes;
}

Result<std::string> readStart(const std::string& path, std::size_t limit) {
  auto file = openToRead(path);
  if (!file) return fail(file.error());
  std::string bytes(limit, '\0');
  std::size_t filled = 0;
  while (filled < limit) {
    const auto count = readPiece(file->descriptor, bytes.data() + filled, limit - filled, path);
    if (!count) return fail(count.error());
    if (*count == 0) break;
    filled += *count;
  }
  bytes.resize(filled);
  return bytes;
}

Result<> writeBytes(const std::string& path, std::string_view bytes, AtLink links) {
  auto replacement = Replacement::begin(path, newFileMode, links);
  if (!replacement) return fail(replacement.error());
  if (auto written = replacement->write(bytes); !written) return written;
  return replacement->commit();
}

Result<std::string> readText(const std::string& path) {
  auto bytes = readBytes(path);
  if (!bytes || utf8::endOfAscii(*bytes, 0) == bytes->size()) return bytes;
  return fromWindows1252(*bytes);
}

Result<> writeText(const std::string& path, std::string_view text) {
  if (utf8::endOfAscii(text, 0) == text.size()) return writeBytes(path, text);
  return writeBytes(path, toWindows1252(text));
}

std::string absolutePath(const std::string& path) {
  if (path.empty()) return path;
  std::error_code error;
  const auto full = std::filesystem::absolute(path, error);
  std::string text = (error ? std::filesystem::path(path) : full).lexically_normal().string();
  while (text.size() > 1 && text.back() == '/') text.pop_back();
  return text;
}

bool fileExists(const std::string& path) { return hasKind(path, S_IFREG); }
bool folderExists(const std::string& path) { return hasKind(path, S_IFDIR); }

bool isLink(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

bool leadsOutOf(const std::string& path, const std::string& folder) {
  if (!isLink(path)) return false;
  std::error_code error;
  const std::filesystem::path target = std::filesystem::canonical(path, error);
  if (error) return true;
  const std::string inside = std::filesystem::canonical(folder, error).string() + "/";
  return error || !target.string().starts_with(inside);
}

Result<FileStamp> fileStamp(const std::string& path) {
  constexpr std::int64_t nanoseconds = 1'000'000'000;
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return systemFailure(errno, path);
  const std::int64_t seconds = status.st_mtim.tv_sec;
  return FileStamp{static_cast<std::uint64_t>(status.st_size), seconds * nanoseconds + status.st_mtim.tv_nsec};
}

Result<> createFolder(const std::string& path) {
  if (folderExists(path)) return {};
  if (auto writable = requireWritableFolderOf(path); !writable) return writable;
  if (!mayProceed(FileStep::MakeFolder, path)) return systemFailure(errno, path);
  if (::mkdir(path.c_str(), newFolderMode) == 0) return {};
  const int number = errno;
  // Another process may have created it in the meantime.
  if (number == EEXIST && folderExists(path)) return {};
  return systemFailure(number, path);
}

Result<> createFolders(const std::string& path) {
  if (path.empty() || folderExists(path)) return {};
  if (path.ends_with('/')) return createFolders(path.substr(0, path.size() - 1));
  if (auto parents = createFolders(std::string(folderOf(path))); !parents) return parents;
  return createFolder(path);
}

Result<> deleteFile(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return systemFailure(errno, path);
  if (S_ISDIR(status.st_mode)) return systemFailure(EISDIR, path);
  if (auto writable = requireWritableFolderOf(path); !writable) return writable;
  if (!mayProceed(FileStep::Remove, path) || ::unlink(path.c_str()) != 0) return systemFailure(errno, path);
  return {};
}

Result<> removeFolder(const std::string& path) {
  // EEXIST and ENOTEMPTY both say that the folder isn't empty; Exists would mislead the caller.
  if (!folderExists(path)) return systemFailure(ENOENT, path);
  if (auto writable = requireWritableFolderOf(path); !writable) return writable;
  if (!mayProceed(FileStep::Remove, path)) return systemFailure(errno, path);
  if (::rmdir(path.c_str()) != 0) return systemFailure(errno == EEXIST ? ENOTEMPTY : errno, path);
  return {};
}

Result<> renameFile(const std::string& from, const std::string& to) {
  struct stat status {};
  if (::lstat(from.c_str(), &status) != 0) return systemFailure(errno, from);
  for (const std::string& path : {from, to}) {
    if (auto writable = requireWritableFolderOf(path); !writable) return writable;
  }
  if (!mayProceed(FileStep::Rename, to) || ::rename(from.c_str(), to.c_str()) != 0) return systemFailure(errno, to);
  return {};
}

Result<> copyFile(const std::string& from, const std::string& to, AtLink links) {
  return copyFile(from, to, links, {});
}

Result<> copyFile(const std::string& from, const std::string& to, AtLink links, const std::function<bool()>& goOn) {
  auto source = openToRead(from);
  if (!source) return fail(source.error());
  if (isFileAt(to, source->status, links)) return {};
  auto replacement = Replacement::begin(to, (source->status.st_mode & 0777U) | S_IWUSR, links);
  if (!replacement) return fail(replacement.error());
  const auto isWhole = takeAll(*source, *replacement, {from, goOn});
  if (!isWhole) return fail(isWhole.error());
  if (!*isWhole) {
    if (auto copied = copyPieces(source->descriptor, *replacement, {from, goOn}); !copied) return copied;
  }
  replacement->keepTime(source->status);
  return replacement->commit();
}

std::string joinPath(std::string_view folder, std::string_view name) {
  if (folder.empty()) return std::string(name);
  if (name.empty()) return std::string(folder);
  std::string path(folder);
  if (!path.ends_with('/')) path += '/';
  path += name.starts_with('/') ? name.substr(1) : name;
  return path;
}

std::string_view baseName(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string_view folderOf(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string_view::npos) return {};
  return path.substr(0, slash == 0 ? 1 : slash);
}

bool isRoot(std::string_view path) {
  if (!path.empty() && path.find_first_not_of('/') == std::string_view::npos) return true;
  return matchesWildcard(path, "?:/") || matchesWildcard(path, "?:\\");
}

}  // namespace kv
