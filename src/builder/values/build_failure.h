#pragma once
// The numbers of failures that a build finds itself. They reach the user's message, and merchants look them up by
// number, so they never change. A failure of a file or a database keeps the number of its own level.

#include "commerce/shipping/overflow_failure.h"

namespace kv {

/// A page needs more text than there is memory for: the message advises fewer articles per page. Of kind Full, which
/// tells it from the 14 of other levels.
inline constexpr int outOfTextSpace = 14;

}  // namespace kv
