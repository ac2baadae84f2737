#include "builder/facts/language_facts.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "builder/checkout/server_settings.h"
#include "builder/values/link_naming.h"
#include "platform/files/files.h"
#include "platform/image/image.h"
#include "store/catalogue/shop_identity.h"
#include "tags/syntax/file_naming.h"

namespace kv {

namespace {

constexpr int colourSamples = 5;
constexpr std::size_t fontColour = 4;

// The colours of a template are the first pixels of its samples.
Result<std::vector<std::string>> readColours(const std::string& templatePool) {
  std::vector<std::string> colours;
  for (int i = 0; i < colourSamples; ++i) {
    const std::string name = "kvan_col_" + std::to_string(i) + ".gif";
    const auto entry = findEntry(templatePool, name);
    if (!entry) return fail(ErrorKind::Other, "", "Impossibile trovare il file " + name, ENOENT);
    const auto pixel = firstPixel(*entry);
    if (!pixel) return fail(pixel.error());
    colours.push_back(HTMLColor(*pixel));
  }
  return colours;
}

ArticleRules articleRules(const ShopFacts& shop, const LanguageSource& source, const FieldRow& generale) {
  PriceRules prices;
  prices.form = CurrencyForm(generale);
  prices.vatIncluded = generale.flag("ivacompresa");
  prices.showDiscount = generale.flag("vis_sconto");
  prices.secondCurrency = generale.flag("usa_cambio");
  prices.exchangeRate = generale.single("cambio");
  prices.vatLabel = source.words.TagLingua("carrello_iva");
  ArticleRules rules{prices, shop.html, ""};
  if (generale.flag("vis_offerta")) {
    rules.offerMark = CreaTagImg(shop.templateFolder, FileLingua("kvan_offerta.gif", source.lingua));
  }
  return rules;
}

}  // namespace

Result<LanguageSource> openLanguage(const ShopFacts& shop, int number,
                                    const std::function<void(const std::string& codePool)>& patchScript) {
  const auto index = static_cast<std::size_t>(number - 1);
  LanguageSource source;
  source.number = number;
  source.lingua = languageSuffixes[index];
  PoolSources pools;
  pools.shopFolder = shop.folders.shop;
  pools.applicationFolder = shop.applicationFolder;
  pools.templateFolder = shop.templateFolder;
  pools.languageCode = shop.languages.codes[index];
  pools.pageExtension = shop.languages.pageExtension;
  pools.PatchScript = patchScript;
  auto made = CreaPool(pools, source.lingua);
  if (!made) return fail(made.error());
  source.pools = std::move(*made);
  auto words = CaricaLngFile(shop.languages.languagesFolder, pools.languageCode);
  if (!words) return fail(words.error());
  source.words = std::move(*words);
  source.cellTemplate = CaricaVetFile(source.pools.templatePool);
  return source;
}

Result<TemplateLook> readLook(const std::string& templatePool) {
  auto colours = readColours(templatePool);
  if (!colours) return fail(colours.error());
  auto menu = CaricaClFile(templatePool);
  if (!menu) return fail(menu.error());
  TemplateLook look;
  look.colours = std::move(*colours);
  look.titleFont = "<font color=\"" + look.colours[fontColour] + "\">###</font>";
  look.colours.resize(fontColour);
  look.menu = std::move(*menu);
  return look;
}

Result<LanguageFacts> readLanguageFacts(Database& catalogue, const ShopFacts& shop, LanguageSource source,
                                        TemplateLook look) {
  auto generale = firstRow(catalogue, SelezionaLingua("generale", source.number));
  if (!generale) return fail(generale.error());
  auto pagamento = firstRow(catalogue, SelezionaLingua("pagamento", source.number));
  if (!pagamento) return fail(pagamento.error());
  auto rows = readDepartments(catalogue, source.number);
  if (!rows) return fail(rows.error());
  LanguageFacts facts;
  facts.colours = std::move(look.colours);
  facts.generale = std::move(*generale);
  facts.pagamento = std::move(*pagamento);
  facts.departments = std::move(rows->departments);
  facts.navigation = DepartmentNavigation(
      DepartmentTree(std::move(rows->inMenus)),
      {std::move(look.menu), std::move(look.titleFont), facts.generale.integer("livelliaperti"), source.lingua});
  facts.rules = articleRules(shop, source, facts.generale);
  facts.source = std::move(source);
  return facts;
}

Result<ShippingTables> readShipping(Database& catalogue, const ShopFacts& shop, const LanguageFacts& language) {
  // Where prices include VAT, so do the costs of shipping.
  const PriceRules& prices = language.rules.prices;
  const ShippingPrice price{prices.form, prices.vatIncluded ? shop.shippingVat : 0.0F};
  return makeShippingTables(catalogue, language.pagamento, price);
}

namespace {

/// The tags of the merchant's identity, which are empty in a shop that has entered none.
Result<> fillIdentity(PageTagRow& row, Database& catalogue) {
  for (const std::string_view column : identityColumns) {
    auto text = readIdentity(catalogue, column);
    if (!text) return fail(text.error());
    // The pages read them line by line.
    std::ranges::replace_if(
        *text, [](char c) { return c == '\r' || c == '\n'; }, ' ');
    row.setBeside(column, std::move(*text));
  }
  return {};
}

}  // namespace

Result<> fillSharedTags(PageTagRow& row, Database& catalogue, const ShopFacts& shop, const LanguageFacts& language,
                        const ShippingTables& shipping) {
  const CurrencyForm& form = language.rules.prices.form;
  const std::string& lingua = language.source.lingua;
  fillShopTags(row,
               {language.generale, lingua, shop.shopNumber + lingua, shop.redirectScript, shop.html, language.colours});
  if (auto filled = fillIdentity(row, catalogue); !filled) return filled;
  fillServerTags(row, {language.generale, lingua, shop.languages.pageExtension, form.label, shop.phpGlobals});
  return fillCartTags(row, {catalogue, language.generale, language.pagamento, form, shipping, shop.shippingVat});
}

}  // namespace kv
