#pragma once
// The text that an expansion has yet to read: the rest of the input, with values of tags inserted before it. The input
// itself is copied only when the first value is inserted, into a buffer with free room at its start, so that the cost
// of inserting depends on the length of the value and not of what follows it.

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

namespace kv {

/// A text that is read from its start and can be extended there.
class PendingText {
 public:
  /// `input` outlives this object.
  explicit PendingText(std::string_view input) : rest_(input), untouched_(input.size()) {}
  PendingText(const PendingText&) = delete;
  PendingText& operator=(const PendingText&) = delete;

  /// The text that is left; valid until the next prepend().
  std::string_view rest() const { return rest_; }
  /// Removes `count` bytes, at most all that are left, from the start.
  void drop(std::size_t count) {
    rest_.remove_prefix(count);
    untouched_ = std::min(untouched_, rest_.size());  // inserted text comes first, so it is dropped first
  }
  /// Whether the next character belongs to an inserted text.
  bool inInserted() const { return rest_.size() > untouched_; }
  /// Inserts a text before the rest. It may not be a part of rest().
  void prepend(std::string_view value) {
    if (room() < value.size()) makeRoom(value.size());  // copies the rest to the end of a larger buffer
    const std::size_t at = room() - value.size();
    std::memcpy(buffer_.data() + at, value.data(), value.size());
    rest_ = {buffer_.data() + at, rest_.size() + value.size()};
  }

 private:
  /// The free bytes at the start of the buffer.
  std::size_t room() const { return buffer_.size() - (buffer_.empty() ? 0 : rest_.size()); }
  /// Adds room for twice what is there, so that all copies of the rest together are no longer than what is inserted.
  void makeRoom(std::size_t needed) {
    const std::size_t gap = 2 * needed + rest_.size();
    std::string larger(gap + rest_.size(), '\0');
    std::memcpy(larger.data() + gap, rest_.data(), rest_.size());
    buffer_ = std::move(larger);
    rest_ = {buffer_.data() + gap, rest_.size()};
  }

  std::string buffer_;     // empty, or ends with the rest
  std::string_view rest_;  // into the input or the buffer
  std::size_t untouched_;  // bytes at the end of the rest that belong to the input
};

}  // namespace kv
