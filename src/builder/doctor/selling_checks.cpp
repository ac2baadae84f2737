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

/// Whether a payment module needs a shop under https. The services of all others call a script of the shop, or send the
/// buyer back to one with the outcome, and refuse plain addresses; these have no service, and send the data nowhere.
bool needsHttps(std::string_view gateway) {
  return !gateway.empty() && !equalsIgnoringCase(gateway, "Contrassegno") &&
         !equalsIgnoringCase(gateway, "Pagamento anticipato");
}

/// Where a duty is met; one without a field is shown in its list.
FindingTarget targetOf(const DutyTarget& duty) {
  switch (duty.subject) {
    case DutySubject::Settings:
      return {FindingSubject::Settings, "", duty.column, duty.language, 0};
    case DutySubject::Article:
      return {FindingSubject::Article, std::to_string(duty.article), duty.column, duty.language, 0};
    case DutySubject::Command:
      return {FindingSubject::Command, duty.command, "", 1, 0};
    case DutySubject::Nothing:
      break;
  }
  return {FindingSubject::Command, "legalDuties", "", 1, 0};
}

/// A sentence as a finding has it.
std::string withoutPoint(std::string text) {
  if (text.ends_with('.')) text.pop_back();
  return text;
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

Findings findLegalDuties(const DoctorFacts& facts) {
  Findings found;
  for (const LegalDuty& duty : facts.duties) {
    if (duty.state != DutyState::Missing) continue;
    // Without a template nothing of its pages is worth telling.
    if (!facts.hasTemplate && duty.target.command == "template") continue;
    Finding finding;
    finding.text = "Requisiti di legge, " + duty.title + ": " + withoutPoint(duty.text);
    finding.detail = duty.title;
    finding.target = targetOf(duty.target);
    found.push_back(std::move(finding));
  }
  return found;
}

Findings findUnfinishedPayments(const DoctorFacts& facts) {
  Findings found;
  for (const std::string& name : facts.unfinishedPayments) {
    found.push_back(
        commandFinding("Metodo di pagamento " + name + ": è in uso, ma non è ancora configurato", "payment", name));
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
    if (!isSwitchedOn(facts.pagamento, method) || !needsHttps(gateway)) continue;
    return {settingFinding("Negozio: il pagamento con " + gateway + " richiede un indirizzo che comincia con https://",
                           "URL")};
  }
  return {};
}

}  // namespace kv
