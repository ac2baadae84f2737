#pragma once
// A failure that ends a build run. Thrown and caught inside builder/ alone.

#include <exception>
#include <string>

#include "platform/ports/result.h"

namespace kv {

struct RunFailure final : std::exception {
  RunFailure(int failureNumber, std::string failureText) : number(failureNumber), text(std::move(failureText)) {}
  explicit RunFailure(const Error& error) : number(error.number), text(error.what) {
    if (!error.where.empty()) text += " (" + error.where + ")";
  }
  const char* what() const noexcept override { return text.c_str(); }

  int number;
  std::string text;
};

/// Thrown when the user has cancelled.
struct RunCancelled final : std::exception {};

/// The value of a result, or a RunFailure.
template <class T>
T must(Result<T> result) {
  if (!result) throw RunFailure(result.error());
  if constexpr (!std::is_void_v<T>) return std::move(*result);
}

}  // namespace kv
