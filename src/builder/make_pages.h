#pragma once
// One site build: from the open shop to pages, scripts, images, rows and the list of what was made. For each language
// a complete shop is built. The catalogue is only read, but for the new `db_security`.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "store/session.h"

namespace kv {

class PageTagRow;

/// The navigation of one page: columns `reparti` and `repartimenu`.
struct Navigation {
  std::string tree;
  std::string menu;
};

/// Steps of the build that belong to other subjects, in the place where they belong in its order. One that is not set
/// leaves its tags empty and its files unmade.
struct BuildParts {
  /// Patches the scripts of the code pool.
  std::function<void(const std::string& codePool)> PatchScript;
  /// Reads the menu sections of the template pool, once per language; `titleFont` decorates titles: it holds "###" in
  /// the place of the title.
  std::function<void(const std::string& templatePool, const std::string& titleFont)> CaricaClFile;
  /// Tree and drop-down for the page of a department ("###": a page of none).
  std::function<Navigation(const std::string& department, std::string_view lingua)> CatEsplora;
  /// The text of shopmenu.xml.
  std::function<std::string(std::string_view lingua)> CatEsploraXML;
  std::function<std::string(const std::string& department, std::string_view lingua)> MakePercorsoTitolo;
  std::function<std::string(const std::string& department, std::string_view lingua)> MakeSottoreparti;
  std::function<std::string(std::int64_t variant, std::string_view lingua)> CreaNomeOpzione;
  std::function<std::string(std::int64_t variant, std::string_view lingua, const std::string& name)> InserisciOpzione;
  /// Cart tables and server-side settings: sets its columns in the page tag row.
  std::function<void(PageTagRow& row, std::string_view lingua)> fillSettings;
  /// The texts of a payment method for thankyou.htm; ReadKpg gives "###ERRORE###" when the descriptor is missing.
  std::function<std::string(const std::string& method)> ReadKpg;
  std::function<std::string(const std::string& method)> ReadKpgAction;
  /// Installs the scripts of a payment method and returns its lines for the list of files.
  std::function<std::string(const std::string& method, std::string_view lingua)> SetPG;
};

enum class BuildOutcome { Done, Failed, Cancelled };

/// What a build has done, for those who want to tell it.
struct BuildCounts {
  int departments = 0;  ///< of one language
  int articles = 0;     ///< of one language
  int languages = 0;
  int pagesWritten = 0;    ///< files that CreaPagina wrote
  int pagesUnchanged = 0;  ///< files that stood as they were to be written
  std::size_t filesListed = 0;
};

/// MakePages (make pages): builds the open shop. Every failure has been told to the user when it returns Failed; a
/// cancelled build says nothing and leaves what stands. Source: the settings, template and languages of the session.
BuildOutcome MakePages(Session& session, Surroundings& surroundings, const BuildParts& parts = {},
                       BuildCounts* counts = nullptr);

}  // namespace kv
