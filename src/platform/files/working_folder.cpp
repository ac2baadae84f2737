#include "platform/files/working_folder.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace kv {

Result<WorkingFolder> WorkingFolder::make() {
  std::error_code error;
  const auto base = std::filesystem::temp_directory_path(error);
  std::string pattern = (error ? std::string("/tmp") : base.string()) + "/korvane-XXXXXX";
  if (::mkdtemp(pattern.data()) != nullptr) return WorkingFolder(std::move(pattern));
  const bool isFull = errno == ENOSPC || errno == EDQUOT, isReadOnly = errno == EACCES || errno == EROFS;
  const ErrorKind kind = isFull ? ErrorKind::Full : isReadOnly ? ErrorKind::ReadOnly : ErrorKind::Other;
  return fail(kind, base.string(), std::strerror(errno), errno);
}

WorkingFolder::~WorkingFolder() {
  std::error_code error;
  if (!path_.empty()) std::filesystem::remove_all(path_, error);
}

}  // namespace kv
