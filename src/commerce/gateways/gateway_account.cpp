#include "commerce/gateways/gateway_account.h"

#include <algorithm>

#include "commerce/gateways/payment_modules.h"
#include "commerce/shipping/single_row.h"
#include "platform/files/files.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::string_view lineBreak = "\r\n";
constexpr std::string_view languageSwitch = "idlan=1";

std::string withoutBreaks(std::string_view text) {
  std::string line(text);
  std::erase_if(line, [](char character) { return character == '\r' || character == '\n'; });
  return line;
}

/// "I" or "D", by the first character of a value in upper case.
std::string momentOf(std::string_view value) { return value.starts_with('I') || value.starts_with('i') ? "I" : "D"; }

std::string currencyOf(const std::string& value) {
  const bool known = std::ranges::find(paypalCurrencies, value) != std::end(paypalCurrencies);
  return known ? value : std::string(paypalCurrencies[0]);
}

/// What the field of a key shows of its value in conf.ini.
std::string shownValue(const AccountKey& key, const std::string& value) {
  switch (key.role) {
    case KeyRole::Lines:
      return textOfOneLine(value);
    case KeyRole::Default:
      return value.empty() ? std::string(key.constant) : value;
    case KeyRole::Moment:
      return momentOf(value);
    case KeyRole::Flag:
    case KeyRole::Prefix:
      return value == "1" ? "1" : "0";
    case KeyRole::Currency:
      return currencyOf(value);
    case KeyRole::Language:
      return value.empty() ? "0" : "1";
    case KeyRole::Terminal:
      return trim(value).empty() ? "1" : value;
    default:
      return value;
  }
}

/// The shop's conf.ini of a module; nothing when it can't be read.
std::optional<std::string> settingsText(const std::string& shopFolder, std::string_view moduleFolder) {
  const auto folder = findEntry(entryPath(shopFolder, "code"), moduleFolder);
  const auto file = folder ? findEntry(*folder, "conf.ini") : std::nullopt;
  if (!file) return std::nullopt;
  auto text = readText(*file);
  return text ? std::optional<std::string>(std::move(*text)) : std::nullopt;
}

}  // namespace

std::string textOnOneLine(std::string_view text) {
  return replaceAll(replaceAll(replaceAll(text, lineBreak, "||"), "\r", "|"), "\n", "|");
}

std::string textOfOneLine(std::string_view line) {
  return replaceAll(replaceAll(replaceAll(line, "||", "\n"), "|", "\n"), "\n", lineBreak);
}

GatewayAccount GatewayAccount::load(Session& session, const GatewayModule& module) {
  GatewayAccount account;
  account.module_ = &module;
  for (const AccountKey& key : module.keys) account.values_[std::string(key.key)] = shownValue(key, "");
  const auto text = settingsText(session.ShopFolder, module.folder);
  account.found_ = text.has_value();
  if (account.found_) {
    for (const auto& [key, value] : parseModuleSettings(*text)) account.readSetting(key, value);
  }
  if (module.hasTest()) account.readAddresses();
  if (!module.column.empty()) account.readColumn(session.catalogue);
  return account;
}

void GatewayAccount::readColumn(Database& catalogue) {
  std::string& info = values_["info"];
  fromColumn_ = info.empty();
  const auto column = readSingle(catalogue, "generale", module_->column);
  if (!column || (isNull(*column) && !fromColumn_)) return;
  std::string text = asText(*column);
  // OK stores the text in both, so that one of the column that differs was stored after it.
  if (textOfOneLine(textOnOneLine(text)) != info) info = std::move(text);
}

bool GatewayAccount::isModeKey(std::string_view key, std::string_view value) {
  if (!module_->hasModes()) return false;
  if (key == "pwd") return true;  // a key of the past
  for (const SellaMode mode : {SellaMode::Crypt, SellaMode::Otp, SellaMode::Compatible}) {
    if (key == "php" && value == sellaMode(mode).answer) return true;
    if (key != "php(default)" || value != sellaMode(mode).start) continue;
    mode_ = mode;
    return true;
  }
  return false;
}

void GatewayAccount::readSetting(std::string_view key, const std::string& value) {
  if (isModeKey(key, value)) return;
  if (const AccountKey* row = module_->find(key)) {
    values_[std::string(key)] = shownValue(*row, value);
  } else {
    kept_.append(key).append("=").append(value).append(lineBreak);
  }
}

void GatewayAccount::readAddresses() {
  const auto present = [this](const std::string& address) {
    return address.starts_with(module_->oldServer) ? std::string(module_->testServer) : address;
  };
  const std::string url = value("url");
  testAddress_ = present(value("test"));
  // A module that was never set up has no address yet.
  usesTest_ = !url.empty() && url != module_->production;
  if (usesTest_) testAddress_ = present(url);
}

std::string GatewayAccount::value(std::string_view key) const {
  const auto found = values_.find(key);
  return found == values_.end() ? std::string() : found->second;
}

void GatewayAccount::setValue(std::string_view key, std::string_view text) {
  const AccountKey* row = module_->find(key);
  if (row == nullptr) return;
  values_[std::string(key)] = row->role == KeyRole::Lines ? std::string(text) : withoutBreaks(text);
  if (row->role == KeyRole::Lines) fromColumn_ = false;
}

void GatewayAccount::setUsesTest(bool on) { usesTest_ = on; }

void GatewayAccount::setTestAddress(std::string_view text) { testAddress_ = withoutBreaks(text); }

bool GatewayAccount::canPrefixOrder() const {
  if (!usesTest_) return true;
  // The scheme and host of the operator's test address.
  const auto path = module_->testServer.find('/', std::string_view("https://").size());
  return testAddress_.starts_with(module_->testServer.substr(0, path + 1));
}

SellaAddresses GatewayAccount::addresses(const std::string& shopAddress) const {
  std::string script = shopAddress;
  if (!script.ends_with('/')) script += '/';
  script.append(sellaMode(mode_).answer).append(".php");
  return {mode_ == SellaMode::Compatible ? std::string() : script, script + "?c=payok", script + "?c=payerr"};
}

void GatewayAccount::emptySecrets() {
  for (const AccountKey& key : module_->keys) {
    if (key.role == KeyRole::Secret) values_[std::string(key.key)].clear();
  }
}

bool GatewayAccount::isComplete() const {
  return found_ && !fromColumn_ && std::ranges::all_of(module_->keys, [this](const AccountKey& key) {
           return !key.needed || !trim(value(key.key)).empty();
         });
}

std::string GatewayAccount::stored(const AccountKey& key) const {
  std::string held = value(key.key);
  switch (key.role) {
    case KeyRole::Constant:
      return std::string(key.constant);
    case KeyRole::Service:
      return usesTest_ ? testAddress_ : std::string(module_->production);
    case KeyRole::Test:
      return testAddress_;
    case KeyRole::Default:
      return held.empty() ? std::string(key.constant) : held;
    case KeyRole::Prefix:
      return canPrefixOrder() && held == "1" ? "1" : "0";
    case KeyRole::Language:
      return held == "1" ? std::string(languageSwitch) : std::string();
    case KeyRole::Terminal:
      return std::string(trim(held));
    default:
      return held;
  }
}

std::vector<GatewayState> gatewayStates(Session& session) {
  std::vector<std::string> used;
  for (const char digit : {'1', '2', '3', '4'}) {
    const auto active = readSingle(session.catalogue, "pagamento", std::string("attivo") + digit);
    const auto name = readSingle(session.catalogue, "pagamento", std::string("metodo") + digit);
    if (active && name && asFlag(*active)) used.push_back(foldCase(asText(*name)));
  }
  std::vector<GatewayState> states;
  for (const GatewayModule& module : gatewayModules()) {
    const auto file = moduleSettings(session.ShopFolder, module.folder);
    const bool isComplete = std::ranges::all_of(module.keys, [&file](const AccountKey& key) {
      return !key.needed || std::ranges::any_of(file, [&key](const ModuleSetting& setting) {
        return setting.first == key.key && !trim(setting.second).empty();
      });
    });
    const bool inUse = std::ranges::find(used, foldCase(module.folder)) != used.end();
    states.push_back(isComplete ? GatewayState::Configured
                                : (inUse ? GatewayState::InUseToConfigure : GatewayState::ToConfigure));
  }
  return states;
}

std::vector<std::string_view> modulesToConfirm(Session& session) {
  std::vector<std::string_view> names;
  for (const GatewayModule& module : gatewayModules()) {
    const GatewayAccount account = GatewayAccount::load(session, module);
    if (!account.isUpToDate(session.ShopFolder)) names.push_back(module.folder);
  }
  return names;
}

std::string_view gatewayStateText(GatewayState state) {
  switch (state) {
    case GatewayState::Configured:
      return "configurato";
    case GatewayState::ToConfigure:
      return "da configurare";
    default:
      return "in uso, da configurare";
  }
}

}  // namespace kv
