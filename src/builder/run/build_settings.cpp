#include "builder/run/build_settings.h"

#include "builder/run/light_pictures.h"
#include "builder/values/link_naming.h"

namespace kv {
namespace {

constexpr std::string_view selectiveSetting = "smartbuild";
constexpr std::string_view builtExtension = ".php";

Result<> storeExtension(Session& session, const std::string& typed) {
  const std::string extension = ImpostaEstensione(typed);
  if (extension == builtExtension) return {};
  auto writer = session.catalogue.prepare("UPDATE generale SET estensione = ?1");
  if (!writer) return fail(writer.error());
  writer->bind(1, extension);
  return writer->execute();
}

}  // namespace

Result<BuildSettings> loadBuildSettings(Session& session) {
  const auto stored = session.catalogue.scalar("SELECT estensione FROM generale");
  if (!stored) return fail(stored.error());
  return BuildSettings{session.smartBuild, asText(*stored), wantsLightPictures(session.ShopFolder)};
}

Result<> storeBuildSettings(Session& session, Settings& settings, const BuildSettings& wanted) {
  if (auto stored = storeExtension(session, wanted.extension); !stored) return stored;
  if (auto stored = storeLightPictures(session.ShopFolder, wanted.light); !stored) return stored;
  if (auto stored = settings.set(settingsSection, selectiveSetting, wanted.selective ? "1" : "0"); !stored) {
    return stored;
  }
  session.smartBuild = wanted.selective;
  return {};
}

}  // namespace kv
