// Preparation of one language of a build: pools, words, colours, tag database, variants, the columns of the page tag
// row that are the same on all pages.

#include <cerrno>

#include "builder/build_run.h"
#include "builder/link_naming.h"
#include "platform/files.h"
#include "platform/image.h"
#include "platform/number_form.h"
#include "platform/text.h"
#include "tags/file_naming.h"

namespace kv {

namespace {

constexpr double workingSteps = 28000;  // of the bar: departments and articles of all languages
constexpr double allSteps = 30000;
constexpr int colourSamples = 5;
constexpr std::size_t fontColour = 4;

void makePools(BuildRun& run) {
  PoolSources sources;
  sources.shopFolder = run.session.ShopFolder;
  sources.applicationFolder = run.around.applicationFolder;
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
  static_cast<void>(deleteFile(path));
  must(copyFile(joinPath(run.session.ShopFolder, "source.new"), path));
  run.tags = must(Database::open(path, OpenMode::Scratch));
  run.now.shopRow = PageTagRow(must(run.tags.table("categoria")));
}

void probeFolder(BuildRun& run, const std::string& folder, const std::string& probe) {
  if (writeBytes(joinPath(folder, probe), "")) return;
  run.around.user.message("La cartella di lavoro '" + folder +
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
  static_cast<void>(deleteFile(run.online(probe)));
  static_cast<void>(deleteFile(run.script(probe)));
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

void readGenerale(BuildRun& run) {
  Statement query = must(run.session.catalogue.prepare(SelezionaLingua("generale", run.now.number)));
  run.now.generale = must(query.step()) ? FieldRow(query) : FieldRow();
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

void readDepartments(BuildRun& run) {
  run.now.departments.clear();
  Statement query = must(
      run.session.catalogue.prepare(SelezionaLingua("categorie", run.now.number, "ORDER BY livello, ordinamento")));
  while (must(query.step())) run.now.departments.push_back(departmentOf(FieldRow(query)));
}

// Each variant that some article uses gets one row.
void fillVariants(BuildRun& run) {
  Statement insert =
      must(run.build.prepare("INSERT INTO opzioni" + run.now.lingua + " (ID, nomeopzione, opzione) VALUES (?, ?, ?)"));
  for (const std::int64_t variant : run.survey.variants) {
    const std::string name = run.parts.CreaNomeOpzione ? run.parts.CreaNomeOpzione(variant, run.now.lingua) : "";
    const std::string list =
        run.parts.InserisciOpzione ? run.parts.InserisciOpzione(variant, run.now.lingua, name) : "";
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
  if (!run.parts.CatEsploraXML || run.around.settings.get(settingsSection, "XMLmenu") == "0") return;
  const std::string path = run.online(FileLingua("shopmenu.xml", run.now.lingua));
  const std::string text = toWindows1252(run.parts.CatEsploraXML(run.now.lingua));
  const auto present = readBytes(path);
  if ((present ? *present : std::string()) != text) static_cast<void>(writeBytes(path, text));
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
  if (run.parts.CaricaClFile) run.parts.CaricaClFile(run.now.pools.templatePool, run.now.titleFont);
  openTagDatabase(run);
  storeToken(run);
  readGenerale(run);
  readDepartments(run);
  fillVariants(run);
  measure(run);
  writeShopMenu(run);
  makeRules(run);
  run.wrapper.openTables(run.build, run.columns, run.now.lingua);
  fillShopTags(run.now.shopRow,
               ShopTags{run.now.generale, run.shippingVat, run.now.lingua, run.now.IDnegozio, run.redirectScript,
                        run.languages.pageExtension, run.html, run.now.rules.prices.form.label, run.now.colours});
  if (run.parts.fillSettings) run.parts.fillSettings(run.now.shopRow, run.now.lingua);
  run.wrapper.setSources(&run.now.row, &run.now.words, &run.custom, run.now.lingua);
  run.now.row = run.now.shopRow;
}

}  // namespace kv
