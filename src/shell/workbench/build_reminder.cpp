#include "shell/workbench/build_reminder.h"

#include "store/shop/session.h"

namespace kv {

bool wantsReminder(const Settings& settings) { return settings.get(settingsSection, "NoShow") != "1"; }

Result<> answerReminder(Settings& settings, bool never) {
  return never ? settings.set(settingsSection, "NoShow", "1") : Result<>{};
}

}  // namespace kv
