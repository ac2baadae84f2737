#include "publish/settings/firewall_choice.h"

#include "platform/numbers/number_format.h"
#include "platform/ports/failure_text.h"

namespace kv {

FirewallSettings shownFirewall(const FirewallSettings& settings) {
  FirewallSettings shown = settings;
  if (!isNumeric(shown.ftpPort)) shown.ftpPort = usualFtpPort;
  return shown;
}

bool areFirewallFieldsEnabled(FirewallKind kind) { return kind != FirewallKind::None; }

bool resetFirewall(const std::string& shopFolder, UserPort& user) {
  const Question question{"Le impostazioni avanzate saranno riportate alle condizioni di default", Buttons::OkCancel,
                          Answer::Cancel, Icon::Question};
  if (user.question(question) != Answer::Ok) return false;
  const auto deleted = deleteFirewallSettings(shopFolder);
  if (!deleted) user.message(failureText(deleted.error(), firewallSettingsFile), Icon::Exclamation);
  return deleted.has_value();
}

}  // namespace kv
