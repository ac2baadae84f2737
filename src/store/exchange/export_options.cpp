#include "store/exchange/export_options.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "platform/files/files.h"
#include "platform/files/listing.h"
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
  bool mayHaveScripts = false;
  for (const char* pattern : {"*.php", "*.js"}) {
    auto names = readFileNames(code, pattern);
    mayHaveScripts = mayHaveScripts || !names || !names->empty();
    if (names) std::ranges::move(*names, std::back_inserter(offer.scriptList));
  }
  offer.scripts = mayHaveScripts && !isApplicationFolder(session.ShopFolder, applicationFolder);
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
