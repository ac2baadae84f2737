// The shop's own pages of one language: everything the template holds beside the department models.

#include <array>
#include <utility>

#include "builder/checkout/payment_scripts.h"
#include "builder/run/build_phases.h"
#include "commerce/gateways/payment_modules.h"
#include "platform/files/files.h"
#include "platform/files/listing.h"
#include "platform/text/text.h"
#include "tags/syntax/file_naming.h"

namespace kv {

namespace {

/// Makes the pages of one language, one template after the other.
class ShopPageMaker {
 public:
  ShopPageMaker(const PageFacts& facts, BuildOutput& output)
      : facts_(facts), output_(output), row_(output.page().row), lingua_(facts.language.source.lingua) {}

  /// The columns that all of these pages show.
  void fillRow(const ArticleLists& lists);
  void fillNavigation();
  /// Makes the pages of a template of the pool; none for a department model.
  Result<> make(const std::string& name);

 private:
  std::string outputName(std::string_view name) const;
  void linkLanguages(const std::string& name);
  Result<> makePlainPage(const std::string& name, const std::string& output);
  Result<> makeThanksPage(const std::string& name, int number, const std::string& method);
  Result<> makeThanksPages(const std::string& name);
  Result<> makePaymentPages(const std::string& name);

  const PageFacts& facts_;
  BuildOutput& output_;
  PageTagRow& row_;  // of the page at hand
  const std::string& lingua_;
};

std::string ShopPageMaker::outputName(std::string_view name) const {
  return PutExt(FileLingua(name, lingua_), facts_.shop.languages.pageExtension);
}

// The links lead to the copies of the page of this name, which has the suffix of its language; an empty one has none.
void ShopPageMaker::linkLanguages(const std::string& name) {
  setLanguageLinks(row_, facts_.shop.languages, facts_.language.source.number,
                   name.empty() ? name : FileLingua(name, lingua_));
}

void ShopPageMaker::fillRow(const ArticleLists& lists) {
  row_ = facts_.sharedTags;
  row_.set("search_maxart", facts_.language.generale.text("ricartperpag"));
  row_.set("vetrina", showcaseTable(facts_.shop.showcase, lists.showcaseCells));
  row_.set("elenco", lists.siteList);
}

void ShopPageMaker::fillNavigation() {
  Navigation navigation = facts_.language.navigation.CatEsplora(rootDepartment);
  row_.set("reparti", std::move(navigation.tree));
  row_.set("repartimenu", std::move(navigation.menu));
}

Result<> ShopPageMaker::makePlainPage(const std::string& name, const std::string& output) {
  PageJob job;
  job.input = joinPath(facts_.language.source.pools.templatePool, name);
  job.output = facts_.shop.folders.onlineFile(output);
  if (auto made = output_.makePage(job, facts_.sources); !made) return made;
  output_.list(job.output);
  return {};
}

// Tags within the payment text are expanded by a second pass.
Result<> ShopPageMaker::makeThanksPage(const std::string& name, int number, const std::string& method) {
  const SiteFolders& folders = facts_.shop.folders;
  std::string text = ReadKpg(folders.shop, method);
  if (text == unreadableDescriptor) {
    text.clear();
    output_.warn("Impossibile trovare il file '" + method + ".kpg'");
  }
  row_.set("java_PGAction", ReadKpgAction(folders.shop, method, lingua_));
  row_.set("thankyou", asTagValue(text, facts_.sources));
  const std::string page = "thankyou" + std::to_string(number) + ".htm";
  linkLanguages(page);
  PageJob first;
  first.input = joinPath(facts_.language.source.pools.templatePool, name);
  first.output = folders.onlineFile("thankyou.tmp");
  first.keepForNextPass = true;
  if (auto made = output_.makePage(first, facts_.sources); !made) return made;
  PageJob second;
  second.input = first.output;
  second.output = folders.onlineFile(outputName(page));
  if (auto made = output_.makePage(second, facts_.sources); !made) return made;
  output_.list(second.output);
  for (const std::string& script : SetPG(method, facts_.sources, output_)) output_.list(script);
  return {};
}

Result<> ShopPageMaker::makeThanksPages(const std::string& name) {
  const FieldRow& payment = facts_.language.pagamento;
  int active = 0;
  for (int i = 1; i <= paymentMethods; ++i) {
    const std::string digit = std::to_string(i);
    if (!payment.flag("attivo" + digit)) continue;
    row_.set("metodo_pagamento", payment.text("nome" + digit));
    if (auto made = makeThanksPage(name, ++active, payment.text("metodo" + digit)); !made) return made;
  }
  for (const std::string_view column : {"thankyou", "java_PGAction", "metodo_pagamento"}) row_.set(column, "");
  return {};
}

Result<> ShopPageMaker::makePaymentPages(const std::string& name) {
  const LanguageModule& words = facts_.language.source.words;
  static constexpr std::array<std::pair<const char*, const char*>, 2> pages{
      {{"payok.htm", "pay_ok"}, {"payerr.htm", "pay_ko"}}};
  for (const auto& [page, word] : pages) {
    row_.set("paymsg", words.TagLingua(word));
    linkLanguages(page);
    if (auto made = makePlainPage(name, outputName(page)); !made) return made;
  }
  row_.set("paymsg", "");
  return {};
}

Result<> ShopPageMaker::make(const std::string& name) {
  const bool linked = !equalsIgnoringCase(name, "results.htm") && !equalsIgnoringCase(name, "thankyou.htm");
  linkLanguages(linked ? name : "");
  if (equalsIgnoringCase(name, "thankyou.htm")) return makeThanksPages(name);
  if (equalsIgnoringCase(name, "paymsg.htm")) return makePaymentPages(name);
  if (startsWithIgnoringCase(name, "modello") && endsWithIgnoringCase(name, ".htm")) return {};
  return makePlainPage(name, outputName(name));
}

}  // namespace

Result<> makeShopPages(const PageFacts& facts, const ArticleLists& lists, BuildOutput& output,
                       const BuildProgress& progress) {
  ShopPageMaker maker(facts, output);
  maker.fillRow(lists);
  if (auto go = progress.checkCancel(); !go) return go;
  maker.fillNavigation();
  const auto pages = readFileNames(facts.language.source.pools.templatePool, "*.*htm*");
  if (!pages) return fail(pages.error());
  for (const std::string& name : *pages) {
    if (auto go = progress.checkCancel(); !go) return go;
    if (auto made = maker.make(name); !made) return made;
  }
  return {};
}

}  // namespace kv
