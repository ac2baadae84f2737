#include "builder/facts/shop_facts.h"

#include "builder/checkout/server_settings.h"
#include "builder/page/page_tags.h"
#include "builder/values/link_naming.h"
#include "commerce/shipping/currency_form.h"
#include "platform/files/files.h"
#include "store/shop/shop_folders.h"

namespace kv {

namespace {

constexpr std::string_view pageExtension = ".php";

ShowcaseSettings showcaseSettings(const FieldRow& generale) {
  ShowcaseSettings settings;
  settings.listCode = generale.flag("elenco_codice");
  settings.listTitle = generale.flag("elenco_titolo");
  settings.listSubtitle = generale.flag("elenco_sottotitolo");
  settings.listPhoto = generale.flag("elenco_foto");
  settings.columns = showcaseColumns(generale.number("colonnevetrina"));
  settings.align = generale.text("vetalign");
  settings.alignStyle = generale.text("vetalignstyle");
  settings.fontSize = generale.text("vetsize");
  settings.options = static_cast<int>(generale.integer("vetopzioni"));
  settings.singleArticle = generale.flag("singleitem_vet");
  return settings;
}

void readProgramSettings(ShopFacts& facts, const Settings& settings) {
  facts.html.entities = settings.get(settingsSection, "MacCodes") != "off";
  facts.newPhpNames = settings.get(settingsSection, "PHP4.1VARS") == "1";
  facts.hasMenuXml = settings.get(settingsSection, "XMLmenu") != "0";
}

// What follows from the settings of the shop alone.
void deriveFacts(ShopFacts& facts) {
  const FieldRow& generale = facts.generale;
  if (areCustomTagsOn(generale.text("personaltags")))
    facts.custom = CaricaTagPersonali(facts.folders.shop, facts.applicationFolder);
  facts.shopNumber = shopNumber(URLNegozio(generale));
  facts.factor = shopFactor(generale.text("sconto"));
  facts.redirectScript = MakeRedirect(generale);
  facts.phpGlobals = phpGlobals(generale, CurrencyForm(generale), facts.factor, facts.templateFolder);
  facts.showcase = showcaseSettings(generale);
  facts.order = {generale.flag("regobbl"), generale.flag("regprices"), generale.flag("reglist")};
}

}  // namespace

SiteFolders siteFolders(const Session& session) {
  return {session.ShopFolder, session.onlineFolder, session.scriptFolder};
}

ShopLanguages shopLanguages(const Session& session, const std::string& applicationFolder) {
  ShopLanguages languages;
  languages.count = session.languageCount;
  languages.codes = session.languageNames;
  languages.languagesFolder = entryPath(applicationFolder, languagesFolder);
  languages.pageExtension = pageExtension;
  languages.flags = readFlagSizes(languages);
  return languages;
}

Result<ShopFacts> readShopFacts(Session& session, const Environment& env, const std::string& token) {
  auto generale = firstRow(session.catalogue, SelezionaLingua("generale", 1));
  if (!generale) return fail(generale.error());
  const auto payment = firstRow(session.catalogue, "SELECT * FROM pagamento");
  if (!payment) return fail(payment.error());
  ShopFacts facts;
  facts.folders = siteFolders(session);
  facts.applicationFolder = env.applicationFolder;
  facts.templateFolder = joinPath(env.applicationFolder, session.templatePath);
  facts.languages = shopLanguages(session, env.applicationFolder);
  facts.token = token;
  facts.generale = std::move(*generale);
  facts.shippingVat = payment->single("ivaspese") / 100.0F;
  readProgramSettings(facts, env.settings);
  deriveFacts(facts);
  return facts;
}

}  // namespace kv
