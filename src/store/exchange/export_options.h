#pragma once
// The choices of frmEsporta: which of them a shop offers, and the text of characters in which they are returned.

#include <string>
#include <string_view>
#include <vector>

#include "store/shop/session.h"

namespace kv {

inline constexpr std::string_view exportTitle = "Korvane - Impostazioni esportazione";
inline constexpr std::string_view exportTemplateCaption = "Esporta il template utilizzato dal negozio";
inline constexpr std::string_view exportLanguagesCaption = "Esporta i moduli linguistici utilizzati dal negozio";
inline constexpr std::string_view exportScriptsCaption = "Esporta gli script:";
inline constexpr std::string_view exportScriptsNote =
    "(selezionare questa opzione se gli script sono stati personalizzati)";
inline constexpr std::string_view exportResetCaption = "Resetta le cartelle di lavoro del negozio esportato";
inline constexpr std::string_view exportAllTagsCaption = "Esporta tutti i tag personalizzati";
inline constexpr std::string_view exportPasswordsNote =
    "Con il negozio viaggiano anche le password del server e del database.";
inline constexpr std::string_view exportNoPasswordsCaption = "Non esportare le password";
inline constexpr std::string_view exportZipCaption = "Esporta in un unico file .zip";
inline constexpr std::string_view exportShopTagsCaption =
    "Esporta solo i tag personalizzati relativi al negozio corrente";

/// What the dialog has on offer besides template, languages and reset.
struct ExportOffer {
  bool scripts = false;                 ///< the box of the scripts with their list
  bool commonTags = false;              ///< the two buttons of the tags, the first one chosen
  std::vector<std::string> scriptList;  ///< names of code/*.php and code/*.js
};
/// The offer of the open shop. Scripts: there are some, or the folder can't be read, and the shop isn't the application
/// folder, whose scripts are the model's. Tags: the application folder has a personal.tag.
ExportOffer exportOffer(const Session& session, const std::string& applicationFolder);

/// The options of an export.
struct ExportChoice {
  bool withTemplate = false;   ///< T
  bool withLanguages = false;  ///< L
  bool withScripts = false;    ///< S
  bool resetFolders = false;   ///< R
  bool withAllTags = false;    ///< P
  bool asZip = false;          ///< Z: one archive in the folder, instead of the files themselves
  bool noPasswords = false;    ///< W: the copy has no passwords and no key of orders, the firewall's file stays
};
/// "OK" and the characters of what is chosen, in the order TLSRPWZ.
std::string exportTag(const ExportChoice& choice);
/// The name of the archive of a shop: that of its folder with ".zip".
std::string zipName(std::string_view shopFolder);
/// The choice that a tag or a list of these characters means; case and other characters are ignored.
ExportChoice exportChoice(std::string_view characters);

}  // namespace kv
