#include "platform/files/isolated_work.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>

namespace kv {
namespace {

constexpr std::size_t pipePiece = std::size_t{64} << 10;

/// Bytes of memory of this process that count against RLIMIT_DATA; 0 when the system doesn't tell.
std::size_t dataBytes() {
  std::ifstream statm("/proc/self/statm");
  std::size_t pages = 0, size = 0;
  constexpr int dataField = 6;  // of proc(5)
  for (int i = 0; i < dataField && statm >> size; ++i) pages = size;
  return pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

void limitTo(int resource, rlim_t most) {
  rlimit limit{};
  if (::getrlimit(static_cast<__rlimit_resource>(resource), &limit) != 0) return;
  limit.rlim_cur = limit.rlim_max == RLIM_INFINITY || most < limit.rlim_max ? most : limit.rlim_max;
  ::setrlimit(static_cast<__rlimit_resource>(resource), &limit);
}

/// Ends the process when the reader has gone.
void writeAll(int pipe, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(pipe, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) ::_exit(1);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

[[noreturn]] void workApart(int pipe, const IsolationLimits& limits,
                            const std::function<void(const IsolatedOutput&)>& work) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  for (const int signal : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL, SIGXCPU}) ::signal(signal, SIG_DFL);
  const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nowhere >= 0) {
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
  }
  limitTo(RLIMIT_CORE, 0);
  limitTo(RLIMIT_CPU, limits.seconds);
  limitTo(RLIMIT_DATA, dataBytes() + limits.memory);
  std::string waiting;
  try {
    work([&](std::string_view bytes) {
      waiting += bytes;
      if (waiting.size() < pipePiece) return;
      writeAll(pipe, waiting);
      waiting.clear();
    });
  } catch (...) {
    ::_exit(1);
  }
  writeAll(pipe, waiting);
  ::_exit(0);
}

/// Everything that comes through the pipe; false when it is more than the limit, or nothing comes for too long.
bool readAll(int pipe, const IsolationLimits& limits, std::string& bytes) {
  constexpr int milliseconds = 1000;
  std::array<char, pipePiece> piece{};
  for (;;) {
    pollfd awaited{pipe, POLLIN, 0};
    const int ready = ::poll(&awaited, 1, static_cast<int>(limits.silence) * milliseconds);
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) return false;
    const ssize_t count = ::read(pipe, piece.data(), piece.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return count == 0;
    bytes.append(piece.data(), static_cast<std::size_t>(count));
    if (bytes.size() > limits.output) return false;
  }
}

/// Waits for the end of a process; whether it ended by itself and with success.
bool endedWell(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

Result<std::string> runIsolated(const IsolationLimits& limits, const std::function<void(const IsolatedOutput&)>& work) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return fail(ErrorKind::Other, "pipe", std::strerror(errno), errno);
  const pid_t child = ::fork();
  if (child == 0) {
    ::close(ends[0]);
    workApart(ends[1], limits, work);
  }
  const int failed = errno;
  ::close(ends[1]);
  std::string bytes;
  const bool isWhole = child > 0 && readAll(ends[0], limits, bytes);
  ::close(ends[0]);
  if (child < 0) return fail(ErrorKind::Other, "fork", std::strerror(failed), failed);
  if (!isWhole) ::kill(child, SIGKILL);
  const bool isDone = endedWell(child);
  if (!isWhole || !isDone) return fail(ErrorKind::Malformed, "", "the reading broke off");
  return bytes;
}

}  // namespace kv
