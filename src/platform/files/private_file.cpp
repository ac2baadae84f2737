#include "platform/files/private_file.h"

#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

#include "platform/files/file_access.h"
#include "platform/files/files.h"

namespace kv {
namespace {

constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;
constexpr mode_t groupAndOthers = S_IRWXG | S_IRWXO;
// Less than any core file has. Unlike 0 it also keeps one from being piped to a program (Linux, fs/coredump.c).
constexpr rlim_t noCoreFile = 1;

}  // namespace

Result<> restrictToOwner(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return systemFailure(errno, path);
  if ((status.st_mode & groupAndOthers) == 0) return {};
  if (::chmod(path.c_str(), status.st_mode & S_IRWXU) == 0) return {};
  if (errno == ENOTSUP || errno == ENOSYS) return {};
  return systemFailure(errno == EPERM ? EACCES : errno, path);
}

Result<> writePrivateBytes(const std::string& path, std::string_view bytes) {
  // The replacement of an old file takes over its permissions.
  if (auto closed = restrictToOwner(path); !closed && closed.error().kind != ErrorKind::Missing) return closed;
  auto replacement = Replacement::begin(path, ownerOnly, AtLink::Follow);
  if (!replacement) return fail(replacement.error());
  if (auto written = replacement->write(bytes); !written) return written;
  return replacement->commit();
}

void forbidCoreFiles() {
  rlimit limit{};
  if (::getrlimit(RLIMIT_CORE, &limit) != 0) return;
  limit.rlim_cur = std::min(noCoreFile, limit.rlim_max);
  ignore(::setrlimit(RLIMIT_CORE, &limit), "lowering it is always allowed");
}

}  // namespace kv
