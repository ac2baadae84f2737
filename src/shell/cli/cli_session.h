#pragma once
// The shop that a command of korvane-cli works on, open for as long as the command takes.

#include <string>

#include "store/shop/session.h"

namespace kv {

/// A session that ends with the command. A restart of it opens the same shop again, whatever the user's current one.
class CliSession {
 public:
  /// `env` outlives it; its hook `reload` is set meanwhile.
  explicit CliSession(Environment& env);
  CliSession(const CliSession&) = delete;
  CliSession& operator=(const CliSession&) = delete;
  ~CliSession();

  /// False when the shop could not be opened; the user knows why.
  bool open(const std::string& shop);
  /// Opens the catalogue for reading alone: nothing is brought up to date. False as open().
  bool openToLook(const std::string& shop);
  /// Whether the shop has a template that is installed.
  bool hasTemplate() const;

  Session session;

 private:
  bool isShop(const std::string& shop);  // tells why it is none
  Environment& env_;
};

}  // namespace kv
