#include "store/shop/session_facts.h"

#include "platform/files/files.h"
#include "store/shop/load_shop.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

Result<std::string> workingFolder(Session& session, const std::string& column, const std::string& name) {
  auto stored = readSetting(session, column);
  if (!stored || !stored->empty()) return stored;
  return entryPath(session.ShopFolder, name);
}

}  // namespace

Result<std::string> readSetting(Session& session, const std::string& column) {
  const auto value = session.catalogue.scalar("SELECT " + column + " FROM generale");
  if (!value) return fail(value.error());
  return asText(*value);
}

Result<> readWorkingFolders(Session& session) {
  auto online = workingFolder(session, "siteonline", "online");
  if (!online) return fail(online.error());
  auto scripts = workingFolder(session, "sitescript", "scripts");
  if (!scripts) return fail(scripts.error());
  session.onlineFolder = std::move(*online);
  session.scriptFolder = std::move(*scripts);
  return {};
}

Result<> readTemplate(Session& session, const std::string& applicationFolder) {
  const auto name = readSetting(session, "template");
  if (!name) return fail(name.error());
  session.templatePath = name->empty() ? std::string() : installedTemplate(applicationFolder, *name);
  session.models.clear();
  if (!name->empty()) session.models = templateModels(applicationFolder, *name);
  if (session.models.empty()) session.models = {fallbackModel};
  return {};
}

Result<> readSessionFacts(Session& session, const std::string& applicationFolder) {
  if (auto read = readWorkingFolders(session); !read) return read;
  if (auto read = readTemplate(session, applicationFolder); !read) return read;
  if (auto read = readLanguages(session); !read) return read;
  if (session.currentLanguage > session.languageCount) session.currentLanguage = 1;
  return {};
}

}  // namespace kv
