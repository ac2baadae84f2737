// Preparation of a build, once for all languages: token, modules, settings, build database.

#include <array>
#include <set>

#include "builder/checkout/server_settings.h"
#include "builder/run/build_run.h"
#include "platform/files/files.h"
#include "platform/numbers/number_form.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr int tokenLength = 20;
constexpr std::uint32_t tokenLetters = 26;
constexpr int variantSlots = 4;
constexpr std::size_t variantColumns = std::size_t{variantSlots} * listini;
constexpr std::int64_t noVariant = 1;  // the fixed variant "(nessuna)"; 0 and null mean the same
constexpr int rowsBetweenYields = 16384;

std::string newToken(RandomSource& random) {
  std::string token;
  for (int i = 0; i < tokenLength; ++i) token += static_cast<char>('a' + random.below(tokenLetters));
  return token;
}

// Marks the new build: with the old marker gone, every cached export is stale. A folder that isn't there is told of
// when the language run probes it.
void writeMarker(BuildRun& run) {
  for (const std::string& name : listFiles(run.session.onlineFolder, "*.sc")) {
    ignore(deleteFile(run.online(name)), "the probe of the folder tells of one that can't be written");
  }
  ignore(writeText(run.online(run.token + ".sc"), std::to_string(run.session.languageCount) + "\r\n"),
         "the probe of the folder tells of one that can't be written");
}

// A build that was killed may have left the file it was writing beside the page that it was to replace.
void sweep(const BuildRun& run) {
  for (const std::string& folder : {run.session.onlineFolder, run.session.scriptFolder, run.session.ShopFolder,
                                    joinPath(run.session.ShopFolder, "db")}) {
    removeUnfinishedFiles(folder);
  }
}

void checkLanguageModules(const BuildRun& run) {
  std::string missing;
  for (int i = 0; i < run.languages.count; ++i) {
    const std::string& code = run.languages.codes[static_cast<std::size_t>(i)];
    if (!findEntry(run.languages.languagesFolder, code + ".lng")) missing += code + "\n";
  }
  if (missing.empty()) return;
  run.env.user.message("I seguenti moduli linguistici non sono stati trovati:\n" + missing +
                           "\nPer costruire il negozio è necessario installare i moduli linguistici mancanti,\n"
                           "oppure cambiare le lingue selezionate (menu \"File/Configura lingue\")",
                       Icon::Exclamation);
  throw RunStopped();
}

FieldRow singleRow(Database& database, const std::string& query) {
  Statement statement = must(database.prepare(query));
  return must(statement.step()) ? FieldRow(statement) : FieldRow();
}

void readSettings(BuildRun& run) {
  run.generale = singleRow(run.session.catalogue, SelezionaLingua("generale", 1));
  const FieldRow& generale = run.generale;
  if (generale.flag("personaltags")) {
    run.custom = CaricaTagPersonali(run.session.ShopFolder, run.env.applicationFolder);
  }
  run.html.entities = run.env.settings.get(settingsSection, "MacCodes") != "off";
  run.redirectScript = MakeRedirect(generale);
  run.factor = shopFactor(generale.text("sconto"));
  run.showcase.listCode = generale.flag("elenco_codice");
  run.showcase.listTitle = generale.flag("elenco_titolo");
  run.showcase.listSubtitle = generale.flag("elenco_sottotitolo");
  run.showcase.listPhoto = generale.flag("elenco_foto");
  run.showcase.columns = showcaseColumns(generale.number("colonnevetrina"));
  run.showcase.align = generale.text("vetalign");
  run.showcase.alignStyle = generale.text("vetalignstyle");
  run.showcase.fontSize = generale.text("vetsize");
  run.showcase.options = static_cast<int>(generale.integer("vetopzioni"));
  run.showcase.singleArticle = generale.flag("singleitem_vet");
  const FieldRow payment = singleRow(run.session.catalogue, "SELECT * FROM pagamento");
  run.shippingVat = payment.single("ivaspese") / 100.0F;
}

WrapperSettings wrapperSettings(const BuildRun& run) {
  WrapperSettings settings;
  settings.smartbuild = run.session.smartBuild;
  settings.newPhpNames = run.env.settings.get(settingsSection, "PHP4.1VARS") == "1";
  settings.order.registrationRequired = run.generale.flag("regobbl");
  settings.order.pricesForRegisteredOnly = run.generale.flag("regprices");
  settings.order.limitsForFirstList = run.generale.flag("reglist");
  return settings;
}

// Copies each department with its VAT as a fraction and, for each listino, its discount factor and its lock.
void copyDepartments(BuildRun& run) {
  std::string names = "ID, nascosto, iva", marks = "?, ?, ?";
  for (const std::string_view suffix : listinoSuffixes) {
    names.append(", sconto").append(suffix).append(", inaccessibile").append(suffix);
    marks += ", ?, ?";
  }
  Statement read =
      must(run.session.catalogue.prepare("SELECT " + names + " FROM categorie ORDER BY livello, ordinamento"));
  Statement write = must(run.build.prepare("INSERT INTO categorie (" + names + ") VALUES (" + marks + ")"));
  while (must(read.step())) {
    write.bind(1, read.text(0));
    write.bind(2, read.flag(1));
    write.bind(3, static_cast<double>(read.single(2) / 100.0F));
    for (int n = 0; n < listini; ++n) {
      const int column = 3 + 2 * n;
      const float factor = read.isNull(column) ? run.factor : discountFactor(read.single(column), run.factor);
      write.bind(column + 1, static_cast<double>(factor));
      write.bind(column + 2, read.flag(column + 1));
    }
    must(write.execute());
  }
}

// One walk instead of a query for each of the forty variant columns.
void surveyArticles(BuildRun& run) {
  std::string names = "fuoricatalogo";
  for (int slot = 1; slot <= variantSlots; ++slot) {
    for (int n = 0; n < listini; ++n) names += ", " + variantColumn(slot, n);
  }
  std::array<std::set<std::int64_t>, variantColumns> found;
  Statement read = must(run.session.catalogue.prepare("SELECT " + names + " FROM articoli"));
  for (int row = 1; must(read.step()); ++row) {
    // Some 20 ms of a walk that may last as long as the user waits for an answer.
    if (row % rowsBetweenYields == 0) run.checkCancel();
    if (!read.flag(0)) ++run.survey.sellable;
    for (std::size_t i = 0; i < found.size(); ++i) {
      const int column = static_cast<int>(i) + 1;
      const std::int64_t variant = read.integer(column);
      if (variant > noVariant) {
        found[i].insert(variant);
      } else if (i < listini && variant != noVariant && !read.isNull(column)) {
        run.survey.inFirstSlots.insert(variant);
      }
    }
  }
  std::set<std::int64_t> known;
  for (std::size_t i = 0; i < found.size(); ++i) {
    if (i < listini) run.survey.inFirstSlots.insert(found[i].begin(), found[i].end());
    for (const std::int64_t variant : found[i]) {
      if (known.insert(variant).second) run.survey.variants.push_back(variant);
    }
  }
}

// The option codes of the variants that stand in the first slot of some listino; those of the other slots alone are
// not looked for.
void copyOptionCodes(BuildRun& run) {
  Statement read = must(
      run.session.catalogue.prepare("SELECT ID, TRIM(codice), OpID FROM dettagliop WHERE codice <> '' ORDER BY ID"));
  Statement write = must(run.build.prepare("INSERT INTO opcodici (ID, codice, OpID) VALUES (?, ?, ?)"));
  while (must(read.step())) {
    if (read.isNull(2) || !run.survey.inFirstSlots.contains(read.integer(2))) continue;
    write.bind(1, read.integer(0));
    write.bind(2, read.text(1));
    write.bind(3, read.integer(2));
    must(write.execute());
  }
}

}  // namespace

void prepareBuild(BuildRun& run) {
  const std::string& folder = run.session.ShopFolder;
  run.token = newToken(run.env.random);
  sweep(run);
  writeMarker(run);
  checkLanguageModules(run);
  readSettings(run);
  run.wrapper.configure(wrapperSettings(run));
  ignore(deleteFile(joinPath(folder, "kvftp.dat")), "the end of the run replaces it");
  const std::string buildPath = joinPath(folder, "db/sql.mdb");
  ignore(deleteFile(buildPath), "the copy replaces it");
  run.files.add(joinPath(folder, "source.mdb"));
  must(copyFile(joinPath(folder, "new.mdb"), buildPath));
  run.build = must(Database::open(buildPath, OpenMode::Scratch));
  must(run.build.begin());
  run.phpGlobals = phpGlobals(run.generale, CurrencyForm(run.generale), run.factor, run.templateFolder);
  copyDepartments(run);
  run.checkCancel();
  surveyArticles(run);
  copyOptionCodes(run);
}

}  // namespace kv
