#pragma once
// The shop of one command of korvane-cli.

#include <string>

#include "store/shop/session.h"

namespace kv {

/// A session that ends with the command.
class CliSession {
 public:
  /// Nothing is open yet. `env` outlives the object.
  explicit CliSession(Environment& env);
  CliSession(const CliSession&) = delete;
  CliSession& operator=(const CliSession&) = delete;
  ~CliSession();

  /// Opens a shop. False when that is not possible; the user knows why.
  bool open(const std::string& shop);
  /// Whether the shop has a template that is installed.
  bool hasTemplate() const;

  Session session;

 private:
  Environment& env_;
};

}  // namespace kv
