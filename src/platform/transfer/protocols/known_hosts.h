#pragma once
// The keys by which servers of SSH are known again: one file of this user, in the form of OpenSSH's known_hosts. A
// server's key is remembered once the user has accepted it; from then on another key is refused.
// Source: sshd(8), "SSH_KNOWN_HOSTS FILE FORMAT". Markers and hashed names are lines of nobody.

#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/result.h"

namespace kv {

/// A public key as SSH sends it: its type is named within (RFC 4253, section 6.6).
class HostKey {
 public:
  explicit HostKey(std::string bytes) : bytes_(std::move(bytes)) {}
  /// "ssh-ed25519"; empty when the bytes are no key.
  std::string type() const;
  /// The key as lines of the file hold it.
  std::string base64() const;
  /// "SHA256:" and the digest in base 64 without "=", as ssh-keygen shows it.
  std::string fingerprint() const;
  bool operator==(const HostKey& other) const { return bytes_ == other.bytes_; }

 private:
  std::string bytes_;
};

/// A server as lines of the file name it: "host", or "[host]:port" where the port isn't 22; in lower case.
std::string knownHostName(std::string_view host, std::string_view port);

/// The keys of servers that the user has trusted, one a line.
class KnownHosts {
 public:
  /// What is known of a server's key.
  enum class Standing {
    Unknown,  ///< no key of the server is remembered
    Known,    ///< this key is
    Changed   ///< others are
  };

  /// Reads the file; none is an empty list. Failures as readBytes: then nobody can say who is known.
  static Result<KnownHosts> read(std::string path);
  /// Compares a key with those of its server.
  Standing standingOf(const std::string& host, const HostKey& key) const;
  /// The types of a server's remembered keys, in the order of the lines.
  std::vector<std::string> typesOf(const std::string& host) const;
  /// Adds a line to the file, which its owner alone can read; its folder is made. Failures as writeBytes, and the old
  /// file stays.
  Result<> remember(const std::string& host, const HostKey& key);

 private:
  struct Line {
    std::string hosts;  // one or more names, "," between
    std::string type, base64;
  };
  /// The lines of a file that hold a key; others are passed over.
  static std::vector<Line> linesOf(std::string_view text);
  /// The lines of one server.
  std::vector<const Line*> linesAbout(const std::string& host) const;
  std::string path_, text_;
  std::vector<Line> lines_;
};

/// The file of this user, beside the settings: $XDG_CONFIG_HOME/korvane/known_hosts, else
/// ~/.config/korvane/known_hosts.
std::string userKnownHostsPath();

}  // namespace kv
