#pragma once
// Numbers out of foreign bytes, with every access checked. For the sources of this folder.

#include <cstdint>
#include <string_view>

namespace kv {

/// Reads from left to right. Behind the end it gives 0 and remembers that it failed.
class ByteReader {
 public:
  explicit ByteReader(std::string_view bytes) : rest_(bytes) {}

  bool failed() const { return failed_; }
  bool atEnd() const { return rest_.empty(); }

  std::string_view take(std::size_t count) {
    if (count > rest_.size()) {
      failed_ = true;
      count = rest_.size();
    }
    const std::string_view taken = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return taken;
  }
  void skip(std::size_t count) { take(count); }
  std::uint32_t u8() { return number(1, false); }
  std::uint32_t u16Little() { return number(2, false); }
  std::uint32_t u32Little() { return number(4, false); }
  std::uint32_t u16Big() { return number(2, true); }
  std::uint32_t u32Big() { return number(4, true); }

 private:
  std::uint32_t number(std::size_t count, bool bigFirst) {
    const std::string_view bytes = take(count);
    if (bytes.size() < count) return 0;
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < count; ++i) {
      value = (value << 8U) | static_cast<std::uint8_t>(bytes[bigFirst ? i : count - 1 - i]);
    }
    return value;
  }

  std::string_view rest_;
  bool failed_ = false;
};

}  // namespace kv
