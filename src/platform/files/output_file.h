#pragma once
// A file that is too long to hold in memory, written from start to end through one buffer. Unlike writeBytes it
// writes in place: whoever reads the file after a failure finds what was written until then.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/ports/result.h"

namespace kv {

class OutputFile {
 public:
  /// The most that room() gives at once, in bytes.
  static constexpr std::size_t largestRoom = std::size_t{64} * 1024;

  /// Opens `path` for writing; old content goes. ReadOnly when it may not be written, Missing when its folder isn't
  /// there.
  static Result<OutputFile> create(const std::string& path);
  OutputFile(OutputFile&& other) noexcept;
  OutputFile& operator=(OutputFile&&) = delete;
  /// Writes out what is left, failures ignored.
  ~OutputFile();

  void append(std::string_view bytes) {
    if (bytes.size() > largestRoom) return appendLarge(bytes);
    char* const place = room(bytes.size());
    std::memcpy(place, bytes.data(), bytes.size());
    filled(place + bytes.size());
  }
  void append(char byte) {
    char* const place = room(1);
    *place = byte;
    filled(place + 1);
  }
  /// A place for up to `size` bytes, to be reported by filled() with the end of what was put there.
  char* room(std::size_t size) {
    if (capacity - used_ < size) flush();
    return buffer_.get() + used_;
  }
  void filled(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.get()); }

  /// Whether a write has failed; what follows is dropped.
  bool failed() const { return failure_.has_value(); }
  /// Bytes appended so far.
  std::uint64_t size() const { return flushed_ + used_; }
  /// Writes out what is left and closes. Reports the first write that failed: Full on a full disk.
  Result<> close();

 private:
  static constexpr std::size_t capacity = std::size_t{256} * 1024;

  OutputFile(int descriptor, std::string path);
  void appendLarge(std::string_view bytes);
  void flush();

  int descriptor_;
  std::string path_;
  std::unique_ptr<char[]> buffer_;
  std::size_t used_ = 0;
  std::uint64_t flushed_ = 0;
  std::optional<Error> failure_;
};

}  // namespace kv
