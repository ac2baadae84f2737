// Preparation of one language of a build: pools, words, colours, tag database, variants, the columns of the page tag
// row that are the same on all pages.

#include <cerrno>

#include "builder/article/variant_lists.h"
#include "builder/checkout/server_settings.h"
#include "builder/navigation/menu_templates.h"
#include "builder/navigation/menu_xml.h"
#include "builder/run/build_run.h"
#include "builder/values/link_naming.h"
#include "platform/files/files.h"
#include "platform/image/image.h"
#include "platform/numbers/number_form.h"
#include "platform/text/text.h"
#include "tags/syntax/file_naming.h"

namespace kv {

namespace {

constexpr double workingSteps = 28000;  // of the bar: departments and articles of all languages
constexpr double allSteps = 30000;
constexpr int colourSamples = 5;
constexpr std::size_t fontColour = 4;

void makePools(BuildRun& run) {
  PoolSources sources;
  sources.shopFolder = run.session.ShopFolder;
  sources.applicationFolder = run.env.applicationFolder;
  sources.templateFolder = run.templateFolder;
  sources.languageCode = run.languages.codes[static_cast<std::size_t>(run.now.number - 1)];
  sources.pageExtension = run.languages.pageExtension;
  sources.PatchScript = run.parts.PatchScript;
  run.now.pools = CreaPool(sources, run.now.lingua);
  run.now.words = must(CaricaLngFile(run.languages.languagesFolder, sources.languageCode));
  run.now.cellTemplate = CaricaVetFile(run.now.pools.templatePool);
}

void openTagDatabase(BuildRun& run) {
  const std::string path = joinPath(run.session.ShopFolder, "source.mdb");
  run.tags.close();
  ignore(deleteFile(path), "the copy replaces it");
  must(copyFile(joinPath(run.session.ShopFolder, "source.new"), path));
  run.tags = must(Database::open(path, OpenMode::Scratch));
  run.now.shopRow = PageTagRow(must(run.tags.table("categoria")));
}

void probeFolder(BuildRun& run, const std::string& folder, const std::string& probe) {
  if (writeBytes(joinPath(folder, probe), "")) return;
  run.env.user.message("La cartella di lavoro '" + folder +
                           "' non esiste: \n"
                           "selezionare un'altra cartella (oppure resettare le cartelle di lavoro) e ripetere "
                           "l'operazione",
                       Icon::Exclamation);
  throw RunStopped();
}

void probeFolders(BuildRun& run) {
  const std::string probe = "search" + run.now.IDnegozio + ".csv";
  probeFolder(run, run.session.onlineFolder, probe);
  probeFolder(run, run.session.scriptFolder, probe);
  run.now.pay_ok = run.now.words.TagLingua("pay_ok");
  run.now.pay_ko = run.now.words.TagLingua("pay_ko");
  ignore(deleteFile(run.online(probe)), "an empty file left there is never listed");
  ignore(deleteFile(run.script(probe)), "an empty file left there is never listed");
}

// The colours of a template are the first pixels of its samples.
void readColours(BuildRun& run) {
  run.now.colours.clear();
  for (int i = 0; i < colourSamples; ++i) {
    const std::string name = "kvan_col_" + std::to_string(i) + ".gif";
    const auto entry = findEntry(run.now.pools.templatePool, name);
    if (!entry) throw RunFailure(ENOENT, "Impossibile trovare il file " + name);
    run.now.colours.push_back(HTMLColor(must(firstPixel(*entry))));
  }
  run.now.titleFont = "<font color=\"" + run.now.colours[fontColour] + "\">###</font>";
  run.now.colours.resize(fontColour);
}

void storeToken(BuildRun& run) {
  Statement update =
      must(run.session.catalogue.prepare("UPDATE generale SET db_security = ? WHERE db_security IS NOT ?"));
  update.bind(1, std::string_view(run.token));
  update.bind(2, std::string_view(run.token));
  must(update.execute());
}

FieldRow settingsRow(BuildRun& run, std::string_view table) {
  Statement query = must(run.session.catalogue.prepare(SelezionaLingua(table, run.now.number)));
  return must(query.step()) ? FieldRow(query) : FieldRow();
}

void readSettings(BuildRun& run) {
  run.now.generale = settingsRow(run, "generale");
  run.now.pagamento = settingsRow(run, "pagamento");
}

Department departmentOf(const FieldRow& row) {
  Department department;
  department.ID = row.text("ID");
  department.titolo = row.text("titolo");
  department.pagina = row.text("pagina");
  department.model = row.text("template");
  department.genitore = row.text("genitore");
  department.descrizione = row.text("descrizione");
  department.note = row.text("note");
  department.immagine = row.text("immagine0");
  department.affiancati = row.text("affiancati");
  department.maxarticoli = row.integer("maxarticoli");
  department.imageWidth = row.integer("imgX0");
  department.imageHeight = row.integer("imgY0");
  department.vatRate = row.single("iva") / 100.0F;
  if (!row.isNull("sconto")) department.sconto = row.single("sconto");
  return department;
}

MenuDepartment menuDepartmentOf(const FieldRow& row) {
  MenuDepartment department;
  department.ID = row.text("ID");
  department.titolo = row.text("titolo");
  department.pagina = row.text("pagina");
  if (!row.isNull("genitore")) department.genitore = row.text("genitore");
  if (!row.isNull("livello")) department.livello = row.integer("livello");
  department.nascosto = row.flag("nascosto");
  department.immagine1 = row.text("immagine1");
  department.imgX1 = row.integer("imgX1");
  department.imgY1 = row.integer("imgY1");
  return department;
}

void readDepartments(BuildRun& run, MenuTemplates menu) {
  std::vector<MenuDepartment> inMenus;
  Statement query = must(
      run.session.catalogue.prepare(SelezionaLingua("categorie", run.now.number, "ORDER BY livello, ordinamento")));
  while (must(query.step())) {
    const FieldRow row(query);
    run.now.departments.push_back(departmentOf(row));
    inMenus.push_back(menuDepartmentOf(row));
  }
  run.now.navigation = DepartmentNavigation(
      DepartmentTree(std::move(inMenus)),
      {std::move(menu), run.now.titleFont, run.now.generale.integer("livelliaperti"), run.now.lingua});
}

// Each variant that some article uses gets one row.
void fillVariants(BuildRun& run) {
  Statement insert =
      must(run.build.prepare("INSERT INTO opzioni" + run.now.lingua + " (ID, nomeopzione, opzione) VALUES (?, ?, ?)"));
  VariantReader reader = must(VariantReader::open(run.session.catalogue, run.now.generale, run.now.lingua));
  for (const std::int64_t variant : run.survey.variants) {
    const std::string name = must(reader.CreaNomeOpzione(variant));
    const std::string list = must(reader.InserisciOpzione(variant, name));
    insert.bind(1, variant);
    insert.bind(2, std::string_view(name));
    insert.bind(3, std::string_view(list));
    must(insert.execute());
  }
}

// The totals are worked out in the first language only; a shop without departments leaves the bar without them.
void measure(BuildRun& run) {
  Meter& meter = run.meter;
  meter.departmentsDone = meter.articlesDone = 0;
  if (meter.maximum > 1 || run.now.departments.empty()) return;
  meter.departments = static_cast<int>(run.now.departments.size());
  meter.articles = run.survey.sellable;
  meter.step = static_cast<double>(static_cast<float>(
      workingSteps / (static_cast<double>(meter.departments + meter.articles) * run.languages.count)));
  meter.maximum = allSteps;
}

// The file keeps its date when its content is what it was.
void writeShopMenu(BuildRun& run) {
  if (run.env.settings.get(settingsSection, "XMLmenu") == "0") return;
  const std::string path = run.online(FileLingua("shopmenu.xml", run.now.lingua));
  const std::string text = toWindows1252(CatEsploraXML(run.now.navigation.departments(), run.now.lingua));
  const auto present = readBytes(path);
  if ((present ? *present : std::string()) != text) {
    ignore(writeBytes(path, text), "no page of the shop reads it");
  }
  run.files.add(path);
}

void makeRules(BuildRun& run) {
  PriceRules prices;
  prices.form = CurrencyForm(run.now.generale);
  prices.vatIncluded = run.now.generale.flag("ivacompresa");
  prices.showDiscount = run.now.generale.flag("vis_sconto");
  prices.secondCurrency = run.now.generale.flag("usa_cambio");
  prices.exchangeRate = run.now.generale.single("cambio");
  prices.vatLabel = run.now.words.TagLingua("carrello_iva");
  run.now.rules = {prices, run.html, ""};
  if (run.now.generale.flag("vis_offerta")) {
    run.now.rules.offerMark = CreaTagImg(run.templateFolder, FileLingua("kvan_offerta.gif", run.now.lingua));
  }
}

// The columns of the page tag row that are the same on all pages.
void fillShopColumns(BuildRun& run) {
  LanguageRun& now = run.now;
  const CurrencyForm& form = now.rules.prices.form;
  if (!run.shipping) {
    // Where prices include VAT, so do the costs of shipping.
    const ShippingPrice price{form, now.rules.prices.vatIncluded ? run.shippingVat : 0.0F};
    run.shipping = must(makeShippingTables(run.session.catalogue, now.pagamento, price));
  }
  fillShopTags(now.shopRow, {now.generale, now.lingua, now.IDnegozio, run.redirectScript, run.html, now.colours});
  fillServerTags(now.shopRow, {now.generale, now.lingua, run.languages.pageExtension, form.label, run.phpGlobals});
  must(fillCartTags(now.shopRow,
                    {run.session.catalogue, now.generale, now.pagamento, form, *run.shipping, run.shippingVat}));
}

}  // namespace

void prepareLanguage(BuildRun& run, int number) {
  run.now = LanguageRun();
  run.rowCount = 0;
  run.now.number = number;
  run.now.lingua = languageSuffixes[static_cast<std::size_t>(number - 1)];
  makePools(run);
  run.now.IDnegozio = shopNumber(URLNegozio(run.generale)) + run.now.lingua;
  run.now.siteList = "<BR>";
  probeFolders(run);
  readColours(run);
  MenuTemplates menu = must(CaricaClFile(run.now.pools.templatePool));
  openTagDatabase(run);
  run.now.row = run.now.shopRow;  // what a run that is cancelled here leaves behind
  run.checkCancel();
  storeToken(run);
  readSettings(run);
  readDepartments(run, std::move(menu));
  run.checkCancel();
  fillVariants(run);
  measure(run);
  writeShopMenu(run);
  run.checkCancel();
  makeRules(run);
  run.wrapper.openTables(run.build, run.columns, run.now.lingua);
  fillShopColumns(run);
  run.wrapper.setSources(&run.now.row, &run.now.words, &run.custom, run.now.lingua);
  run.now.row = run.now.shopRow;
}

}  // namespace kv
