#pragma once
// The dialogs of prices, replication and the shop's small settings, for the commands of the window.

#include "shell/window/frm_main.h"
#include "store/shop/session.h"

namespace kv {

/// Sets the members of the window's dialogs that this file has. All outlive the window's workbench.
void wireCommerceDialogs(frmMain& window, Session& session, Environment& env);

}  // namespace kv
