#pragma once
// The phases of a build, in the order in which they run. Each is a function of constant facts and of the one writer;
// what a phase finds out for a later one is its result. All of them fail alike: Cancelled when the user has cancelled,
// Told when he has been told what is wrong, anything else when a file or a database let the build down. The first
// failure ends the build.

#include <optional>
#include <string>
#include <vector>

#include "builder/facts/article_survey.h"
#include "builder/facts/language_facts.h"
#include "builder/facts/shop_facts.h"
#include "builder/output/build_output.h"
#include "builder/output/build_progress.h"
#include "builder/run/make_pages.h"
#include "platform/ports/result.h"
#include "store/shop/session.h"

namespace kv {

/// What the pages of one language are made from. The references outlive the phases that take it.
struct PageFacts {
  const ShopFacts& shop;          ///< the same for all languages
  const LanguageFacts& language;  ///< of this language
  const PageTagRow& sharedTags;   ///< the columns that all pages of the language share; the others are empty
  PageSources sources;            ///< reads the page at hand of the output
};

/// The lists of articles that fill up while the departments are made, for the shop's own pages.
struct ArticleLists {
  std::string siteList = "<BR>";           ///< entries of the site-wide list
  std::vector<std::string> showcaseCells;  ///< cells of the showcase
};

/// Marks the build, reads the facts of the shop and creates the build database.
Result<ShopFacts> prepareBuild(Session& session, Environment& env, BuildOutput& output);

/// Copies the departments, the codes of options and the offers at list price into the build database, and surveys the
/// articles.
Result<ArticleSurvey> copyShopRows(Database& catalogue, const ShopFacts& shop, BuildOutput& output,
                                   const BuildProgress& progress);

/// What makes one language, beside what it writes to.
struct LanguageInputs {
  Database& catalogue;          ///< read, but for `db_security`
  const ShopFacts& shop;        ///< of this build
  const ArticleSurvey& survey;  ///< of this build
  const BuildParts& parts;      ///< steps of other subjects
  int number = 1;               ///< the language, from 1
};

/// Makes everything of one language. `shipping`: computed by the first language, used by all.
Result<> makeLanguage(const LanguageInputs& inputs, std::optional<ShippingTables>& shipping, BuildOutput& output,
                      BuildProgress& progress);

/// Makes the pages and rows of all departments of a language. The lists that come back are those of the whole site.
Result<ArticleLists> makeDepartments(const PageFacts& facts, Database& catalogue, BuildOutput& output,
                                     BuildProgress& progress);

/// Makes the pages that the template holds beside the department models.
Result<> makeShopPages(const PageFacts& facts, const ArticleLists& lists, BuildOutput& output,
                       const BuildProgress& progress);

/// Makes the scripts of a language, those of the back office among them, and copies its resources.
Result<> makeScriptsAndResources(const PageFacts& facts, BuildOutput& output, const BuildProgress& progress);

/// Adds the tables that only some shops have: contents for unit prices, makers, and the lowest prices before reductions
/// as the history of published prices tells them at `now`, seconds since 1970. A table without a row is not made. A
/// history that can't be read is told, and the shop goes without those prices.
Result<> copySideTables(Database& catalogue, const ShopFacts& shop, double now, BuildOutput& output);

/// Copies what all languages share (the pictures of articles and the flags), closes the output and removes the pools.
Result<> finishBuild(const ShopFacts& shop, BuildOutput& output, BuildProgress& progress);

}  // namespace kv
