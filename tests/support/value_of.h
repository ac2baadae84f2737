#pragma once
// The value of a result that must be there: a test that meets a failure instead fails, and says which, and goes no
// further.

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <utility>

#include "platform/ports/result.h"

namespace kv::test {

/// The result itself, which holds a value.
/// Ends the test with the text of the failure when it doesn't; for a result whose value is reached by "->" later.
template <class T>
Result<T> checked(Result<T> result) {
  if (result) return result;
  const std::string text = result.error().where + ": " + result.error().what;
  ADD_FAILURE() << text;
  throw std::runtime_error(text);
}

/// The value of a result, or of what may be empty. Ends the test as checked() does.
template <class T>
T valueOf(Result<T> result) {
  return std::move(*checked(std::move(result)));
}
template <class T>
T valueOf(std::optional<T> value) {
  if (value) return std::move(*value);
  ADD_FAILURE() << "there is no value";
  throw std::runtime_error("there is no value");
}

}  // namespace kv::test
