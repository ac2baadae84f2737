// One language of a build: its facts, its rows of variants, its menu, and then its pages.

#include <utility>

#include "builder/article/variant_lists.h"
#include "builder/navigation/menu_xml.h"
#include "builder/run/build_phases.h"
#include "tags/syntax/file_naming.h"

namespace kv {

namespace {

Result<> storeToken(Database& catalogue, const std::string& token) {
  auto update = catalogue.prepare("UPDATE generale SET db_security = ? WHERE db_security IS NOT ?");
  if (!update) return fail(update.error());
  update->bind(1, std::string_view(token));
  update->bind(2, std::string_view(token));
  return update->execute();
}

// The steps that come before the first look into the catalogue, in the order in which their failures count.
Result<LanguageFacts> openFacts(const LanguageInputs& inputs, BuildOutput& output, const BuildProgress& progress,
                                PageTagRow& sharedTags) {
  const ShopFacts& shop = inputs.shop;
  auto source = openLanguage(shop, inputs.number, inputs.parts.PatchScript);
  if (!source) return fail(source.error());
  auto probed = output.probeFolders("search" + shop.shopNumber + source->lingua + ".csv");
  if (!probed) return fail(probed.error());
  auto look = readLook(source->pools.templatePool);
  if (!look) return fail(look.error());
  auto row = output.openTags();
  if (!row) return fail(row.error());
  sharedTags = std::move(*row);
  if (auto go = progress.checkCancel(); !go) return fail(go.error());
  if (auto stored = storeToken(inputs.catalogue, shop.token); !stored) return fail(stored.error());
  return readLanguageFacts(inputs.catalogue, shop, std::move(*source), std::move(*look));
}

// Each variant that some article uses gets one row.
Result<> storeVariants(Database& catalogue, const LanguageFacts& language, const ArticleSurvey& survey,
                       BuildOutput& output) {
  const std::string& lingua = language.source.lingua;
  auto row = output.insertInto("opzioni" + lingua, {"ID", "nomeopzione", "opzione"});
  if (!row) return fail(row.error());
  auto reader = VariantReader::open(catalogue, language.generale, lingua);
  if (!reader) return fail(reader.error());
  for (const std::int64_t variant : survey.variants) {
    const auto name = reader->CreaNomeOpzione(variant);
    if (!name) return fail(name.error());
    const auto list = reader->InserisciOpzione(variant, *name);
    if (!list) return fail(list.error());
    row->bind(1, variant);
    row->bind(2, std::string_view(*name));
    row->bind(3, std::string_view(*list));
    if (auto written = row->execute(); !written) return written;
  }
  return {};
}

void writeShopMenu(const ShopFacts& shop, const LanguageFacts& language, BuildOutput& output) {
  if (!shop.hasMenuXml) return;
  const std::string& lingua = language.source.lingua;
  const std::string path = shop.folders.onlineFile(FileLingua("shopmenu.xml", lingua));
  // No page of the shop reads it, so the build goes on.
  if (!output.writeChanged(path, CatEsploraXML(language.navigation.departments(), lingua))) {
    output.warn("Impossibile scrivere il file '" + path + "'");
  }
  output.list(path);
}

// What is written of a language before its first page.
Result<> storeLanguage(const LanguageInputs& inputs, const LanguageFacts& language, BuildOutput& output,
                       BuildProgress& progress) {
  if (auto go = progress.checkCancel(); !go) return go;
  if (auto stored = storeVariants(inputs.catalogue, language, inputs.survey, output); !stored) return stored;
  progress.startLanguage(inputs.number, {static_cast<int>(language.departments.size()), inputs.survey.sellable,
                                         inputs.shop.languages.count});
  writeShopMenu(inputs.shop, language, output);
  if (auto go = progress.checkCancel(); !go) return go;
  return output.openArticleTables(language.source.lingua);
}

Result<> fillSharedRow(PageTagRow& row, const LanguageInputs& inputs, const LanguageFacts& language,
                       std::optional<ShippingTables>& shipping) {
  if (!shipping) {
    auto read = readShipping(inputs.catalogue, inputs.shop, language);
    if (!read) return fail(read.error());
    shipping = std::move(*read);
  }
  return fillSharedTags(row, inputs.catalogue, inputs.shop, language, *shipping);
}

Result<> makeAllPages(const PageFacts& facts, Database& catalogue, BuildOutput& output, BuildProgress& progress) {
  const auto lists = makeDepartments(facts, catalogue, output, progress);
  if (!lists) return fail(lists.error());
  if (auto made = makeShopPages(facts, *lists, output, progress); !made) return made;
  return makeScriptsAndResources(facts, output, progress);
}

}  // namespace

Result<> makeLanguage(const LanguageInputs& inputs, std::optional<ShippingTables>& shipping, BuildOutput& output,
                      BuildProgress& progress) {
  output.startLanguage();
  PageTagRow sharedTags;
  const auto language = openFacts(inputs, output, progress, sharedTags);
  if (!language) return fail(language.error());
  if (auto stored = storeLanguage(inputs, *language, output, progress); !stored) return stored;
  if (auto filled = fillSharedRow(sharedTags, inputs, *language, shipping); !filled) return filled;
  PageAtHand& page = output.page();
  page.row = sharedTags;
  const ShopFacts& shop = inputs.shop;
  const PageSources sources{&page.row,  &language->source.words, &shop.custom, language->source.lingua,
                            shop.order, shop.newPhpNames};
  const PageFacts facts{shop, *language, sharedTags, sources};
  if (auto made = makeAllPages(facts, inputs.catalogue, output, progress); !made) return made;
  return output.storeTags();
}

}  // namespace kv
