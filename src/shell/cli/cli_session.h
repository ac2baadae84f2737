#pragma once
// The session of one command of korvane-cli: exactly the folder it was given, and nothing stored for the next start.

#include <string>

#include "store/shop/session.h"

namespace kv {

/// A session that ends with the command.
class CliSession {
 public:
  /// `env` outlives the session.
  explicit CliSession(Environment& env);
  CliSession(const CliSession&) = delete;
  CliSession& operator=(const CliSession&) = delete;
  ~CliSession();

  /// Opens the shop as the window does. False when it could not be opened; the user knows why.
  bool open(const std::string& shop);
  /// Opens the catalogue for reading alone: nothing is brought up to date. False as open().
  bool openToLook(const std::string& shop);
  /// Whether the shop's template is installed.
  bool hasTemplate() const;

  Session session;

 private:
  bool isShop(const std::string& shop);  // tells why it is none
  Environment& env_;
};

}  // namespace kv
