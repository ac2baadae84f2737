#pragma once
// The dialogs of what the law asks of a shop.

#include "commerce/settings/legal_duties.h"
#include "shell/window/frm_main.h"

namespace kv {

/// Sets the members `makers` and `legalDuties` of the window's dialogs. All three outlive the window's last command.
void wireLaw(frmMain& window, Session& session, Environment& env);

/// Shows the field where a duty is met, or opens its dialog; nothing for a target without either.
void goToDuty(frmMain& window, const DutyTarget& target);

}  // namespace kv
