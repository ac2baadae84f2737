#include "platform/files/file_time.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>

#include "platform/files/file_access.h"

namespace kv {

Result<> setFileTime(const std::string& path, std::int64_t nanoseconds) {
  constexpr std::int64_t inSecond = 1'000'000'000;
  const std::int64_t fraction = ((nanoseconds % inSecond) + inSecond) % inSecond;
  const timespec changed{static_cast<time_t>((nanoseconds - fraction) / inSecond), static_cast<long>(fraction)};
  const std::array<timespec, 2> times{timespec{0, UTIME_OMIT}, changed};
  if (::utimensat(AT_FDCWD, path.c_str(), times.data(), 0) != 0) return systemFailure(errno, path);
  return {};
}

}  // namespace kv
