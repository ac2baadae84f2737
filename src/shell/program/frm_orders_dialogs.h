#pragma once
// The window of orders and the notice of new ones, wired to the workbench of the main window.

#include "shell/window/frm_main.h"

namespace kv {

/// Puts the window of orders into the workbench. All outlive the window's use.
void wireOrders(frmMain& window, Session& session, Environment& env);

/// Asks the shop's server for new orders once the events come round, and shows "2 ordini nuovi" as a button of the
/// status line, which opens the window of orders. Nothing waits for it: it ends without a word when the shop or the
/// program is closed, when there is no answer in time, and for a shop that doesn't want it (see accessForNotice).
void announceOrders(frmMain& window, Session& session, Environment& env);

}  // namespace kv
