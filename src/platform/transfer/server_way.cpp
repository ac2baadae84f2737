#include "platform/transfer/server_way.h"

#include "platform/transfer/socks.h"
#include "platform/transfer/transfer.h"

namespace kv {
namespace {

constexpr const char* ftpUsualPort = "21";
constexpr const char* implicitPort = "990";
constexpr const char* sftpPort = "22";
constexpr const char* socksPort = "1080";

}  // namespace

bool isFtpProxy(FirewallKind kind) { return kind >= FirewallKind::ProxyUser && kind <= FirewallKind::ProxyOpen; }
bool isSocks(FirewallKind kind) { return kind == FirewallKind::Socks4 || kind == FirewallKind::Socks5; }

std::string serverPort(const ConnectionSettings& settings) {
  if (!settings.ftpPort.empty()) return settings.ftpPort;
  if (settings.protocol == TransferProtocol::Sftp) return sftpPort;
  return settings.tls == TlsMode::Implicit ? implicitPort : ftpUsualPort;
}

Result<Wire> openThroughSocks(const ConnectionSettings& settings, std::uint16_t port, Patience& patience) {
  const std::string& proxyPort = settings.firewallPort;
  auto wire = Wire::connect(settings.firewallHost, proxyPort.empty() ? socksPort : proxyPort, patience);
  if (!wire) return wire;
  const SocksRequest request{settings.firewall, settings.host, port, settings.firewallUser, settings.firewallPassword};
  if (auto asked = askSocks(*wire, request, patience); !asked) return fail(asked.error());
  return wire;
}

Result<Wire> openServerWay(const ConnectionSettings& settings, Patience& patience) {
  const std::string port = serverPort(settings);
  if (settings.firewall == FirewallKind::None) return Wire::connect(settings.host, port, patience);
  if (isSocks(settings.firewall)) {
    const auto number = portNumber(port);
    if (!number) return transferFailure(transferNoConnection, "porta non valida");
    return openThroughSocks(settings, *number, patience);
  }
  const std::string& proxyPort = settings.firewallPort;
  return Wire::connect(settings.firewallHost, proxyPort.empty() ? port : proxyPort, patience);
}

}  // namespace kv
