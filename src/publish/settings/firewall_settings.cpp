#include "publish/settings/firewall_settings.h"

#include "platform/files/files.h"
#include "platform/files/private_file.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "platform/transfer/protocols/known_hosts.h"
#include "publish/settings/key_lines.h"
#include "publish/settings/server_names.h"

namespace kv {
namespace {

constexpr std::string_view portMask = "#######";
constexpr std::string_view kindMask = "#0";

/// The numbered choice that a value names; `usual` when it is no number of one.
template <class Choice>
Choice choiceOf(std::string_view value, Choice last, Choice usual) {
  const auto number = toNumber(value);
  if (!number || *number < 0 || *number > static_cast<int>(last) || *number != static_cast<int>(*number)) return usual;
  return static_cast<Choice>(static_cast<int>(*number));
}

std::string portText(const std::string& port) {
  const auto number = toNumber(port);
  return number ? formatNumber(*number, portMask) : std::string(trim(port));
}

void readFirewallText(const KeyLine& line, FirewallSettings& settings) {
  struct Text {
    std::string_view key;
    std::string FirewallSettings::*field;
  };
  static constexpr Text texts[] = {{"HOST:", &FirewallSettings::host},
                                   {"PORT:", &FirewallSettings::port},
                                   {"FPRT:", &FirewallSettings::ftpPort},
                                   {"USER:", &FirewallSettings::user},
                                   {"PASS:", &FirewallSettings::password}};
  for (const Text& text : texts) {
    if (line.key == text.key) settings.*text.field = line.value;
  }
}

void readFirewallChoice(const KeyLine& line, FirewallSettings& settings) {
  const std::string_view value = line.value;
  if (line.key == "MODE:") settings.passive = !isZero(value);
  if (line.key == "TYPE:") settings.kind = choiceOf(value, FirewallKind::SimplePipe, FirewallKind::None);
  if (line.key == "DISC:") settings.reconnects = isOn(value);
  if (line.key == "TLSM:") settings.tls = choiceOf(value, TlsMode::Implicit, TlsMode::IfOffered);
  if (line.key == "PROT:") settings.protocol = choiceOf(value, TransferProtocol::Sftp, TransferProtocol::Ftp);
}

std::string firewallSettingsPath(const std::string& shopFolder) { return entryPath(shopFolder, firewallSettingsFile); }

}  // namespace

FirewallSettings parseFirewallSettings(std::string_view text) {
  FirewallSettings settings;
  for (const KeyLine& line : parseKeyLines(text)) {
    readFirewallText(line, settings);
    readFirewallChoice(line, settings);
  }
  return settings;
}

std::string firewallSettingsText(const FirewallSettings& settings) {
  const FirewallSettings untouched;
  std::vector<KeyLine> lines{{"MODE:", oneOrZero(settings.passive)},
                             {"HOST:", std::string(trim(settings.host))},
                             {"TYPE:", formatNumber(static_cast<int>(settings.kind), kindMask)},
                             {"PORT:", portText(settings.port)},
                             {"FPRT:", portText(settings.ftpPort)},
                             {"USER:", std::string(trim(settings.user))},
                             {"PASS:", std::string(trim(settings.password))},
                             {"DISC:", oneOrZero(settings.reconnects)}};
  if (settings.tls != untouched.tls) lines.push_back({"TLSM:", std::to_string(static_cast<int>(settings.tls))});
  if (settings.protocol != untouched.protocol) {
    lines.push_back({"PROT:", std::to_string(static_cast<int>(settings.protocol))});
  }
  return keyLinesText(lines);
}

FirewallSettings readFirewallSettings(const std::string& shopFolder) {
  const auto text = readText(firewallSettingsPath(shopFolder));
  return text ? parseFirewallSettings(*text) : FirewallSettings();
}

Result<> writeFirewallSettings(const std::string& shopFolder, const FirewallSettings& settings) {
  return writePrivateBytes(firewallSettingsPath(shopFolder), toWindows1252(firewallSettingsText(settings)));
}

Result<> deleteFirewallSettings(const std::string& shopFolder) {
  auto deleted = deleteFile(firewallSettingsPath(shopFolder));
  if (!deleted && deleted.error().kind == ErrorKind::Missing) return {};
  return deleted;
}

Result<ServerLogin> readServerLogin(Database& catalogue) {
  auto row = catalogue.prepare("SELECT hostname, username, password FROM generale");
  if (!row) return fail(row.error());
  const auto found = row->step();
  if (!found) return fail(found.error());
  if (!*found) return ServerLogin();
  return ServerLogin{std::string(row->text(0)), std::string(row->text(1)), std::string(row->text(2))};
}

ConnectionSettings connectionOf(const ServerLogin& login, const FirewallSettings& way, int silenceSeconds) {
  ConnectionSettings connection;
  connection.host = serverHost(login.host);
  connection.user = trim(login.user);
  connection.password = trim(login.password);
  connection.ftpPort = way.ftpPort;
  connection.passive = way.passive;
  connection.firewall = way.kind;
  connection.firewallHost = way.host;
  connection.firewallPort = way.port;
  connection.firewallUser = way.user;
  connection.firewallPassword = way.password;
  connection.tls = way.tls;
  connection.protocol = way.protocol;
  // 21 is what the file says where nobody has chosen a port.
  const bool hasOtherPort = way.protocol == TransferProtocol::Sftp || way.tls == TlsMode::Implicit;
  if (hasOtherPort && connection.ftpPort == usualFtpPort) connection.ftpPort.clear();
  connection.knownHostsFile = userKnownHostsPath();
  connection.silenceSeconds = silenceSeconds;
  return connection;
}

}  // namespace kv
