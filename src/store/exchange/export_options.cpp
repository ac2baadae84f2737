#include "store/exchange/export_options.h"

#include <array>

#include "platform/files/files.h"
#include "platform/text/text.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

struct ExportCharacter {
  char character;
  bool ExportChoice::*chosen;
};
constexpr std::array<ExportCharacter, 7> exportCharacters{{{'T', &ExportChoice::withTemplate},
                                                           {'L', &ExportChoice::withLanguages},
                                                           {'S', &ExportChoice::withScripts},
                                                           {'R', &ExportChoice::resetFolders},
                                                           {'P', &ExportChoice::withAllTags},
                                                           {'W', &ExportChoice::noPasswords},
                                                           {'Z', &ExportChoice::asZip}}};
constexpr std::string_view okTag = "OK";

}  // namespace

ExportOffer exportOffer(const Session& session, const std::string& applicationFolder) {
  ExportOffer offer;
  const std::string code = entryPath(session.ShopFolder, "code");
  for (const char* pattern : {"*.php", "*.js"}) {
    for (std::string& name : listFiles(code, pattern)) offer.scriptList.push_back(std::move(name));
  }
  offer.scripts = !offer.scriptList.empty() && !isApplicationFolder(session.ShopFolder, applicationFolder);
  offer.commonTags = fileExists(entryPath(applicationFolder, "personal.tag"));
  return offer;
}

std::string exportTag(const ExportChoice& choice) {
  std::string tag(okTag);
  for (const ExportCharacter& one : exportCharacters) {
    if (choice.*one.chosen) tag += one.character;
  }
  return tag;
}

std::string zipName(std::string_view shopFolder) {
  const std::string_view name = baseName(shopFolder);
  return (name.empty() ? std::string("negozio") : std::string(name)) + ".zip";
}

ExportChoice exportChoice(std::string_view characters) {
  if (characters.starts_with(okTag)) characters.remove_prefix(okTag.size());
  ExportChoice choice;
  for (const ExportCharacter& one : exportCharacters) {
    choice.*one.chosen = findIgnoringCase(characters, std::string_view(&one.character, 1)) != std::string_view::npos;
  }
  return choice;
}

}  // namespace kv
