#pragma once
// The wait cursor while something takes its time.

#include "shell/workbench/workbench_view.h"

namespace kv {

/// Shows the wait cursor over the window as long as it lives. Guards may be nested.
/// For work that holds the window up for more than a moment, such as undoing a step. The usual cursor
/// comes back when the outermost guard ends, on whatever path the work is left. It shows nothing of how far the work
/// has come and doesn't process events.
class BusyGuard {
 public:
  /// `view` outlives the guard.
  explicit BusyGuard(WorkbenchView& view) : view_(view) { view_.showBusy(true); }
  ~BusyGuard() { view_.showBusy(false); }
  // Each guard ends the wait cursor once, so it can't be copied.
  BusyGuard(const BusyGuard&) = delete;
  BusyGuard& operator=(const BusyGuard&) = delete;

 private:
  WorkbenchView& view_;  ///< where the cursor shows
};

}  // namespace kv
