#pragma once
// What a build knows of one language: the words of its module, the look of its template, its settings, departments and
// navigation, and the columns that all its pages share. Read once per language and constant from then on.
//
// The facts are read in three steps, since a build probes its folders and creates its databases in between and stops
// at the first thing that is amiss.

#include <functional>
#include <string>
#include <vector>

#include "builder/article/article_row.h"
#include "builder/checkout/cart_tables.h"
#include "builder/facts/department_facts.h"
#include "builder/facts/shop_facts.h"
#include "builder/navigation/menu_templates.h"
#include "builder/navigation/navigation.h"
#include "builder/page/page_tags.h"
#include "platform/ports/result.h"
#include "tags/language/language_module.h"
#include "tags/package/template_package.h"

namespace kv {

/// First step: the language itself, its pools and its words.
struct LanguageSource {
  int number = 1;            ///< 1 to 4
  std::string lingua;        ///< suffix: empty, "_l2" to "_l4"
  Pools pools;               ///< files of the template and scripts, references rewritten for the language
  LanguageModule words;      ///< fixed words
  std::string cellTemplate;  ///< the template's own showcase cell; empty: the program's
};
/// Fills the pools for a language and loads its module. `PatchScript` patches the scripts of a pool; not set: none.
/// Failures as CaricaLngFile.
Result<LanguageSource> openLanguage(const ShopFacts& shop, int number,
                                    const std::function<void(const std::string& codePool)>& patchScript);

/// Second step: what a template gives beside its pages.
struct TemplateLook {
  std::vector<std::string> colours;  ///< 0 to 3, as "#RRGGBB"
  std::string titleFont;             ///< decoration of menu titles, with "###" where the title goes
  MenuTemplates menu;                ///< sections of kvan_menu.ini
};
/// Reads the look of a template pool. Other with the number ENOENT for a colour sample that isn't there; otherwise as
/// firstPixel and CaricaClFile.
Result<TemplateLook> readLook(const std::string& templatePool);

/// Third step: the language as its pages see it.
struct LanguageFacts {
  LanguageSource source;
  std::vector<std::string> colours;     ///< of the template, 0 to 3
  FieldRow generale, pagamento;         ///< settings and payment, in the language view
  std::vector<Department> departments;  ///< in the order of level, then `ordinamento`
  DepartmentNavigation navigation;      ///< tree and menus of all pages
  ArticleRules rules;                   ///< of all articles
};
/// Reads the catalogue in the language. Failures as Database::prepare and Statement::step.
Result<LanguageFacts> readLanguageFacts(Database& catalogue, const ShopFacts& shop, LanguageSource source,
                                        TemplateLook look);

/// Computes the costs of shipping, which are the same in all languages. Failures as makeShippingTables.
Result<ShippingTables> readShipping(Database& catalogue, const ShopFacts& shop, const LanguageFacts& language);

/// Fills the columns of the page tag row that all pages of a language share. Failures as fillCartTags.
Result<> fillSharedTags(PageTagRow& row, Database& catalogue, const ShopFacts& shop, const LanguageFacts& language,
                        const ShippingTables& shipping);

}  // namespace kv
