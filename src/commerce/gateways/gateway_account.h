#pragma once
// The account data of a payment module: read from its conf.ini, edited in its dialog, written to conf.ini, the
// descriptor and the scripts. The rules of the fifteen dialogs frmPG_*.

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "commerce/gateways/gateway_table.h"
#include "store/catalogue/file_edits.h"
#include "store/shop/session.h"

namespace kv {

/// The addresses that the merchant copies into the bank's back office.
struct SellaAddresses {
  std::string server;   ///< for the notice from server to server; empty: none
  std::string success;  ///< where the shopper comes back to after a payment
  std::string failure;  ///< and after none
};

/// A file as it is to be written.
struct FilledFile {
  std::string path;
  std::string text;
};

/// The account of a shop with a payment service, as its dialog edits it.
class GatewayAccount {
 public:
  /// Reads the settings of a module, which is a row of the table; without conf.ini all fields are empty. An old test
  /// address shows as the present one. The text of an offline method is that of the column of language 1 when it
  /// differs from the one in conf.ini: it was edited in its field since. A column that never had one changes nothing.
  static GatewayAccount load(Session& session, const GatewayModule& module);

  const GatewayModule& module() const { return *module_; }

  // The fields, by key: texts, and "1" or "0" of a Flag.
  /// Empty for a key without a value.
  std::string value(std::string_view key) const;
  /// Line ends are taken out of a text of one line.
  void setValue(std::string_view key, std::string_view text);

  // The test switch of a module that has one.
  bool usesTest() const { return usesTest_; }
  /// Switches to the service's test address, or back.
  void setUsesTest(bool on);
  const std::string& testAddress() const { return testAddress_; }
  /// Sets that address.
  void setTestAddress(std::string_view text);
  /// Whether the order's code can have a text before it: always in production, and on the operator's own test server.
  /// While it can't, the option is off.
  bool canPrefixOrder() const;

  // Banca Sella.
  SellaMode mode() const { return mode_; }
  void setMode(SellaMode mode) { mode_ = mode; }
  /// shopAddress: of the shop's folder on its site, with or without a slash at its end.
  SellaAddresses addresses(const std::string& shopAddress) const;

  /// cmdSvuota (empty): empties the secret keys.
  void emptySecrets();
  /// Whether all that the module needs is there.
  bool isComplete() const;

  /// OK: writes conf.ini, the descriptor and the scripts, readable by their owner alone, and the column of an offline
  /// method. A missing or unreadable conf.ini or template is no failure: it and what comes after it is not written.
  /// After a failure files and column are as before. Returns the files that have changed, for the history.
  Result<FileEdits> save(Session& session) const;
  /// Whether descriptor and scripts are what OK would write. False after the templates of a complete module were
  /// renewed or its text was edited elsewhere: neither fills anything by itself.
  bool isUpToDate(const std::string& shopFolder) const;

 private:
  /// Takes a setting of the descriptor; one that the module doesn't know is kept as it is.
  void readSetting(std::string_view key, const std::string& value);
  /// Which address is used, by the settings that were read.
  void readAddresses();
  void readColumn(Database& catalogue);  // of an offline method
  bool isModeKey(std::string_view key, std::string_view value);
  /// What a descriptor holds for a key.
  std::string stored(const AccountKey& key) const;
  std::string confText() const;  // of conf.ini
  /// Adds the descriptor and the scripts, filled; false where a template is missing, nothing after it being added.
  bool fill(const std::string& code, const std::string& folder, std::vector<FilledFile>& files) const;

  const GatewayModule* module_ = nullptr;
  bool found_ = false;       ///< there is a conf.ini
  bool fromColumn_ = false;  ///< the text of an offline method is not in conf.ini yet
  std::string kept_;         ///< the lines of other keys, with their line ends
  std::map<std::string, std::string, std::less<>> values_;
  SellaMode mode_ = SellaMode::Compatible;
  bool usesTest_ = false;
  std::string testAddress_;
};

/// How far a module is set up.
enum class GatewayState { Configured, ToConfigure, InUseToConfigure };
/// The state of each of the fifteen modules of a shop.
std::vector<GatewayState> gatewayStates(Session& session);
/// "configurato", "da configurare" or "in uso, da configurare".
std::string_view gatewayStateText(GatewayState state);

/// The complete modules whose templates were renewed, or whose text was edited in its field, so that their dialog wants
/// an OK.
std::vector<std::string_view> modulesToConfirm(Session& session);

/// A text of several lines on one line of conf.ini: CR LF as "||", a lone CR or LF as "|".
std::string textOnOneLine(std::string_view text);
/// The text that such a line holds: "||" and "|" are CR LF.
std::string textOfOneLine(std::string_view line);

}  // namespace kv
