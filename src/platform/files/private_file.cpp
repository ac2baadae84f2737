#include "platform/files/private_file.h"

#include <sys/stat.h>

#include <cerrno>

#include "platform/files/file_access.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr mode_t ownerOnly = 0600;

}  // namespace

Result<> writePrivateText(const std::string& path, std::string_view text) {
  // The replacement takes over the bits of the old file, so these are narrowed first.
  struct stat old {};
  if (::stat(path.c_str(), &old) == 0 && S_ISREG(old.st_mode) && (old.st_mode & 0077U) != 0 &&
      ::chmod(path.c_str(), old.st_mode & 0700U) != 0) {
    return systemFailure(errno, path);
  }
  auto replacement = Replacement::begin(path, ownerOnly);
  if (!replacement) return fail(replacement.error());
  if (auto written = replacement->write(toWindows1252(text)); !written) return written;
  return replacement->commit();
}

}  // namespace kv
