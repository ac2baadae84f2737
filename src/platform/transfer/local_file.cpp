#include "platform/transfer/local_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/transfer/patience.h"

namespace kv {
namespace {

constexpr std::size_t pieceSize = std::size_t{64} * 1024;

tl::unexpected<Error> unreadable(const std::string& path) {
  return transferFailure(transferLocalFile, "il file " + path + " non può essere letto");
}

}  // namespace

LocalFile::LocalFile(Descriptor descriptor, std::string path, TransferMode mode)
    : descriptor_(std::move(descriptor)), path_(std::move(path)), mode_(mode), piece_(pieceSize, '\0') {}

Result<LocalFile> LocalFile::open(const std::string& path, TransferMode mode) {
  if (!mayProceed(FileStep::OpenToRead, path)) return unreadable(path);
  Descriptor descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!descriptor.isOpen()) return unreadable(path);
  return LocalFile(std::move(descriptor), path, mode);
}

Result<std::string_view> LocalFile::next() {
  for (;;) {
    if (!mayProceed(FileStep::Read, path_)) return unreadable(path_);
    const ssize_t count = ::read(descriptor_.number(), piece_.data(), piece_.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return unreadable(path_);
    const std::string_view piece(piece_.data(), static_cast<std::size_t>(count));
    return mode_ == TransferMode::Ascii ? withLineEnds(piece) : piece;
  }
}

std::string_view LocalFile::withLineEnds(std::string_view piece) {
  converted_.clear();
  for (const char byte : piece) {
    if (byte == '\n' && !afterReturn_) converted_ += '\r';
    converted_ += byte;
    afterReturn_ = byte == '\r';
  }
  return converted_;
}

}  // namespace kv
