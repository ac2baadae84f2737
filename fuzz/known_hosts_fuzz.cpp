// The keys of SSH servers: a file that users edit and that other programs write, and the key that a server shows. A key
// is known exactly when a line has it, and what was remembered is found again, whatever else the file says.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/files/files.h"
#include "platform/transfer/protocols/known_hosts.h"

namespace {

void requireHosts(bool holds) {
  if (!holds) std::abort();
}

constexpr const char* knownHostsPath = "/dev/shm/korvane-known-hosts-fuzz";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const kv::HostKey shown(bytes);
  requireHosts(shown.type().size() <= bytes.size() && shown.fingerprint().size() == 50);
  kv::ignore(kv::writeBytes(knownHostsPath, bytes), "it would be read as empty");
  auto known = kv::KnownHosts::read(knownHostsPath);
  requireHosts(known.has_value());
  const kv::HostKey key(std::string("\0\0\0\x0bssh-ed25519abc", 18));
  const std::string host = kv::knownHostName("Host.example", "2222");
  const auto before = known->standingOf(host, key);
  requireHosts(before != kv::KnownHosts::Standing::Unknown || known->typesOf(host).empty());
  requireHosts(known->remember(host, key).has_value());
  requireHosts(known->standingOf(host, key) == kv::KnownHosts::Standing::Known);
  const auto again = kv::KnownHosts::read(knownHostsPath);
  requireHosts(again && again->standingOf(host, key) == kv::KnownHosts::Standing::Known);
  return 0;
}
