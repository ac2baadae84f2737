#pragma once
// The dialogs by which the merchant looks after a shop, set in the port of the workbench: the shop doctor and the
// history.

#include "builder/doctor/findings.h"
#include "shell/window/frm_main.h"
#include "store/shop/backup_copies.h"

namespace kv {

/// Sets them. The window, the session and `env` outlive it.
void wireCare(frmMain& window, Session& session, Environment& env);

/// Restores a dated copy and notes it in the history; false when it failed, which the user knows.
bool restoreAndNote(frmMain& window, Session& session, Environment& env, const BackupCopy& copy);

/// Goes to the field of a finding: its language and price list, its row, its tab, and the keyboard to the field; or
/// opens the dialog of its command.
void goToFinding(frmMain& window, const FindingTarget& target);

}  // namespace kv
