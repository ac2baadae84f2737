#include "platform/transfer/protocols/ftp_data.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <utility>

#include "platform/text/text.h"
#include "platform/transfer/transfer.h"

namespace kv {
namespace {

/// A failure of a data connection, with a code of its own: but for a cancel, which stays one.
tl::unexpected<Error> dataFailure(const Error& error) {
  if (error.number == transferCancelled || error.number == transferNotTrusted) return fail(error);
  return transferFailure(transferNoData, "connessione dati: " + error.what);
}

/// A server that has no data connection to offer.
tl::unexpected<Error> refusedData(const FtpReply& reply) {
  return transferFailure(transferNoData, std::to_string(reply.code) + " " + serverText(reply.text));
}

/// By PASV, which IPv4 alone has.
Result<std::uint16_t> askForPort4(FtpSession& session, Patience& patience) {
  const auto reply = session.control.command("PASV", patience);
  if (!reply) return fail(reply.error());
  const auto port = passivePort(reply->code == 227 ? reply->text : std::string());
  if (!port) return refusedData(*reply);
  return *port;
}

/// Asks the server for a port. EPSV has no address that a router on the way could have to change; a server that
/// refuses it isn't asked again, and proxies are older than it.
Result<std::uint16_t> askForPort(FtpSession& session, Patience& patience) {
  const bool is4 = session.control.wire().peerAddress().family() == AF_INET;
  const bool asksExtended = !is4 || (session.extendedPassive && !isFtpProxy(session.settings.firewall));
  if (!asksExtended) return askForPort4(session, patience);
  const auto reply = session.control.command("EPSV", patience);
  if (!reply) return fail(reply.error());
  if (reply->code == 229) {
    const auto port = extendedPassivePort(reply->text);
    if (port) return *port;
  }
  if (!is4) return refusedData(*reply);
  session.extendedPassive = false;
  return askForPort4(session, patience);
}

/// Sends the command of a transfer; the server says that it begins.
Result<> beginTransfer(FtpSession& session, const std::string& command, Patience& patience) {
  if (auto sent = session.control.send(command, patience); !sent) return sent;
  const auto begun = session.control.reply(patience);
  if (!begun) return fail(begun.error());
  if (begun->isRefusal()) return replyFailure(*begun);
  if (!begun->isPreliminary()) return transferFailure(transferNoData, "risposta inattesa del server");
  return {};
}

Result<Wire> listenForServer(FtpSession& session) {
  SocketAddress address = session.control.wire().localAddress();
  address.setPort(0);
  Wire listener(::socket(address.family(), SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  const bool listens = listener.isOpen() && ::bind(listener.descriptor(), address.get(), address.size) == 0 &&
                       ::listen(listener.descriptor(), 1) == 0;
  if (!listens) return transferFailure(transferNoData, socketText(errno));
  return listener;
}

/// Source: RFC 959 (PORT) and RFC 2428 (EPRT).
std::string portCommand(const SocketAddress& address) {
  const std::string host = address.hostText();
  const unsigned port = address.port();
  if (address.family() != AF_INET) return "EPRT |2|" + host + "|" + std::to_string(port) + "|";
  return "PORT " + replaceAll(host, ".", ",") + "," + std::to_string(port / 256) + "," + std::to_string(port % 256);
}

/// The connection of the server itself; one of any other machine is closed.
Result<Wire> acceptServer(FtpSession& session, Wire& listener, Patience& patience) {
  const SocketAddress server = session.control.wire().peerAddress();
  std::array<pollfd, 2> either{pollfd{listener.descriptor(), POLLIN, 0},
                               pollfd{session.control.wire().descriptor(), POLLIN, 0}};
  for (;;) {
    if (auto ready = patience.await(either); !ready) return fail(ready.error());
    Wire wire(::accept4(listener.descriptor(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (wire.isOpen() && wire.peerAddress().hasHostOf(server)) return wire;
    // The server has something to say, and that can only be that it doesn't come.
    if (either[1].revents != 0) return transferFailure(transferNoData, "il server non apre la connessione");
  }
}

}  // namespace

Result<FtpData> FtpData::prepare(FtpSession& session, Patience& patience) {
  FtpData data;
  // Through SOCKS no server can connect to this machine.
  if (session.settings.passive || isSocks(session.settings.firewall)) {
    const auto port = askForPort(session, patience);
    if (!port) return fail(port.error());
    auto wire = openToServer(session, *port, patience);
    if (!wire) return dataFailure(wire.error());
    data.wire_ = std::move(*wire);
    return data;
  }
  auto listener = listenForServer(session);
  if (!listener) return fail(listener.error());
  const auto told = session.control.command(portCommand(listener->localAddress()), patience);
  if (!told) return fail(told.error());
  if (told->isRefusal()) return refusedData(*told);
  data.listener_ = std::move(*listener);
  return data;
}

Result<Wire> FtpData::open(FtpSession& session, Patience& patience) {
  if (!wire_.isOpen()) {
    auto wire = acceptServer(session, listener_, patience);
    if (!wire) return dataFailure(wire.error());
    wire_ = std::move(*wire);
  }
  if (session.secureData) {
    const TlsPeer peer{session.settings.host, session.control.wire().tls()};
    if (auto secured = wire_.secure(session.tls, peer, patience); !secured) return dataFailure(secured.error());
  }
  return std::move(wire_);
}

namespace {

using DataUse = std::function<Result<>(Wire& wire, Patience& patience)>;

/// Uses a data connection and ends it: as a file ends when its use succeeded, abruptly otherwise.
Result<> useToItsEnd(Result<Wire>& wire, const DataUse& use, Patience& patience) {
  if (!wire) return fail(wire.error());
  Result<> used = use(*wire, patience);
  if (used) {
    wire->finish(patience);
  } else {
    wire->close();
  }
  return used;
}

/// Whether the server's last word isn't waited for: a stalled connection has had its time, and a cancel none.
bool hasNoTimeLeft(const Error& error) { return error.number == transferCancelled || error.number == transferSilence; }

}  // namespace

Result<DataEnd> withData(FtpSession& session, const std::string& command,
                         const std::function<Result<>(Wire& wire, Patience& patience)>& use, Patience& patience) {
  auto data = FtpData::prepare(session, patience);
  if (!data) return fail(data.error());
  if (auto begun = beginTransfer(session, command, patience); !begun) return fail(begun.error());
  auto wire = data->open(session, patience);
  *data = {};
  const Result<> used = useToItsEnd(wire, use, patience);
  if (!used && hasNoTimeLeft(used.error())) return fail(used.error());
  const auto closing = session.control.finalReply(patience);
  if (!closing) return fail(used ? closing.error() : used.error());
  if (closing->isRefusal()) return replyFailure(*closing);
  if (!used) return fail(used.error());
  return wire->wasReset() ? DataEnd::Reset : DataEnd::Closed;
}

}  // namespace kv
