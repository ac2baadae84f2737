#pragma once
// Several connections in one thread: each job has a stack of its own, and while it waits for the network or for time to
// pass, those that needn't wait go on. Jobs change only where they wait, so nothing they share needs a lock.

#include <poll.h>

#include <functional>
#include <span>
#include <vector>

namespace kv {

/// Runs the jobs side by side until all of them have returned. A job may use Transfer and waitFor as ever; what it runs
/// on the main stack holds the others up. A single job, or one whose stack can't be made, simply runs in turn.
void runSideBySide(const std::vector<std::function<void()>>& jobs);

/// Whether this is called within such a job.
bool isSideBySide();

/// Runs something on the stack from which runSideBySide was called, and returns when it is done: whatever opens a
/// window or processes events belongs there. Outside of a job it is simply run. It may not throw.
void runOnMainStack(const std::function<void()>& work);

/// poll(2) for the sources of this room: within a job the others go on meanwhile, and the wait is one step of Patience
/// at most whatever `milliseconds` says, but for 0, which only lets the others have their turn.
int pollSideBySide(std::span<pollfd> descriptors, int milliseconds);

}  // namespace kv
