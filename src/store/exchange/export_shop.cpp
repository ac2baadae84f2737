#include "store/exchange/export_shop.h"

#include "platform/files/trees.h"
#include "platform/text/text.h"
#include "store/exchange/export_report.h"
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
constexpr std::string_view exporting = "Esportazione in corso...";

/// An export on its way: where from, where to, what goes along.
struct ExportRun {
  const Session& session;
  Environment& env;
  std::string to;
  ExportChoice choice;
  ExportReport report{};
};

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

/// A folder inside the shop can be the target: it is left out of its own copy. The model's catalogue is never copied.
Result<> copyFolder(const ExportRun& run, const std::string& from, const std::string& to) {
  if (!folderExists(from)) return {};
  const std::string exceptFile(to == run.to ? catalogueFile : std::string_view());
  const auto goOn = [&user = run.env.user] {
    user.progress({exporting, 0, 0});
    return user.yield();
  };
  return copyTree({from, to, run.to, exceptFile, goOn});
}

Result<> copyIfThere(const ExportRun& run, std::string_view name) {
  const std::string from = joinPath(run.session.ShopFolder, name);
  return fileExists(from) ? copyFile(from, joinPath(run.to, name)) : Result<>{};
}

Result<> copyModelAndFolders(const ExportRun& run) {
  if (auto copied = copyFolder(run, joinPath(run.env.applicationFolder, "new"), run.to); !copied) return copied;
  for (const char* name : {"work", "code", "db"}) {
    const std::string from = joinPath(run.session.ShopFolder, name);
    if (auto copied = copyFolder(run, from, joinPath(run.to, name)); !copied) return copied;
  }
  return copyIfThere(run, "shoptag.tag");
}

Result<> copyTemplate(ExportRun& run) {
  if (!run.choice.withTemplate) return {};
  run.report.pieces.emplace_back("il template");
  return copyFolder(run, joinPath(run.env.applicationFolder, run.session.templatePath),
                    joinPath(run.to, run.session.templatePath));
}

/// Line by line: the last line of either file may have no end.
Result<> appendCommonTags(ExportRun& run) {
  const auto common = readBytes(joinPath(run.env.applicationFolder, "personal.tag"));
  if (!run.choice.withAllTags || !common) return {};
  const std::string path = joinPath(run.to, "shoptag.tag");
  std::string tags = readBytes(path).value_or("");
  if (!tags.empty() && !tags.ends_with('\n')) tags += "\r\n";
  for (const std::string_view line : splitLines(*common)) tags += std::string(line) + "\r\n";
  run.report.pieces.emplace_back("i tag personalizzati");
  return writeBytes(path, tags);
}

Result<> copyLanguages(ExportRun& run) {
  if (!run.choice.withLanguages) return {};
  const std::string from = joinPath(run.env.applicationFolder, languagesFolder);
  const std::string to = joinPath(run.to, languagesFolder);
  if (auto made = createFolder(to); !made) return made;
  for (int i = 0; i < run.session.languageCount; ++i) {
    const std::string& language = run.session.languageNames[static_cast<std::size_t>(i)];
    for (const std::string& name : listFiles(from, language + ".*")) {
      if (auto copied = copyFile(joinPath(from, name), joinPath(to, name)); !copied) return copied;
    }
  }
  run.report.pieces.emplace_back("i moduli linguistici");
  return {};
}

std::vector<std::string> scriptsIn(const std::string& code) {
  std::vector<std::string> names = listFiles(code, "*.php");
  for (std::string& name : listFiles(code, "*.js")) names.push_back(std::move(name));
  return names;
}

Result<> deleteScripts(const std::string& code) {
  for (const std::string& name : scriptsIn(code)) {
    if (auto deleted = deleteFile(joinPath(code, name)); !deleted) return deleted;
  }
  return {};
}

/// The scripts of the application's own shop are the model's, and never go along.
Result<> sortScripts(ExportRun& run) {
  const std::string code = joinPath(run.to, "code");
  const bool isModel = isApplicationFolder(run.session.ShopFolder, run.env.applicationFolder);
  if (isModel || !run.choice.withScripts) return deleteScripts(code);
  const std::string inShop = joinPath(run.session.ShopFolder, "code");
  for (const std::string& name : scriptsIn(code)) run.report.scripts.push_back(joinPath(inShop, name));
  return {};
}

Result<> copyAllButCatalogue(ExportRun& run) {
  Result<> done = copyModelAndFolders(run);
  if (done) done = copyTemplate(run);
  if (done) done = copyLanguages(run);
  if (done) done = appendCommonTags(run);
  if (done) done = sortScripts(run);
  if (done) done = copyIfThere(run, transferFile);
  if (done && !run.choice.noPasswords) done = copyIfThere(run, "firewall.net");
  if (done) done = copyIfThere(run, "kvftp.ini");
  return done;
}

Result<> emptyColumns(const std::string& catalogue, const ExportChoice& choice) {
  if (!choice.resetFolders && !choice.noPasswords) return {};
  auto copy = Database::open(catalogue, OpenMode::Shared);
  if (!copy) return fail(copy.error());
  Result<> done;
  if (choice.resetFolders) done = copy->execute("UPDATE generale SET siteonline = '', sitescript = ''");
  if (done && choice.noPasswords) done = copy->execute("UPDATE generale SET password = '', db_password = ''");
  // Emptied fields would stay in the file's free space.
  if (done && choice.noPasswords) done = copy->execute("VACUUM");
  return done;
}

/// The last step: under its name only once it is as it should be.
Result<> copyCatalogue(const std::string& from, const std::string& to, const ExportChoice& choice) {
  const std::string unfinished = joinPath(to, unfinishedCatalogue);
  Result<> done = copyFile(joinPath(from, catalogueFile), unfinished);
  if (done) done = emptyColumns(unfinished, choice);
  if (done) done = renameFile(unfinished, joinPath(to, catalogueFile));
  return done;
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
  if (const auto copied = copyAllButCatalogue(run); !copied) return endEarly(run, copied.error());
  const std::string shopFolder = session.ShopFolder;
  releaseCatalogue(session, env);
  const auto copied = copyCatalogue(shopFolder, folder, run.choice);
  ignore(RiavviaSessione(session, env), "it has told the user of any failure");
  if (!copied) return endEarly(run, copied.error());
  env.user.progress({});
  env.user.message(exportMessage(folder, run.report), Icon::Information);
  return ExportOutcome::Done;
}

}  // namespace kv
