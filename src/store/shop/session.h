#pragma once
// The session: the one shop that is open, and what every other folder reads of it. A change of shop never
// modifies it; the session is torn down and filled again from `serverpath.net`.

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/database/database.h"
#include "platform/files/settings.h"
#include "platform/ports/clock.h"
#include "platform/ports/user_port.h"
#include "store/schema/schema.h"

namespace kv {

/// The section of the settings store that holds all program settings.
inline constexpr std::string_view settingsSection = "AppIni";

/// The record of the open shop, valid from a successful CaricaNegozio until the session is torn down.
struct Session {
  std::string ShopFolder;    ///< full path without trailing separator; empty means no shop
  Database catalogue;        ///< catalog.mdb, opened exclusively
  std::string templatePath;  ///< "template/<name>" relative to the application folder; empty when none is set
  std::string onlineFolder;
  std::string scriptFolder;
  std::vector<std::string> models;  ///< page models of the template, without ".htm"
  std::int32_t articleCount = 0;    ///< never below 0
  int languageCount = 0;
  std::array<std::string, maxLanguages> languageNames;
  int currentLanguage = 1;
  std::string databasePassword;
  bool compactOnExit = false;
  bool bound = false;                                  ///< the hook `bind` has run on this catalogue
  bool smartBuild = true;                              ///< incremental build is on (setting `smartbuild`)
  std::array<std::string, 2> numberFormats{"0", "0"};  ///< masks of the two currencies' amounts
};

/// How a shop is loaded, this once.
struct LoadOptions {
  bool folderJustChosen = false;  ///< by the user: the working folders are not tested
  bool silent = false;            ///< in the middle of a dialog: the template is not asked for
};

struct Environment;

/// Steps of higher folders that are part of opening a shop. The program sets them; a hook that is not set is a step
/// that the program does not have.
struct SessionHooks {
  /// Completes the gateway folders of a shop, before its catalogue is opened.
  std::function<void(const std::string& shopFolder)> CompletaGateway;
  /// Keeps a dated copy of the catalogue before anything changes it.
  std::function<void(const std::string& shopFolder)> CopiaCatalogo;
  /// Brings the shop's schema and scripts up to date, right after that.
  std::function<void(const std::string& shopFolder)> AggiornaNegozio;
  /// Binds the lists of the window to the catalogue that has just been opened, and builds the department tree.
  std::function<void(Session& session)> bind;
  /// Releases what `bind` has bound, before the catalogue is closed. Called once for each bind.
  std::function<void(Session& session)> release;
  /// Loads the main window again after the session was torn down; it runs loadSession with these options. Not set:
  /// RiavviaSessione runs loadSession itself.
  std::function<void(const LoadOptions& options)> reload;
  /// The template choice: returns the chosen name (50 characters at most), or an empty text when left without a choice.
  std::function<std::string(const std::string& current)> frmTemplate;
};

/// What a session works with besides the shop: the user, the settings, time and random numbers. References outlive it.
struct Environment {
  UserPort& user;
  Settings& settings;
  Clock& clock;
  RandomSource& random;
  std::string applicationFolder;  ///< full path without trailing separator
  SessionHooks hooks;
};

}  // namespace kv
