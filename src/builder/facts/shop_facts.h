#pragma once
// What a build knows of the shop: settings, folders, languages, and everything derived from them that is the same in
// all languages. Read once when the build starts and constant from then on, so that every page of a build is made from
// the same settings, whatever the user does meanwhile.

#include <string>

#include "builder/article/showcase.h"
#include "builder/output/site_folders.h"
#include "builder/page/page_prologue.h"
#include "builder/values/html_text.h"
#include "platform/database/field_row.h"
#include "platform/ports/result.h"
#include "store/shop/session.h"
#include "tags/custom/custom_tags.h"
#include "tags/language/language_module.h"

namespace kv {

/// The facts of one build.
struct ShopFacts {
  SiteFolders folders;
  std::string applicationFolder;  ///< full path without trailing separator
  std::string templateFolder;     ///< full path of the template package
  ShopLanguages languages;        ///< of the site, with the sizes of their flags
  std::string token;              ///< the name of this build: its marker file, and `db_security` of the settings

  FieldRow generale;           ///< the settings, in language 1
  std::string shopNumber;      ///< IDnegozio without a language suffix
  float factor = 1;            ///< fattore di negozio (shop factor): what the shop's own discount leaves of a price
  float shippingVat = 0;       ///< ivaspese, a fraction
  std::string redirectScript;  ///< java_redirect
  std::string phpGlobals;      ///< php_globals
  ShowcaseSettings showcase;   ///< of the lists and the showcase
  OrderRules order;            ///< of the order page
  CustomTags custom;           ///< the merchant's own tags; empty unless the settings turn them on

  HtmlText html;             ///< setting MacCodes
  bool newPhpNames = false;  ///< setting PHP4.1VARS
  bool hasMenuXml = true;    ///< setting XMLmenu: shopmenu.xml is written
};

/// The folders of the open shop.
SiteFolders siteFolders(const Session& session);

/// The languages of the open shop.
ShopLanguages shopLanguages(const Session& session, const std::string& applicationFolder);

/// Reads the facts of the open shop; `token` names the build. Failures as Database::prepare and Statement::step.
Result<ShopFacts> readShopFacts(Session& session, const Environment& env, const std::string& token);

}  // namespace kv
