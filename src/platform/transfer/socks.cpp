#include "platform/transfer/socks.h"

#include <arpa/inet.h>

#include <array>

#include "platform/transfer/transfer.h"

namespace kv {
namespace {

constexpr std::size_t longestField = 255;  // each length is one byte

char byteOf(unsigned value) { return static_cast<char>(static_cast<unsigned char>(value)); }

tl::unexpected<Error> socksFailure(const std::string& reason) {
  return transferFailure(transferNoConnection, "il firewall non apre la connessione: " + reason);
}

Result<std::string> readExactly(Wire& wire, std::size_t count, Patience& patience) {
  std::string bytes(count, '\0');
  std::size_t filled = 0;
  while (filled < count) {
    const auto read = wire.read(bytes.data() + filled, count - filled, patience);
    if (!read) return fail(read.error());
    if (*read == 0) return socksFailure("connessione interrotta");
    filled += *read;
  }
  return bytes;
}

std::string portBytes(std::uint16_t port) { return {byteOf(port >> 8U), byteOf(port & 255U)}; }

/// The four bytes of a number with dots; empty for a name.
std::string fourBytes(const std::string& host) {
  in_addr number{};
  if (::inet_pton(AF_INET, host.c_str(), &number) != 1) return {};
  return {reinterpret_cast<const char*>(&number), sizeof number};
}

Result<> askSocks4(Wire& wire, const SocksRequest& request, Patience& patience) {
  const std::string number = fourBytes(request.host);
  std::string message = std::string("\x04\x01", 2) + portBytes(request.port);
  // 0.0.0.x tells the proxy that a name follows.
  message += number.empty() ? std::string("\0\0\0\1", 4) : number;
  message += request.user + '\0';
  if (number.empty()) message += request.host + '\0';
  if (auto sent = wire.write(message, patience); !sent) return sent;
  const auto answer = readExactly(wire, 8, patience);
  if (!answer) return fail(answer.error());
  if ((*answer)[0] != '\0') return socksFailure("non è un proxy SOCKS 4");
  if (byteOf(90) != (*answer)[1]) return socksFailure("richiesta rifiutata");
  return {};
}

/// Name and password, which the proxy has asked for.
Result<> proveUser(Wire& wire, const SocksRequest& request, Patience& patience) {
  const std::string message = '\x01' + std::string(1, byteOf(static_cast<unsigned>(request.user.size()))) +
                              request.user + byteOf(static_cast<unsigned>(request.password.size())) + request.password;
  if (auto sent = wire.write(message, patience); !sent) return sent;
  const auto answer = readExactly(wire, 2, patience);
  if (!answer) return fail(answer.error());
  if ((*answer)[1] != '\0') return socksFailure("utente o password non validi");
  return {};
}

Result<> agreeOnMethod(Wire& wire, const SocksRequest& request, Patience& patience) {
  const std::string methods =
      request.user.empty() ? std::string("\x05\x01\x00", 3) : std::string("\x05\x02\x00\x02", 4);
  if (auto sent = wire.write(methods, patience); !sent) return sent;
  const auto answer = readExactly(wire, 2, patience);
  if (!answer) return fail(answer.error());
  if ((*answer)[0] != '\x05') return socksFailure("non è un proxy SOCKS 5");
  if ((*answer)[1] == '\x02' && !request.user.empty()) return proveUser(wire, request, patience);
  if ((*answer)[1] != '\0') return socksFailure("richiede un utente e una password");
  return {};
}

std::string socks5Reason(char code) {
  constexpr std::array<const char*, 9> reasons{"",
                                               "errore del proxy",
                                               "richiesta non consentita",
                                               "rete non raggiungibile",
                                               "host non raggiungibile",
                                               "connessione rifiutata",
                                               "tempo scaduto",
                                               "comando non ammesso",
                                               "tipo di indirizzo non ammesso"};
  const auto index = static_cast<unsigned char>(code);
  return index < reasons.size() ? reasons.at(index) : "errore " + std::to_string(index);
}

/// The rest of the answer: the address from which the proxy connects, which nobody needs.
Result<> skipAddress(Wire& wire, char kind, Patience& patience) {
  std::size_t size = 4;
  if (kind == '\x04') size = 16;
  if (kind == '\x03') {
    const auto length = readExactly(wire, 1, patience);
    if (!length) return fail(length.error());
    size = static_cast<unsigned char>((*length)[0]);
  }
  const auto rest = readExactly(wire, size + 2, patience);
  if (!rest) return fail(rest.error());
  return {};
}

std::string socks5Address(const std::string& host) {
  if (const std::string number = fourBytes(host); !number.empty()) return '\x01' + number;
  in6_addr number{};
  if (::inet_pton(AF_INET6, host.c_str(), &number) == 1) {
    return '\x04' + std::string(reinterpret_cast<const char*>(&number), sizeof number);
  }
  return '\x03' + std::string(1, byteOf(static_cast<unsigned>(host.size()))) + host;
}

Result<> askSocks5(Wire& wire, const SocksRequest& request, Patience& patience) {
  if (auto agreed = agreeOnMethod(wire, request, patience); !agreed) return agreed;
  const std::string message = std::string("\x05\x01\x00", 3) + socks5Address(request.host) + portBytes(request.port);
  if (auto sent = wire.write(message, patience); !sent) return sent;
  const auto answer = readExactly(wire, 4, patience);
  if (!answer) return fail(answer.error());
  if ((*answer)[0] != '\x05') return socksFailure("risposta non valida");
  if ((*answer)[1] != '\0') return socksFailure(socks5Reason((*answer)[1]));
  return skipAddress(wire, (*answer)[3], patience);
}

}  // namespace

Result<> askSocks(Wire& wire, const SocksRequest& request, Patience& patience) {
  for (const std::string* field : {&request.host, &request.user, &request.password}) {
    if (field->size() > longestField) return socksFailure("un nome o una password è troppo lungo");
  }
  return request.kind == FirewallKind::Socks4 ? askSocks4(wire, request, patience) : askSocks5(wire, request, patience);
}

}  // namespace kv
