// The way to the server: connection, TLS, and who logs in where.
#include "platform/text/text.h"
#include "platform/text/utf8.h"
#include "platform/transfer/protocols/ftp_session.h"
#include "platform/transfer/transfer.h"

namespace kv {
namespace {

constexpr const char* usualPort = "21";
constexpr int passwordWanted = 331;
constexpr int accountWanted = 332;

Result<> secureControl(FtpSession& session, Patience& patience) {
  // What came before TLS may have been put there by anybody on the way.
  if (session.control.hasUnread()) {
    return transferFailure(transferNotTrusted, "il server ha risposto prima dell'inizio della connessione cifrata");
  }
  return session.control.wire().secure(session.tls, {session.settings.host, nullptr}, patience);
}

/// AUTH TLS where the settings want it.
Result<> askForTls(FtpSession& session, Patience& patience) {
  const TlsMode mode = session.settings.tls;
  // A proxy of FTP would not understand, and has to read the commands that follow.
  const bool wanted =
      mode == TlsMode::Required || (mode == TlsMode::IfOffered && !isFtpProxy(session.settings.firewall));
  if (!wanted) return {};
  const auto reply = session.control.command("AUTH TLS", patience);
  if (!reply) return fail(reply.error());
  if (reply->isDone()) return secureControl(session, patience);
  if (mode == TlsMode::IfOffered) return {};
  return transferFailure(transferNotTrusted, "il server non offre una connessione cifrata (TLS)");
}

/// USER and PASS. The server may be content with the name.
Result<> giveName(FtpSession& session, const std::string& user, const std::string& password, Patience& patience) {
  auto reply = session.control.require("USER " + user, patience);
  if (!reply) return fail(reply.error());
  if (reply->code == passwordWanted) {
    reply = session.control.require("PASS " + password, patience);
    if (!reply) return fail(reply.error());
  }
  if (reply->isDone()) return {};
  if (reply->code == accountWanted) {
    return transferFailure(transferOther, "il server richiede un account (ACCT), che non è previsto");
  }
  return replyFailure(*reply);
}

/// "host", or "host:21000" when the port isn't the usual one.
std::string hostWithPort(const ConnectionSettings& settings, char separator) {
  const std::string port = serverPort(settings);
  return port == usualPort ? settings.host : settings.host + separator + port;
}

Result<> logIntoFirewall(FtpSession& session, Patience& patience) {
  const ConnectionSettings& settings = session.settings;
  if (settings.firewallUser.empty()) return {};
  return giveName(session, settings.firewallUser, settings.firewallPassword, patience);
}

/// The login at an FTP proxy and, through it, at the server.
Result<> logInThroughProxy(FtpSession& session, Patience& patience) {
  const ConnectionSettings& settings = session.settings;
  const std::string host = hostWithPort(settings, ':');
  if (settings.firewall == FirewallKind::ProxyProxy) {
    const bool hasUser = !settings.firewallUser.empty();
    const std::string user = settings.user + '@' + (hasUser ? settings.firewallUser + '@' : "") + host;
    return giveName(session, user, settings.password + (hasUser ? '@' + settings.firewallPassword : ""), patience);
  }
  if (auto known = logIntoFirewall(session, patience); !known) return known;
  if (settings.firewall == FirewallKind::ProxyUser) {
    return giveName(session, settings.user + '@' + host, settings.password, patience);
  }
  const bool isSite = settings.firewall == FirewallKind::ProxySite;
  const std::string open = isSite ? "SITE " + host : "OPEN " + hostWithPort(settings, ' ');
  if (auto opened = session.control.require(open, patience); !opened) return fail(opened.error());
  return giveName(session, settings.user, settings.password, patience);
}

/// Source: RFC 4217, section 9: PBSZ before PROT.
Result<> protectData(FtpSession& session, Patience& patience) {
  if (!session.control.wire().isSecure()) return {};
  auto size = session.control.command("PBSZ 0", patience);
  if (!size) return fail(size.error());
  const auto protection = session.control.command("PROT P", patience);
  if (!protection) return fail(protection.error());
  session.secureData = protection->isDone();
  if (session.secureData || session.settings.tls == TlsMode::IfOffered) return {};
  return transferFailure(transferNotTrusted, "il server non cifra la connessione dati");
}

}  // namespace

Result<> openControl(FtpSession& session, Patience& patience) {
  auto wire = openServerWay(session.settings, patience);
  if (!wire) return fail(wire.error());
  session.control.open(std::move(*wire));
  if (session.settings.tls == TlsMode::Implicit) {
    if (auto secured = secureControl(session, patience); !secured) return secured;
  }
  // "Service ready in nnn minutes" comes before the greeting itself.
  const auto greeting = session.control.finalReply(patience);
  if (!greeting) return fail(greeting.error());
  if (greeting->isRefusal()) return replyFailure(*greeting);
  return askForTls(session, patience);
}

Result<> logInto(FtpSession& session, Patience& patience) {
  const ConnectionSettings& settings = session.settings;
  auto known = isFtpProxy(settings.firewall) ? logInThroughProxy(session, patience)
                                             : giveName(session, settings.user, settings.password, patience);
  if (!known) return known;
  return protectData(session, patience);
}

Result<Wire> openToServer(FtpSession& session, std::uint16_t port, Patience& patience) {
  if (isSocks(session.settings.firewall)) return openThroughSocks(session.settings, port, patience);
  SocketAddress address = session.control.wire().peerAddress();
  address.setPort(port);
  return Wire::connect(address, patience);
}

Result<std::string> encodedName(FtpSession& session, const std::string& name, Patience& patience) {
  if (utf8::endOfAscii(name, 0) == name.size()) return name;
  if (session.names == NameEncoding::NotAsked) {
    const auto features = session.control.command("FEAT", patience);
    if (!features) return fail(features.error());
    const bool knows = features->isDone() && findIgnoringCase(features->text, "UTF8") != std::string::npos;
    session.names = knows ? NameEncoding::Utf8 : NameEncoding::Windows1252;
    if (knows) {
      // Servers that read UTF-8 in any case refuse it, which changes nothing.
      if (auto told = session.control.command("OPTS UTF8 ON", patience); !told) return fail(told.error());
    }
  }
  return session.names == NameEncoding::Utf8 ? name : toWindows1252(name);
}

}  // namespace kv
