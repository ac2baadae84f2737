#include "platform/files/file_access.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <limits>
#include <system_error>

#include "platform/files/files.h"
#include "platform/ports/clock.h"

namespace kv {
namespace {

constexpr std::string_view unfinishedMark = ".kvtmp";
constexpr std::size_t unfinishedCharacters = 8;

/// The conditions that an errno stands for; every other one is Other.
constexpr std::pair<int, ErrorKind> kinds[] = {
    {ENOENT, ErrorKind::Missing},  {ENOTDIR, ErrorKind::Missing}, {EEXIST, ErrorKind::Exists},
    {EACCES, ErrorKind::ReadOnly}, {EPERM, ErrorKind::ReadOnly},  {EROFS, ErrorKind::ReadOnly},
    {ENOSPC, ErrorKind::Full},     {EDQUOT, ErrorKind::Full},     {EFBIG, ErrorKind::Full},
    {EBUSY, ErrorKind::InUse},     {ETXTBSY, ErrorKind::InUse}};

ErrorKind kindOf(int number) {
  const auto found =
      std::find_if(std::begin(kinds), std::end(kinds), [&](const auto& row) { return row.first == number; });
  return found == std::end(kinds) ? ErrorKind::Other : found->second;
}

// ".<name>.kvtmp" and eight random characters from a to p; a long name is cut, since 255 bytes are the limit of most
// file systems.
std::string unfinishedPath(const std::string& target) {
  constexpr std::size_t longestKept = 200;
  std::string name = "." + std::string(baseName(target).substr(0, longestKept)) + std::string(unfinishedMark);
  std::uint32_t chance = systemRandom().below(std::numeric_limits<std::uint32_t>::max());
  for (std::size_t i = 0; i < unfinishedCharacters; ++i, chance /= 16) name += static_cast<char>('a' + chance % 16);
  return joinPath(folderOf(target), name);
}

// For a link, the file it leads to is replaced and the link kept.
std::string targetOfLinks(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return path;
  char* const resolved = ::realpath(path.c_str(), nullptr);
  if (resolved == nullptr) return path;
  std::string target = resolved;
  std::free(resolved);
  return target;
}

// The owner first, since a change of owner may clear permission bits. Where we may not set it, the owner is us.
int takeOver(int descriptor, const struct stat& old) {
  if (old.st_uid != ::geteuid() || old.st_gid != ::getegid()) {
    [[maybe_unused]] const int given = ::fchown(descriptor, old.st_uid, old.st_gid);
  }
  return ::fchmod(descriptor, old.st_mode & 07777U) == 0 ? 0 : errno;
}

}  // namespace

tl::unexpected<Error> systemFailure(int number, const std::string& where) {
  return fail(kindOf(number), where, std::generic_category().message(number), number);
}

Descriptor::~Descriptor() { closeNow(); }

int Descriptor::close(const std::string& path) {
  const bool mayKeep = mayProceed(FileStep::Close, path);
  const int refused = mayKeep ? 0 : errno;
  const int number = closeNow();
  return refused != 0 ? refused : number;
}

int Descriptor::closeNow() {
  if (number_ < 0) return 0;
  // After EINTR the descriptor is closed nevertheless (Linux), so there is no second try.
  return ::close(std::exchange(number_, -1)) == 0 || errno == EINTR ? 0 : errno;
}

// Without O_NONBLOCK the program would hang on a pipe of the file's name.
Result<OpenedFile> openToRead(const std::string& path) {
  if (!mayProceed(FileStep::OpenToRead, path)) return systemFailure(errno, path);
  OpenedFile file{Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)), {}};
  if (!file.descriptor.isOpen()) return systemFailure(errno, path);
  if (::fstat(file.descriptor.number(), &file.status) != 0) return systemFailure(errno, path);
  if (S_ISDIR(file.status.st_mode)) return systemFailure(EISDIR, path);
  if (!S_ISREG(file.status.st_mode)) return fail(ErrorKind::Other, path, "Not a regular file");
  return file;
}

Result<std::size_t> readPiece(const Descriptor& descriptor, char* buffer, std::size_t size, const std::string& path) {
  for (;;) {
    if (!mayProceed(FileStep::Read, path)) return systemFailure(errno, path);
    const ssize_t count = ::read(descriptor.number(), buffer, size);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno != EINTR) return systemFailure(errno, path);
  }
}

bool mayWrite(const std::string& path, const struct stat& status) {
  return (status.st_mode & S_IWUSR) != 0 && ::access(path.c_str(), W_OK) == 0;
}

Result<> requireWritableFolderOf(const std::string& path) {
  std::string folder(folderOf(path));
  if (folder.empty()) folder = ".";
  struct stat status {};
  if (::stat(folder.c_str(), &status) != 0) return {};
  if (!mayWrite(folder, status)) return systemFailure(EACCES, path);
  return {};
}

bool isUnfinishedName(std::string_view name) {
  if (!name.starts_with('.') || name.size() <= unfinishedMark.size() + unfinishedCharacters) return false;
  const std::string_view end = name.substr(name.size() - unfinishedMark.size() - unfinishedCharacters);
  return end.starts_with(unfinishedMark) && end.find('.', 1) == std::string_view::npos;
}

Replacement::Replacement(Descriptor descriptor, std::string temporary, std::string target)
    : descriptor_(std::move(descriptor)), temporary_(std::move(temporary)), target_(std::move(target)) {}

Replacement::Replacement(Replacement&& other) noexcept
    : descriptor_(std::move(other.descriptor_)),
      temporary_(std::exchange(other.temporary_, {})),
      target_(std::move(other.target_)) {}

Replacement::~Replacement() {
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

Result<Replacement> Replacement::begin(const std::string& path, mode_t mode, AtLink links) {
  const std::string target = links == AtLink::Follow ? targetOfLinks(path) : path;
  struct stat old {};
  // A link that is replaced itself has no permissions to keep.
  const bool replaces = ::lstat(target.c_str(), &old) == 0 && !S_ISLNK(old.st_mode);
  if (replaces && S_ISDIR(old.st_mode)) return systemFailure(EISDIR, path);
  // A device or a pipe would be lost, and a file have its name.
  if (replaces && !S_ISREG(old.st_mode)) return fail(ErrorKind::Other, path, "Not a regular file");
  if (replaces && !mayWrite(target, old)) return systemFailure(EACCES, path);
  if (auto writable = requireWritableFolderOf(target); !writable) return fail(writable.error());
  std::string temporary = unfinishedPath(target);
  if (!mayProceed(FileStep::Create, target)) return systemFailure(errno, path);
  Descriptor descriptor(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
  if (!descriptor.isOpen()) return systemFailure(errno, path);
  Replacement replacement(std::move(descriptor), std::move(temporary), target);
  const int number = replaces ? takeOver(replacement.descriptor_.number(), old) : 0;
  if (number != 0) return systemFailure(number, path);
  return replacement;
}

Result<> Replacement::write(std::string_view bytes) {
  while (!bytes.empty()) {
    if (!mayProceed(FileStep::Write, target_)) return systemFailure(errno, target_);
    const ssize_t count = ::write(descriptor_.number(), bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return systemFailure(errno, target_);
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return {};
}

Result<std::size_t> Replacement::takeFrom(const Descriptor& source) {
  constexpr std::size_t most = std::size_t{4} << 20;  // between two questions to the gate
  if (!mayProceed(FileStep::Write, target_)) return systemFailure(errno, target_);
  const ssize_t count = ::copy_file_range(source.number(), nullptr, descriptor_.number(), nullptr, most, 0);
  if (count >= 0) return static_cast<std::size_t>(count);
  // Any other failure shows again where the bytes are read and written one after the other: it isn't known yet whether
  // the system or the disk has refused.
  const bool isFull = errno == ENOSPC || errno == EDQUOT || errno == EFBIG;
  return isFull ? systemFailure(errno, target_) : Result<std::size_t>(0);
}

void Replacement::keepTime(const struct stat& status) {
  const timespec times[] = {status.st_atim, status.st_mtim};
  ignore(::futimens(descriptor_.number(), times), "a file system that keeps no times is no reason to lose the copy");
}

Result<> Replacement::commit() {
  if (const int number = descriptor_.close(target_); number != 0) return systemFailure(number, target_);
  if (!mayProceed(FileStep::Rename, target_) || ::rename(temporary_.c_str(), target_.c_str()) != 0)
    return systemFailure(errno, target_);
  temporary_.clear();
  return {};
}

}  // namespace kv
