#pragma once
// The publish run of the window.

#include <memory>

#include "shell/window/frm_main.h"
#include "shell/workbench/workbench_dialogs.h"
#include "sqlexport/sql_style.h"

namespace kv {

/// frmFTP over `window`, for `publish` of the dialogs. `lock` is that of all exports of the program. References outlive
/// the result.
WorkbenchDialogs::Dialog publishRun(frmMain& window, Session& session, Environment& env,
                                    std::shared_ptr<LockStatements> lock);

}  // namespace kv
