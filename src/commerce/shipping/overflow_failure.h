#pragma once
// The number of the failure that an amount leaves the range of Money. It reaches the user's message, and merchants look
// it up, so it never changes.

namespace kv {

inline constexpr int overflowFailure = 6;

}  // namespace kv
