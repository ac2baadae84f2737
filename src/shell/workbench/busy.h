#pragma once
// The wait cursor while something takes its time.

#include "shell/workbench/workbench_view.h"

namespace kv {

/// Shows the wait cursor over the window as long as it lives. Guards may be nested.
class BusyGuard {
 public:
  /// `view` outlives the guard.
  explicit BusyGuard(WorkbenchView& view) : view_(view) { view_.showBusy(true); }
  ~BusyGuard() { view_.showBusy(false); }
  BusyGuard(const BusyGuard&) = delete;
  BusyGuard& operator=(const BusyGuard&) = delete;

 private:
  WorkbenchView& view_;
};

}  // namespace kv
