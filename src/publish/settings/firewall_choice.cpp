#include "publish/settings/firewall_choice.h"

#include "platform/numbers/number_format.h"
#include "platform/ports/failure_text.h"

namespace kv {

FirewallSettings shownFirewall(const FirewallSettings& settings) {
  FirewallSettings shown = settings;
  if (!isNumeric(shown.ftpPort)) shown.ftpPort = usualFtpPort;
  if (shown.ftpPort == usualFtpPort) shown.ftpPort = portAfterChange(shown.ftpPort, shown.protocol, shown.tls);
  return shown;
}

bool areFirewallFieldsEnabled(FirewallKind kind) { return kind != FirewallKind::None; }

bool areFtpFieldsEnabled(TransferProtocol protocol) { return protocol == TransferProtocol::Ftp; }

bool carries(FirewallKind kind, TransferProtocol protocol) {
  return protocol == TransferProtocol::Ftp || kind < FirewallKind::ProxyUser || kind > FirewallKind::ProxyOpen;
}

std::string portAfterChange(const std::string& port, TransferProtocol protocol, TlsMode tls) {
  if (port != usualFtpPort && port != usualSftpPort && port != usualImplicitPort) return port;
  if (protocol == TransferProtocol::Sftp) return std::string(usualSftpPort);
  return std::string(tls == TlsMode::Implicit ? usualImplicitPort : usualFtpPort);
}

bool resetFirewall(const std::string& shopFolder, UserPort& user) {
  const Question question{"Le impostazioni avanzate saranno riportate alle condizioni di default", Buttons::OkCancel,
                          Answer::Cancel, Icon::Question};
  if (user.question(question) != Answer::Ok) return false;
  const auto deleted = deleteFirewallSettings(shopFolder);
  if (!deleted) user.message(failureText(deleted.error(), firewallSettingsFile), Icon::Exclamation);
  return deleted.has_value();
}

}  // namespace kv
