#pragma once
// The state of one build run, shared by its phases. Private to builder/.

#include <array>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "builder/article/article_row.h"
#include "builder/article/showcase.h"
#include "builder/checkout/cart_tables.h"
#include "builder/navigation/navigation.h"
#include "builder/output/file_list.h"
#include "builder/page/page_tags.h"
#include "builder/page/page_wrapper.h"
#include "builder/run/make_pages.h"
#include "builder/values/currency_form.h"
#include "builder/values/run_failure.h"
#include "store/shop/session.h"
#include "tags/custom/custom_tags.h"
#include "tags/language/language_module.h"
#include "tags/package/template_package.h"

namespace kv {

inline constexpr std::string_view pageExtension = ".php";

/// A failure that the user has been told of already: the run ends.
struct RunStopped final : std::exception {};
/// A page that CreaPagina refused, with its message shown: the run ends with the closing lines.
struct PageRefused final : std::exception {};

/// One department of the language being built.
struct Department {
  std::string ID, titolo, pagina, model, genitore, descrizione, note, immagine, affiancati;
  std::int64_t maxarticoli = 0, imageWidth = 0, imageHeight = 0;
  float vatRate = 0;
  std::optional<float> sconto;
};

/// The progress bar of the run.
struct Meter {
  double position = 0;
  double maximum = 1;  ///< 1 marks that the totals aren't known yet
  double step = 0;
  int departmentsDone = 0, departments = 0;
  int articlesDone = 0, articles = 0;
};

/// What one walk over all articles of the catalogue finds out, excluded ones counted too where variants are concerned.
struct ArticleSurvey {
  int sellable = 0;                     ///< articles that aren't excluded from the shop
  std::vector<std::int64_t> variants;   ///< in use, by slot, then listino, then number; each once
  std::set<std::int64_t> inFirstSlots;  ///< what stands in the first slot of some listino, 0 too
};

/// Values that hold for one language.
struct LanguageRun {
  int number = 1;
  std::string lingua;  ///< suffix
  Pools pools;
  LanguageModule words;
  std::string cellTemplate;
  std::string IDnegozio;
  std::string titleFont;
  std::vector<std::string> colours;  ///< 0 to 3
  std::string pay_ok, pay_ko;
  FieldRow generale, pagamento;
  std::vector<Department> departments;
  DepartmentNavigation navigation;
  std::vector<std::string> showcaseCells;
  std::string siteList;
  PageTagRow shopRow;  ///< shop-level columns, the same on all pages
  PageTagRow row;      ///< of the page at hand
  ArticleRules rules;
};

struct BuildRun {
  BuildRun(Session& openSession, Environment& environment, const BuildParts& otherParts);

  Session& session;
  Environment& env;
  const BuildParts& parts;
  std::string templateFolder;
  ShopLanguages languages;
  std::string token;
  HtmlText html;
  CustomTags custom;
  FieldRow generale;  ///< of language 1
  float shippingVat = 0;
  float factor = 1;  ///< fattore di negozio
  std::string redirectScript;
  std::string phpGlobals;
  std::optional<ShippingTables> shipping;  ///< worked out in the first language
  ShowcaseSettings showcase;
  ArticleSurvey survey;
  Database build;  ///< db/sql.mdb
  Database tags;   ///< source.mdb
  FileList files;
  DerivedColumns columns;
  PageWrapper wrapper;
  Meter meter;
  LanguageRun now;
  std::vector<DerivedRow> rows;  ///< of the sub-page at hand, the first rowCount in use
  std::size_t rowCount = 0;

  /// Yields to the user; throws RunCancelled when the run has been cancelled.
  void checkCancel() const;
  /// AggiornaProg: shows caption and bar.
  void AggiornaProg() const;
  /// Makes a page; throws PageRefused when it was refused.
  void makePage(const PageJob& job);
  /// Sets lingua1..lingua4 of the page at hand to the links of `file`, or empties them for an empty name.
  void setLanguageLinks(std::string_view file);
  std::string online(std::string_view name) const;
  std::string script(std::string_view name) const;
};

/// The phases, in order. Each throws RunFailure, RunCancelled, RunStopped or PageRefused.
void prepareBuild(BuildRun& run);
void prepareLanguage(BuildRun& run, int number);
void makeDepartments(BuildRun& run);
void makeShopPages(BuildRun& run);
void makeScriptsAndResources(BuildRun& run);
void finishBuild(BuildRun& run);
/// Writes the page tag row and the derived rows at hand into the tag database, as they stand when a run ends.
void storeTagRows(BuildRun& run);

}  // namespace kv
