#pragma once
// A file that is too long to hold in memory, written from start to end through one buffer. Unlike writeBytes it
// writes into the file itself: whoever reads it after a failure finds what was written until then.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/ports/result.h"

namespace kv {

/// A file being written. Failures of a write are kept and reported by close(), so that appending costs no check.
class OutputFile {
 public:
  /// The most that room() gives at once, in bytes.
  static constexpr std::size_t largestRoom = std::size_t{64} * 1024;

  /// Opens `path` for writing and empties it. ReadOnly when it may not be written, Missing when its folder isn't
  /// there.
  static Result<OutputFile> create(const std::string& path);
  OutputFile(OutputFile&& other) noexcept;
  OutputFile& operator=(OutputFile&&) = delete;
  /// Writes what is left in the buffer; a failure is ignored, which is why a file is finished with close().
  ~OutputFile();

  /// Appends bytes, of any number.
  void append(std::string_view bytes) {
    if (bytes.size() > largestRoom) return appendLarge(bytes);
    char* const target = room(bytes.size());
    std::memcpy(target, bytes.data(), bytes.size());
    filled(target + bytes.size());
  }
  /// Appends one byte.
  void append(char byte) {
    char* const target = room(1);
    *target = byte;
    filled(target + 1);
  }
  /// A pointer into the buffer with room for `size` bytes, at most largestRoom. The caller writes there and reports
  /// the end of its bytes to filled(), before any other call.
  char* room(std::size_t size) {
    if (capacity - used_ < size) flush();
    return buffer_.get() + used_;
  }
  /// Takes over the bytes that were written at room(), up to `end`.
  void filled(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.get()); }

  /// Whether a write has failed; what is appended after that is dropped.
  bool failed() const { return failure_.has_value(); }
  /// Bytes appended so far.
  std::uint64_t size() const { return flushed_ + used_; }
  /// Writes what is left in the buffer and closes the file. Reports the first write that failed: Full on a full disk.
  Result<> close();

 private:
  static constexpr std::size_t capacity = std::size_t{256} * 1024;

  OutputFile(int descriptor, std::string path);
  void appendLarge(std::string_view bytes);  // piece by piece, when they don't fit the buffer
  void flush();                              // writes the buffer to the file

  int descriptor_;
  std::string path_;
  std::unique_ptr<char[]> buffer_;
  std::size_t used_ = 0;          // bytes in the buffer
  std::uint64_t flushed_ = 0;     // bytes before those of the buffer
  std::optional<Error> failure_;  // the first one
};

}  // namespace kv
