#pragma once
// The fifteen payment modules as one table: the account keys of conf.ini in their order, the constants among them, the
// placeholders of the templates and the scripts that are filled.

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace kv {

/// What an account key holds, and how the merchant enters it.
enum class KeyRole {
  Text,      ///< one line
  Secret,    ///< one line, hidden on the screen
  Lines,     ///< a text of several lines; on one line of conf.ini
  Constant,  ///< always the same value
  Service,   ///< address of the service: that of production, or the test address while that is switched on
  Test,      ///< the test address
  Default,   ///< one line; a constant as long as it is empty
  Moment,    ///< "I" (Immediata) or "D" (Differita)
  Flag,      ///< "1" or "0"
  Prefix,    ///< a Flag that some test addresses don't offer
  Currency,  ///< one of `paypalCurrencies`
  Language,  ///< "idlan=1" or empty
  Terminal   ///< one line, trimmed; "1" on opening when empty
};

/// One account key.
struct AccountKey {
  std::string_view key;
  KeyRole role = KeyRole::Text;
  std::string_view caption = {};   ///< of its field
  std::string_view constant = {};  ///< of a Constant or a Default
  bool needed = false;             ///< without it the module can't take a payment
};

/// One module.
struct GatewayModule {
  std::string_view folder;  ///< its name
  std::string_view dialog;  ///< name of its dialog
  std::vector<AccountKey> keys;
  std::vector<std::string_view> placeholders;  ///< keys, in the order in which they are replaced
  std::vector<std::string_view> scripts;       ///< names without extension: <name>.new becomes <name>.php
  std::string_view column = {};                ///< of `generale` that holds the text as well; mostly empty

  // Of a module with a test server; empty for the others.
  std::string_view production = {};  ///< address of the service
  std::string_view testServer = {};  ///< its test address
  std::string_view oldServer = {};   ///< what that was in the past

  /// Whether the merchant can switch to a test address.
  bool hasTest() const { return !production.empty(); }
  /// Whether it is the module with three security modes.
  bool hasModes() const { return folder == "Banca Sella"; }
  /// Whether a button empties the secret keys.
  bool canEmptySecrets() const { return folder == "Cartafacile" || folder == "Telepay Light"; }
  const AccountKey* find(std::string_view key) const;
};

/// The modules by number, 0 to 14, in the order of paymentModules.
std::span<const GatewayModule> gatewayModules();

/// What a Paypal account can be paid in.
inline constexpr std::string_view paypalCurrencies[]{"EUR", "GBP", "CAD", "JPY", "USD"};

/// The security modes of Banca Sella.
enum class SellaMode { Crypt, Otp, Compatible };
/// What a mode comes to.
struct SellaModeRow {
  std::string_view caption;
  std::string_view start;   ///< script of "php(default)"
  std::string_view answer;  ///< script of "php"
  bool isFilled = false;    ///< the answer script is filled from its template
};
/// The row of a mode.
const SellaModeRow& sellaMode(SellaMode mode);

}  // namespace kv
