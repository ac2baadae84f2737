#pragma once
// The shape that moves while the host works, in pixels of its frame.

namespace kv {

inline constexpr int busyInterval = 500;  ///< milliseconds between two steps
inline constexpr int busyStep = 15;       ///< how far one step leads to the right

/// The left edge of the shape after a step; at the frame's right end it starts again at the left.
constexpr int nextBusyEdge(int edge, int frameWidth) { return edge + busyStep < frameWidth ? edge + busyStep : 0; }

}  // namespace kv
