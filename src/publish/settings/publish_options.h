#pragma once
// What the dialog before a publish run shows and keeps: the rules of frmImpostaFTP.

#include <array>
#include <string>

#include "platform/ports/result.h"
#include "publish/settings/publish_settings.h"

namespace kv {

inline constexpr std::string_view buildBeforePublishing =
    "E' necessario costruire il negozio prima di aggiornare il sito";

/// Whether the list of files of the last build can be read, without which there is nothing to publish.
bool isBuilt(const std::string& shopFolder);

/// What is said beside "Impostazioni consigliate" before the first publish of a shop.
inline constexpr std::string_view firstPublishAdvice =
    "È il primo invio di questo negozio: \"Impostazioni consigliate\" lo rende più sicuro e più rapido.";
/// Whether a shop was never sent and the choices of sending were never changed.
bool isFirstPublish(const std::string& shopFolder);

/// The choices as the controls show them.
struct PublishOptions {
  /// What isn't one of the fields below is shown as it is.
  PublishSettings settings;
  bool filtersTypes = false;                                          ///< chkImpo: only files of the groups ticked
  std::array<bool, typeGroups.size()> types{true, true, true, true};  ///< one for each of typeGroups
  bool canUseIncremental = true;  ///< "Aggiorna solo i record modificati" can be chosen

  /// The choices of a shop. Where the difference can't be used the whole database is chosen.
  static PublishOptions of(const PublishSettings& settings, bool canUseIncremental);

  /// Whether the controls of the group of files can be used: not while the merchant carries the files himself.
  bool areFilesEnabled() const { return !settings.disabled; }
  /// Whether the four boxes of extensions can be used.
  bool areTypesEnabled() const { return areFilesEnabled() && filtersTypes; }

  /// The default choices of everything the reset names: only modified files of the shop, of every type, by FTP, and all
  /// records.
  void reset();
  /// Few hosts allow a visitor fewer connections than these.
  static constexpr int recommendedConnections = 3;
  /// "Impostazioni consigliate": safe upload, several connections, content check and retry.
  void recommend();
  /// What is to be written.
  PublishSettings chosen() const;
};

/// The message for choices that couldn't be written.
std::string optionsFailure(const Error& error);

}  // namespace kv
