#include "commerce/gateways/gateway_table.h"

#include <algorithm>
#include <array>

namespace kv {
namespace {

using enum KeyRole;

// The addresses of the services are the operators' to name; these are reserved for documents (RFC 2606).
constexpr std::string_view euroNumber = "978";  // ISO 4217
constexpr std::string_view sellaEuro = "242";   // the bank's own code of the euro
constexpr std::string_view cents = "importo = Math.round(importo1 * 100);";

constexpr AccountKey merchantCode{"mid", Text, "&Codice esercente:", {}, true};

/// The keys that Bankpass, Telepay and Cartafacile have in common, up to the secrets.
std::vector<AccountKey> signedKeys() {
  return {merchantCode,
          {"val", Constant, {}, euroNumber},
          {"url", Service},
          {"java", Constant, {}, cents},
          {"ss1", Secret, "Chiave segreta di &avvio:", {}, true},
          {"ss2", Secret, "Chiave segreta di &esito:", {}, true}};
}

constexpr AccountKey orderPrefix{"cod", Prefix, "Codice &ordine preceduto da un testo"};

GatewayModule signedModule(std::string_view folder, std::string_view dialog) {
  GatewayModule module{folder, dialog, signedKeys(), {"mid", "val", "url", "ss1", "ss2", "java", "cod"}, {}};
  module.keys.push_back(orderPrefix);
  return module;
}

GatewayModule telepay() {
  GatewayModule module = signedModule("Telepay Light", "frmPG_Telepay");
  module.scripts = {"telepay", "tlurlms"};
  module.production = "https://pagamenti.telepay.example/avvio";
  module.testServer = "https://prova.telepay.example/avvio";
  module.oldServer = "https://test.telepay.example/";
  return module;
}

GatewayModule cartafacile() {
  GatewayModule module = signedModule("Cartafacile", "frmPG_Cartafacile");
  module.scripts = {"cartafacile", "cfurlms"};
  module.production = "https://pagamenti.cartafacile.example/avvio";
  module.testServer = "https://prova.cartafacile.example/avvio";
  module.oldServer = "https://test.cartafacile.example/";
  return module;
}

GatewayModule bankpass() {
  GatewayModule module{"Bankpass",
                       "frmPG_Bankpass",
                       signedKeys(),
                       {"mid", "val", "url", "ss1", "ss2", "con", "aut", "java", "cod"},
                       {"bankpass", "bpurlms"}};
  module.keys.push_back({"con", Moment, "Contabilizzazione"});
  module.keys.push_back({"aut", Moment, "Autorizzazione"});
  module.keys.push_back(orderPrefix);
  module.keys.push_back({"test", Test});
  module.production = "https://pagamenti.bankpass.example/avvio";
  module.testServer = "https://prova.bankpass.example/avvio";
  module.oldServer = "https://test.bankpass.example/";
  return module;
}

GatewayModule sella() {
  return {"Banca Sella",
          "frmPG_Sella",
          {merchantCode,
           {"val", Constant, {}, sellaEuro},
           {"lan", Language, "Invia dati &lingua"},
           {"tid", Terminal, "Numero di &terminale:"}},
          {"mid", "tid", "val", "lan"},
          {}};
}

GatewayModule cilme() {
  return {"Cilme",
          "frmPG_Cilme",
          {merchantCode,
           {"val", Constant, {}, "EUR"},
           {"java", Constant, {}, cents},
           {"alias", Text, "A&lias:"},
           {"newsys", Flag, "Usa il &nuovo sistema"}},
          {"mid", "val", "java", "alias"},
          {}};
}

/// A module that needs the merchant's code alone.
GatewayModule plain(std::string_view folder, std::string_view dialog) {
  return {folder, dialog, {merchantCode}, {"mid"}, {}};
}

/// An offline method: a text of the shop.
GatewayModule offline(std::string_view folder, std::string_view dialog, std::string_view column) {
  return {folder, dialog, {{"info", Lines, "&Informazioni per il cliente:", {}, true}}, {"info"}, {}, column};
}

GatewayModule paypal() {
  return {"Paypal",
          "frmPG_PayPal",
          {{"mid", Text, "&Conto (indirizzo e-mail):", {}, true}, {"val", Currency, "&Valuta:"}},
          {"mid", "val"},
          {}};
}

GatewayModule omnipay() {
  return {"Omnipay",
          "frmPG_Omnipay",
          {{"sto", Text, "&Codice negozio:", {}, true}, {"key", Secret, "C&hiave:", {}, true}},
          {"sto", "key"},
          {"omniend"}};
}

GatewayModule cariverona() {
  return {"Cariverona",
          "frmPG_Cariverona",
          {{"ncom", Text, "&Codice esercente:", {}, true},
           {"ncto", Text, "Numero di con&to:"},
           {"user", Text, "&Utente:"},
           {"pass", Secret, "&Password:"},
           {"segr", Secret, "Chiave &segreta:", {}, true}},
          {"ncom", "ncto", "user", "pass", "segr"},
          {"cariverona"}};
}

GatewayModule sysPay() {
  return {"SysPay",
          "frmPG_SysPay",
          {merchantCode,
           {"rec", Secret, "Chiave delle &ricevute:", {}, true},
           {"url", Default, "&Indirizzo del servizio:", "https://pagamenti.syspay.example/avvio"},
           {"dev", Default, "Indirizzo di pro&va:", "https://prova.syspay.example/avvio"}},
          {"mid", "rec", "url", "dev"},
          {"syspay"}};
}

}  // namespace

const AccountKey* GatewayModule::find(std::string_view key) const {
  const auto found = std::ranges::find(keys, key, &AccountKey::key);
  return found == keys.end() ? nullptr : &*found;
}

std::span<const GatewayModule> gatewayModules() {
  static const std::array<GatewayModule, 15> modules{telepay(),
                                                     sella(),
                                                     plain("AuthorizeNet", "frmPG_AuthorizeNet"),
                                                     plain("Planet Payment", "frmPG_PlanetPayment"),
                                                     offline("Contrassegno", "frmPG_Contrassegno", "contrassegno"),
                                                     offline("Pagamento anticipato", "frmPG_Anticipato", "anticipato"),
                                                     cilme(),
                                                     cartafacile(),
                                                     omnipay(),
                                                     paypal(),
                                                     plain("Consorzio Triveneto", "frmPG_Triveneto"),
                                                     plain("Shopla", "frmPG_Shopla"),
                                                     cariverona(),
                                                     bankpass(),
                                                     sysPay()};
  return modules;
}

const SellaModeRow& sellaMode(SellaMode mode) {
  static constexpr std::array<SellaModeRow, 3> rows{{{"Crittografia (GestPayCrypt)", "gestpaycrypt", "s2scrypt", true},
                                                     {"One Time Password (GestPayOTP)", "gestpayotp", "s2sotp", true},
                                                     {"Compatibile", "gestpaycomp", "s2scomp", false}}};
  return rows[static_cast<std::size_t>(mode)];
}

}  // namespace kv
