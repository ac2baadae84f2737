// The checks of shipping, payment and the settings of the server.
#include <algorithm>

#include "builder/doctor/checks.h"
#include "commerce/shipping/shipping_tables.h"
#include "platform/text/text.h"

namespace kv {
namespace {

Finding settingFinding(std::string text, std::string_view column) {
  Finding finding;
  finding.text = std::move(text);
  finding.target = {FindingSubject::Settings, "", std::string(column), 1, 0};
  return finding;
}

Findings findGaps(const DoctorFacts& facts, bool isClosed) {
  Findings found;
  for (const ShippingGap& gap : facts.gaps) {
    if (gap.isClosed == isClosed) found.push_back(commandFinding(gap.text, "shipping", gap.text));
  }
  return found;
}

bool isSwitchedOn(const FieldRow& pagamento, int method) { return pagamento.flag("attivo" + std::to_string(method)); }

/// The methods that send the customer's data nowhere.
bool isOffline(std::string_view gateway) {
  return gateway.empty() || equalsIgnoringCase(gateway, "Contrassegno") ||
         equalsIgnoringCase(gateway, "Pagamento anticipato");
}

struct NeededSetting {
  std::string_view column, text;
};
constexpr NeededSetting neededSettings[]{
    {"URL", "manca l'indirizzo del sito"},
    {"email_ordini", "manca l'indirizzo e-mail a cui arrivano gli ordini"},
    {"hostname", "manca il server a cui inviare i file"},
    {"username", "manca il nome utente del server"},
    {"db_hostname", "manca il server del database"},
    {"db_username", "manca l'utente del database"},
    {"db_dbname", "manca il nome del database"},
};

}  // namespace

Findings findStrayCountries(const DoctorFacts& facts) {
  Findings found;
  for (const NamedRow& country : facts.strayCountries) {
    found.push_back(commandFinding("Paese " + country.name + ": non ha una zona, chi vi abita non può ordinare",
                                   "shipping", country.key));
  }
  return found;
}

Findings findClosedZones(const DoctorFacts& facts) { return findGaps(facts, true); }
Findings findShippingSteps(const DoctorFacts& facts) { return findGaps(facts, false); }

Findings findNoPayment(const DoctorFacts& facts) {
  for (int method = 1; method <= paymentMethods; ++method) {
    if (isSwitchedOn(facts.pagamento, method)) return {};
  }
  return {commandFinding("Nessun metodo di pagamento è attivo, nessuno può ordinare", "shipping", "")};
}

Findings findUnfinishedPayments(const DoctorFacts& facts) {
  Findings found;
  for (const std::string& name : facts.unfinishedPayments) {
    found.push_back(commandFinding("Pagamento " + name + ": è in uso, ma non è ancora configurato", "payment", name));
  }
  return found;
}

Findings findMissingSettings(const DoctorFacts& facts) {
  Findings found;
  for (const NeededSetting& setting : neededSettings) {
    if (!trim(facts.generale.text(setting.column)).empty()) continue;
    found.push_back(settingFinding("Negozio: " + std::string(setting.text), setting.column));
  }
  return found;
}

Findings findMissingScheme(const DoctorFacts& facts) {
  const std::string address(trim(facts.generale.text("URL")));
  if (address.empty() || address.find("://") != std::string::npos) return {};
  Finding finding = settingFinding("Negozio: l'indirizzo " + address + " non comincia con http:// o https://", "URL");
  finding.mending = "Scrivi http://";
  finding.writes = {{"generale", Null{}, "URL", "http://" + address}};
  return {finding};
}

Findings findPlainAddress(const DoctorFacts& facts) {
  const std::string address(trim(facts.generale.text("URL")));
  if (address.empty() || startsWithIgnoringCase(address, "https://")) return {};
  for (int method = 1; method <= paymentMethods; ++method) {
    const std::string gateway(trim(facts.pagamento.text("metodo" + std::to_string(method))));
    if (!isSwitchedOn(facts.pagamento, method) || isOffline(gateway)) continue;
    return {settingFinding("Negozio: il pagamento con " + gateway + " richiede un indirizzo che comincia con https://",
                           "URL")};
  }
  return {};
}

}  // namespace kv
