#include "platform/files/output_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/files/file_access.h"

namespace kv {

OutputFile::OutputFile(int descriptor, std::string path)
    : descriptor_(descriptor), path_(std::move(path)), buffer_(std::make_unique<char[]>(capacity)) {}

OutputFile::OutputFile(OutputFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)),
      path_(std::move(other.path_)),
      buffer_(std::move(other.buffer_)),
      used_(std::exchange(other.used_, 0)),
      flushed_(other.flushed_),
      failure_(std::move(other.failure_)) {}

OutputFile::~OutputFile() { ignore(close(), "whoever wants to know of a failure closes the file itself"); }

Result<OutputFile> OutputFile::create(const std::string& path) {
  struct stat old {};
  if (::stat(path.c_str(), &old) == 0) {
    if (S_ISDIR(old.st_mode)) return systemFailure(EISDIR, path);
    if (!mayWrite(path, old)) return systemFailure(EACCES, path);
  } else if (auto writable = requireWritableFolderOf(path); !writable) {
    return fail(writable.error());
  }
  if (!mayProceed(FileStep::Create, path)) return systemFailure(errno, path);
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (descriptor < 0) return systemFailure(errno, path);
  return OutputFile(descriptor, path);
}

void OutputFile::appendLarge(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::string_view piece = bytes.substr(0, largestRoom);
    append(piece);
    bytes.remove_prefix(piece.size());
  }
}

void OutputFile::flush() {
  std::string_view rest(buffer_.get(), used_);
  while (!rest.empty() && !failure_) {
    const bool mayWriteNow = mayProceed(FileStep::Write, path_);
    const ssize_t count = mayWriteNow ? ::write(descriptor_, rest.data(), rest.size()) : -1;
    if (count >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      failure_ = systemFailure(errno, path_).value();
    }
  }
  flushed_ += used_;
  used_ = 0;
}

Result<> OutputFile::close() {
  if (descriptor_ >= 0) {
    flush();
    const int number = Descriptor(std::exchange(descriptor_, -1)).close(path_);
    if (number != 0 && !failure_) failure_ = systemFailure(number, path_).value();
  }
  if (failure_) return fail(*failure_);
  return {};
}

}  // namespace kv
