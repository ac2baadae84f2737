#include "store/shop/load_shop.h"

#include <algorithm>
#include <limits>

#include "platform/files/files.h"
#include "platform/files/private_file.h"
#include "platform/text/text.h"
#include "store/shop/open_shop.h"
#include "store/shop/order_numbers.h"
#include "store/shop/session_facts.h"
#include "store/shop/shop_check.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

constexpr std::size_t templateNameWidth = 50;
constexpr const char* incompatible =
    "Negozio non compatibile con la versione Korvane\nSi desidera aprire un altro negozio?";
constexpr const char* templateNeeded = "Per costruire il negozio sarà necessario scegliere un template";
constexpr const char* readOnly =
    "Il file \"catalog.mdb\" potrebbe essere in sola lettura.\n\n"
    "Se la cartella del negozio è stata copiata da un CD o altro supporto\n"
    "di sola lettura, per aprire il negozio sarà necessario rimuovere l'attributo\n"
    "\"sola lettura\" da tutti i file della cartella e delle sottocartelle.\n\n"
    "Si desidera farlo ora?";
constexpr const char* repaired = "Operazione completata. Sarà necessario riavviare il programma.";
constexpr const char* notRepaired =
    "Impossibile rimuovere l'attributo \"sola lettura\" dai file della cartella del negozio.";

bool isIncompatible(const std::string& path) {
  auto catalogue = ApriDatabase(path, false);
  if (!catalogue) return false;
  const auto version = catalogueVersion(*catalogue);
  return version && *version < firstVersion;
}

void completeShop(const Session& session, const Environment& env) {
  if (env.hooks.CompletaGateway) env.hooks.CompletaGateway(session.ShopFolder);
  const std::string catalogue = entryPath(session.ShopFolder, catalogueFile);
  // It holds the passwords of the server and of its database, and so will its copies.
  ignore(restrictToOwner(catalogue), "a shop on a medium that can't be changed opens");
  if (isIncompatible(catalogue)) return;
  if (env.hooks.CopiaCatalogo) env.hooks.CopiaCatalogo(session.ShopFolder);
  // It renumbers, too, while it has the catalogue open: in a large shop each opening is a good part of the loading.
  if (env.hooks.AggiornaNegozio) {
    env.hooks.AggiornaNegozio(session.ShopFolder);
  } else {
    renumberShop(session.ShopFolder);
  }
}

LoadResult offerAnotherShop(Session& session, Environment& env) {
  // The folder just refused may be chosen again; then its files decide.
  session.catalogue.close();
  const Answer answer = env.user.question({incompatible, Buttons::YesNo, Answer::Yes, Icon::Question});
  if (answer == Answer::Yes && ApriNegozio(session, env, "*")) return LoadResult::Replaced;
  return LoadResult::Failed;
}

Result<> storeSetting(Session& session, const std::string& column, const std::string& value) {
  auto statement = session.catalogue.prepare("UPDATE generale SET " + column + " = ?");
  if (!statement) return fail(statement.error());
  statement->bind(1, std::string_view(value));
  return statement->execute();
}

/// A working folder: its column, the default when the column is empty, and its field in the session.
struct WorkingFolder {
  const char* column;
  const char* name;
  std::string Session::*field;
};
constexpr std::array<WorkingFolder, 2> workingFolders{
    {{"siteonline", "online", &Session::onlineFolder}, {"sitescript", "scripts", &Session::scriptFolder}}};

Result<> resetIfMissing(Session& session, Environment& env, const WorkingFolder& working) {
  std::string& folder = session.*working.field;
  if (folderExists(folder)) return {};
  const std::string text =
      "La cartella di lavoro \"" + folder + "\" non esiste:\nSi desidera resettarla e utilizzare quella predefinita?";
  if (env.user.question({text, Buttons::YesNo, Answer::No, Icon::Question}) != Answer::Yes) return {};
  if (auto stored = storeSetting(session, working.column, ""); !stored) return stored;
  folder = entryPath(session.ShopFolder, working.name);
  ignore(createFolder(folder), "the build reports a missing default folder");
  return {};
}

Result<> resolveFolders(Session& session, Environment& env, const LoadOptions& options) {
  if (auto read = readWorkingFolders(session); !read) return read;
  if (options.folderJustChosen) return {};
  for (const WorkingFolder& working : workingFolders) {
    if (auto tested = resetIfMissing(session, env, working); !tested) return tested;
  }
  return {};
}

Result<> resolveTemplate(Session& session, Environment& env, const LoadOptions& options) {
  auto name = readSetting(session, "template");
  if (!name) return fail(name.error());
  session.templatePath.clear();
  session.models.clear();
  if (!name->empty()) {
    session.templatePath = installedTemplate(env.applicationFolder, *name);
    session.models = templateModels(env.applicationFolder, *name);
    if (!session.models.empty()) return {};
  }
  if (options.silent) {
    session.models = {fallbackModel};
    return {};
  }
  auto chosen = chooseTemplate(session, env, *name);
  if (!chosen) return fail(chosen.error());
  if (*chosen) return {};
  session.models = {fallbackModel};
  if (!name->empty()) env.user.message(templateNeeded, Icon::Exclamation);
  return {};
}

Result<LoadResult> fillSession(Session& session, Environment& env, const LoadOptions& options) {
  auto catalogue = ApriDatabase(entryPath(session.ShopFolder, catalogueFile), true);
  if (!catalogue) return fail(catalogue.error());
  session.catalogue = std::move(*catalogue);
  const auto version = catalogueVersion(session.catalogue);
  if (!version) return fail(version.error());
  if (*version < firstVersion) return offerAnotherShop(session, env);
  if (auto whole = requireTables(session.catalogue); !whole) return fail(whole.error());
  if (auto counted = countArticles(session); !counted) return fail(counted.error());
  if (env.hooks.bind) env.hooks.bind(session);
  session.bound = true;
  if (auto resolved = resolveFolders(session, env, options); !resolved) return fail(resolved.error());
  if (auto resolved = resolveTemplate(session, env, options); !resolved) return fail(resolved.error());
  if (auto read = readLanguages(session); !read) return fail(read.error());
  return LoadResult::Opened;
}

void repairReadOnly(Session& session, Environment& env) {
  if (env.user.question({readOnly, Buttons::YesNo, Answer::Yes, Icon::Exclamation}) != Answer::Yes) {
    session.ShopFolder.clear();
    return;
  }
  if (makeWritable(session.ShopFolder)) {
    env.user.message(repaired, Icon::Information);
    return;
  }
  env.user.message(notRepaired, Icon::Critical);
  session.ShopFolder.clear();
}

LoadResult reportFailure(Session& session, Environment& env, const Error& error) {
  releaseCatalogue(session, env);
  if (error.kind == ErrorKind::ReadOnly) {
    repairReadOnly(session, env);
    return LoadResult::Failed;
  }
  env.user.message(catalogueFailure(error.kind), Icon::Critical);
  session.ShopFolder.clear();
  return LoadResult::Failed;
}

}  // namespace

void releaseCatalogue(Session& session, const Environment& env) {
  if (session.bound && env.hooks.release) env.hooks.release(session);
  session.bound = false;
  session.catalogue.close();
}

LoadResult CaricaNegozio(Session& session, Environment& env, const LoadOptions& options) {
  if (session.ShopFolder.empty()) return LoadResult::Failed;
  completeShop(session, env);
  const auto filled = fillSession(session, env, options);
  return filled ? *filled : reportFailure(session, env, filled.error());
}

std::vector<std::string> templateModels(const std::string& applicationFolder, const std::string& name) {
  return pageModels(joinPath(applicationFolder, installedTemplate(applicationFolder, name)));
}

Result<bool> chooseTemplate(Session& session, const Environment& env, const std::string& current) {
  if (!env.hooks.frmTemplate) return false;
  const std::string answer = env.hooks.frmTemplate(current);
  const std::string name(firstCharacters(answer, templateNameWidth));
  if (name.empty()) return false;
  if (auto stored = storeSetting(session, "template", name); !stored) return fail(stored.error());
  session.templatePath = installedTemplate(env.applicationFolder, name);
  session.models = templateModels(env.applicationFolder, name);
  return true;
}

Result<> readLanguages(Session& session) {
  auto row = session.catalogue.prepare("SELECT lingua1, lingua2, lingua3, lingua4 FROM lingue");
  if (!row) return fail(row.error());
  const auto found = row->step();
  if (!found) return fail(found.error());
  if (!*found) return fail(ErrorKind::Corrupt, "lingue", "no row");
  for (std::size_t i = 0; i < maxLanguages; ++i) session.languageNames[i] = std::string(row->text(static_cast<int>(i)));
  const auto firstEmpty = std::ranges::find(session.languageNames, std::string());
  session.languageCount = static_cast<int>(firstEmpty - session.languageNames.begin());
  return {};
}

Result<> countArticles(Session& session) {
  const auto count = session.catalogue.scalar("SELECT COUNT(*) AS nArt FROM articoli");
  if (!count) return fail(count.error());
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  session.articleCount = static_cast<std::int32_t>(std::clamp<std::int64_t>(asInteger(*count), 0, most));
  return {};
}

}  // namespace kv
