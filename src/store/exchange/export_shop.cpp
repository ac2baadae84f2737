#include "store/exchange/export_shop.h"

#include "platform/files/listing.h"
#include "platform/files/trees.h"
#include "platform/text/text.h"
#include "store/exchange/export_plan.h"
#include "store/exchange/moved_pieces.h"
#include "store/shop/kept_order_key.h"
#include "store/shop/load_shop.h"
#include "store/shop/session_start.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

constexpr const char* noTemplate =
    "Prima di esportare un negozio per Korvane Banco Banco è necessario selezionare un template";
constexpr const char* unreadableTemplate = "Impossibile accedere al template";
constexpr const char* chooseEmptyFolder = "Selezionare una cartella vuota:";
constexpr const char* notEmpty = "La cartella selezionata non è vuota";
constexpr const char* notExported = "Impossibile esportare il negozio nel percorso specificato";
constexpr const char* unfinishedCatalogue = "catalog.tm0";
constexpr std::string_view firewallFile = "firewall.net", buildFile = "costruzione.ini";
constexpr std::string_view exporting = "Esportazione in corso...";

bool hasTemplateToExport(const Session& session, Environment& env) {
  const char* reason = nullptr;
  if (session.templatePath.empty()) {
    reason = noTemplate;
  } else if (listFiles(joinPath(env.applicationFolder, session.templatePath), "*").empty()) {
    reason = unreadableTemplate;
  }
  if (reason != nullptr) env.user.message(reason, Icon::Exclamation);
  return reason == nullptr;
}

/// The folder to export to; empty when there is none, and the user knows why.
std::string exportFolder(const Session& session, Environment& env) {
  std::string folder = ScegliCartella(env.user, chooseEmptyFolder, session.ShopFolder);
  if (isRoot(folder)) {
    env.user.message("La cartella '" + folder + "' è la root di un disco, e non è consentito esportarvi un negozio",
                     Icon::Exclamation);
    return {};
  }
  if (folder.empty()) return folder;
  const auto isEmpty = isEmptyFolder(folder);
  if (isEmpty && *isEmpty) return folder;
  env.user.message(isEmpty ? notEmpty : notExported, isEmpty ? Icon::Exclamation : Icon::Critical);
  return {};
}

/// An export on its way: where from, where to, what goes along.
struct ExportRun {
  const Session& session;
  Environment& env;
  std::string to;
  ExportChoice choice;
  ExportPlan plan{to};
  MovedPieces report{};

  std::string ofShop(std::string_view name) const { return entryPath(session.ShopFolder, name); }
  std::string ofApplication(std::string_view name) const { return entryPath(env.applicationFolder, name); }
};

/// The model's files lie below the shop's. The model's catalogue is never exported.
Result<> planModelAndFolders(ExportRun& run) {
  if (auto added = run.plan.addTree(run.ofApplication("new"), ""); !added) return added;
  for (const std::string_view name : {"work", "code", "db"}) {
    if (auto added = run.plan.addTree(run.ofShop(name), std::string(name)); !added) return added;
  }
  run.plan.remove(std::string(catalogueFile));
  run.plan.addFile(run.ofShop("shoptag.tag"), "shoptag.tag");
  return {};
}

Result<> planTemplate(ExportRun& run) {
  if (!run.choice.withTemplate) return {};
  run.report.pieces.emplace_back("il template");
  return run.plan.addTree(run.ofApplication(run.session.templatePath), run.session.templatePath);
}

/// Line by line: the last line of either file may have no end.
void planCommonTags(ExportRun& run) {
  const auto common = readBytes(run.ofApplication("personal.tag"));
  if (!run.choice.withAllTags || !common) return;
  std::string tags = run.plan.contentOf("shoptag.tag");
  if (!tags.empty() && !tags.ends_with('\n')) tags += "\r\n";
  for (const std::string_view line : splitLines(*common)) tags += std::string(line) + "\r\n";
  run.report.pieces.emplace_back("i tag personalizzati");
  run.plan.addContent(std::move(tags), "shoptag.tag");
}

Result<> planLanguages(ExportRun& run) {
  if (!run.choice.withLanguages) return {};
  const std::string from = run.ofApplication(languagesFolder), to(languagesFolder);
  run.plan.addFolder(to);
  for (int i = 0; i < run.session.languageCount; ++i) {
    const std::string& language = run.session.languageNames[static_cast<std::size_t>(i)];
    const auto names = readFileNames(from, language + ".*");
    if (!names) return fail(names.error());
    for (const std::string& name : *names) {
      run.plan.addFile(joinPath(from, name), joinPath(to, name));
    }
  }
  run.report.pieces.emplace_back("i moduli linguistici");
  return {};
}

/// The scripts of the application's own shop are the model's, and never go along.
void planScripts(ExportRun& run) {
  std::vector<std::string> scripts = run.plan.filesIn("code", "*.php");
  for (std::string& name : run.plan.filesIn("code", "*.js")) scripts.push_back(std::move(name));
  const bool isModel = isApplicationFolder(run.session.ShopFolder, run.env.applicationFolder);
  const bool isKept = run.choice.withScripts && !isModel;
  for (const std::string& name : scripts) {
    if (isKept) {
      run.report.scripts.push_back(joinPath(run.ofShop("code"), name));
    } else {
      run.plan.remove(joinPath("code", name));
    }
  }
}

Result<> planAllButCatalogue(ExportRun& run) {
  if (auto added = planModelAndFolders(run); !added) return added;
  if (auto added = planTemplate(run); !added) return added;
  if (auto added = planLanguages(run); !added) return added;
  planCommonTags(run);
  planScripts(run);
  for (const std::string_view name : {transferFile, firewallFile, std::string_view("kvftp.ini"), buildFile}) {
    const bool isSecret = name == firewallFile && run.choice.noPasswords;
    if (!isSecret) run.plan.addFile(run.ofShop(name), std::string(name));
  }
  return {};
}

Result<> dropPasswords(Database& catalogue) {
  auto done = catalogue.execute("UPDATE generale SET password = '', db_password = ''");
  if (done) done = dropOrderKey(catalogue);
  // Emptied fields would stay in the file's free space.
  return done ? catalogue.execute("VACUUM") : done;
}

Result<> emptyColumns(const std::string& catalogue, const ExportChoice& choice) {
  if (!choice.resetFolders && !choice.noPasswords) return {};
  auto copy = Database::open(catalogue, OpenMode::Shared);
  if (!copy) return fail(copy.error());
  Result<> done;
  if (choice.resetFolders) done = copy->execute("UPDATE generale SET siteonline = '', sitescript = ''");
  return done && choice.noPasswords ? dropPasswords(*copy) : done;
}

/// A copy of the closed catalogue as the export has it.
Result<> copyCatalogue(const std::string& from, const std::string& to, const ExportChoice& choice) {
  Result<> done = copyFile(from, to);
  return done ? emptyColumns(to, choice) : done;
}

std::function<bool(double)> watched(UserPort& user) {
  return [&user](double done) {
    user.progress({exporting, done, 1});
    return user.yield();
  };
}

/// All files, packed: the catalogue last.
Result<> pack(const ExportRun& run, const std::string& catalogue) {
  std::vector<ZipEntry> entries = run.plan.entries();
  entries.push_back({std::string(catalogueFile), catalogue, {}});
  Result<> done = writeZip(joinPath(run.to, zipName(run.session.ShopFolder)), entries, watched(run.env.user));
  return done ? deleteFile(catalogue) : done;
}

ExportOutcome endEarly(const ExportRun& run, const Error& error) {
  ignore(removeBelow(run.to), "what can't be removed is no shop, for it has no catalogue");
  run.env.user.progress({});
  if (error.kind == ErrorKind::Cancelled) return ExportOutcome::Cancelled;
  run.env.user.message(notExported, Icon::Critical);
  return ExportOutcome::Failed;
}

}  // namespace

ExportOutcome EsportaNegozio(Session& session, Environment& env, const ExportDialog& frmEsporta) {
  if (!hasTemplateToExport(session, env)) return ExportOutcome::Left;
  const std::string folder = exportFolder(session, env);
  if (folder.empty()) return ExportOutcome::Left;
  const std::string tag = frmEsporta(exportOffer(session, env.applicationFolder));
  if (tag.empty()) return ExportOutcome::Left;
  ExportRun run{session, env, folder, exportChoice(tag)};
  Result<> done = planAllButCatalogue(run);
  if (done && !run.choice.asZip) done = run.plan.writeTo(folder, watched(env.user));
  if (!done) return endEarly(run, done.error());
  // Under its name only once all is there: half an export is no shop.
  const std::string catalogue = run.ofShop(catalogueFile), unfinished = joinPath(folder, unfinishedCatalogue);
  releaseCatalogue(session, env);
  done = copyCatalogue(catalogue, unfinished, run.choice);
  ignore(RiavviaSessione(session, env), "it has told the user of any failure");
  if (done) done = run.choice.asZip ? pack(run, unfinished) : renameFile(unfinished, joinPath(folder, catalogueFile));
  if (!done) return endEarly(run, done.error());
  env.user.progress({});
  env.user.message(exportMessage(folder, run.report), Icon::Information);
  return ExportOutcome::Done;
}

}  // namespace kv
