#include "platform/transfer/address.h"

#include <arpa/inet.h>
#include <netdb.h>

#include <array>
#include <charconv>
#include <cstring>
#include <memory>
#include <utility>

#include "platform/transfer/transfer.h"

namespace kv {
namespace {

/// A question to the name service. It must live until the service has answered.
struct Lookup {
  std::string host, port;
  addrinfo hints{};
  gaicb request{};
};

using AddressList = std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)>;

addrinfo lookupHints(int flags) {
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = flags;
  return hints;
}

Result<std::vector<SocketAddress>> takeAddresses(addrinfo* first) {
  const AddressList owned(first, &::freeaddrinfo);
  std::vector<SocketAddress> found;
  for (const addrinfo* one = first; one != nullptr; one = one->ai_next) {
    if (one->ai_addrlen > sizeof(sockaddr_storage)) continue;
    SocketAddress address;
    std::memcpy(&address.bytes, one->ai_addr, one->ai_addrlen);
    address.size = one->ai_addrlen;
    found.push_back(address);
  }
  return found;
}

/// Leaves a question that can't be withdrawn to the name service, which still writes into it.
void abandon(std::unique_ptr<Lookup> lookup) {
  static std::vector<std::unique_ptr<Lookup>> abandoned;
  abandoned.push_back(std::move(lookup));
}

Result<std::vector<SocketAddress>> notFound(const std::string& host, int number) {
  if (number == EAI_SERVICE) return transferFailure(transferNoConnection, "porta non valida");
  return transferFailure(transferNoConnection, "l'host '" + host + "' non esiste o non è raggiungibile");
}

/// Asks the name service in the background of the C library, so that a slow one doesn't stop the caller's events.
Result<std::vector<SocketAddress>> askNameService(const std::string& host, const std::string& port,
                                                  Patience& patience) {
  auto lookup = std::make_unique<Lookup>();
  lookup->host = host;
  lookup->port = port;
  lookup->hints = lookupHints(AI_ADDRCONFIG);
  lookup->request.ar_name = lookup->host.c_str();
  lookup->request.ar_service = lookup->port.c_str();
  lookup->request.ar_request = &lookup->hints;
  gaicb* request = &lookup->request;
  if (const int refused = ::getaddrinfo_a(GAI_NOWAIT, &request, 1, nullptr); refused != 0) {
    return notFound(host, refused);
  }
  const timespec step{0, Patience::step * 1'000'000L};
  while (::gai_error(request) == EAI_INPROGRESS) {
    const gaicb* const waiting = request;
    ignore(::gai_suspend(&waiting, 1, &step), "the state is asked for itself");
    if (auto paused = patience.pause(); !paused) {
      if (::gai_cancel(request) != EAI_CANCELED) abandon(std::move(lookup));
      return fail(paused.error());
    }
  }
  if (const int failed = ::gai_error(request); failed != 0) return notFound(host, failed);
  return takeAddresses(request->ar_result);
}

}  // namespace

const sockaddr* SocketAddress::get() const { return reinterpret_cast<const sockaddr*>(&bytes); }
sockaddr* SocketAddress::get() { return reinterpret_cast<sockaddr*>(&bytes); }

std::uint16_t SocketAddress::port() const {
  // The port has the same position in both kinds of address.
  return ntohs(reinterpret_cast<const sockaddr_in*>(&bytes)->sin_port);
}

void SocketAddress::setPort(std::uint16_t port) { reinterpret_cast<sockaddr_in*>(&bytes)->sin_port = htons(port); }

bool SocketAddress::hasHostOf(const SocketAddress& other) const {
  return family() == other.family() && hostText() == other.hostText();
}

std::string SocketAddress::hostText() const {
  std::array<char, INET6_ADDRSTRLEN> text{};
  const void* host = &reinterpret_cast<const sockaddr_in*>(&bytes)->sin_addr;
  if (family() == AF_INET6) host = &reinterpret_cast<const sockaddr_in6*>(&bytes)->sin6_addr;
  const char* const written = ::inet_ntop(family(), host, text.data(), static_cast<socklen_t>(text.size()));
  return written == nullptr ? std::string() : std::string(written);
}

Result<std::vector<SocketAddress>> resolve(const std::string& host, const std::string& port, Patience& patience) {
  if (host.empty()) return transferFailure(transferNoConnection, "manca il nome dell'host");
  const addrinfo hints = lookupHints(AI_NUMERICHOST);
  addrinfo* first = nullptr;
  const int failed = ::getaddrinfo(host.c_str(), port.c_str(), &hints, &first);
  if (failed == 0) return takeAddresses(first);
  if (failed != EAI_NONAME) return notFound(host, failed);
  return askNameService(host, port, patience);
}

std::optional<std::uint16_t> portNumber(const std::string& text) {
  std::uint16_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number == 0) return std::nullopt;
  return number;
}

}  // namespace kv
