#pragma once
// The text that an expansion has yet to read: the rest of the input, with values of tags put in front of it. The input
// itself is copied only when the first value is put in, into a buffer with free room in front, so that putting in
// costs what the value measures and not what follows it.

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

namespace kv {

class PendingText {
 public:
  explicit PendingText(std::string_view input) : rest_(input), untouched_(input.size()) {}
  PendingText(const PendingText&) = delete;
  PendingText& operator=(const PendingText&) = delete;

  std::string_view rest() const { return rest_; }
  void drop(std::size_t count) {
    rest_.remove_prefix(count);
    untouched_ = std::min(untouched_, rest_.size());
  }
  /// Whether the next letter stands in a text that was put in.
  bool inInserted() const { return rest_.size() > untouched_; }
  void putInFront(std::string_view value) {
    if (room() < value.size()) makeRoom(value.size());
    const std::size_t at = room() - value.size();
    std::memcpy(buffer_.data() + at, value.data(), value.size());
    rest_ = {buffer_.data() + at, rest_.size() + value.size()};
  }

 private:
  std::size_t room() const { return buffer_.size() - (buffer_.empty() ? 0 : rest_.size()); }
  /// Twice what is there, so that the copies of the rest add up to no more than what is put in.
  void makeRoom(std::size_t needed) {
    const std::size_t gap = 2 * needed + rest_.size();
    std::string larger(gap + rest_.size(), '\0');
    std::memcpy(larger.data() + gap, rest_.data(), rest_.size());
    buffer_ = std::move(larger);
    rest_ = {buffer_.data() + gap, rest_.size()};
  }

  std::string buffer_;  // its end is the rest, once it isn't empty
  std::string_view rest_;
  std::size_t untouched_;  // letters at the end of the rest that belong to the input
};

}  // namespace kv
