// The shop's own pages of one language: everything the template holds beside the department models.

#include "builder/run/build_run.h"
#include "builder/run/payment_scripts.h"
#include "commerce/gateways/payment_modules.h"
#include "platform/files/files.h"
#include "platform/text/text.h"
#include "tags/syntax/file_naming.h"

namespace kv {

namespace {

std::string outputName(const BuildRun& run, std::string_view name) {
  return PutExt(FileLingua(name, run.now.lingua), run.languages.pageExtension);
}

void makeStaticPage(BuildRun& run, const std::string& name, const std::string& output) {
  PageJob job;
  job.input = joinPath(run.now.pools.templatePool, name);
  job.output = run.online(output);
  run.makePage(job);
  run.files.add(job.output);
}

// Tags within the payment text are expanded by a second pass.
void makeThanksPage(BuildRun& run, const std::string& name, int number, const std::string& method) {
  PageTagRow& row = run.now.row;
  std::string text = ReadKpg(run.session.ShopFolder, method);
  if (text == unreadableDescriptor) {
    text.clear();
    run.env.user.message("Impossibile trovare il file '" + method + ".kpg'", Icon::Exclamation);
  }
  row.set("thankyou", std::move(text));
  row.set("java_PGAction", ReadKpgAction(run.session.ShopFolder, method, run.now.lingua));
  const std::string output = outputName(run, "thankyou" + std::to_string(number) + ".htm");
  run.setLanguageLinks(FileLingua("thankyou" + std::to_string(number) + ".htm", run.now.lingua));
  PageJob first;
  first.input = joinPath(run.now.pools.templatePool, name);
  first.output = run.online("thankyou.tmp");
  first.keepForNextPass = true;
  run.makePage(first);
  PageJob second;
  second.input = first.output;
  second.output = run.online(output);
  run.makePage(second);
  run.files.add(second.output);
  for (const std::string& script : SetPG(run, method)) run.files.add(script);
}

void makeThanksPages(BuildRun& run, const std::string& name) {
  PageTagRow& row = run.now.row;
  const FieldRow& payment = run.now.pagamento;
  int active = 0;
  for (int i = 1; i <= paymentMethods; ++i) {
    const std::string digit = std::to_string(i);
    if (!payment.flag("attivo" + digit)) continue;
    row.set("metodo_pagamento", payment.text("nome" + digit));
    makeThanksPage(run, name, ++active, payment.text("metodo" + digit));
  }
  for (const std::string_view column : {"thankyou", "java_PGAction", "metodo_pagamento"}) row.set(column, "");
}

void makePaymentPages(BuildRun& run, const std::string& name) {
  for (const auto& [page, text] : {std::pair{"payok.htm", run.now.pay_ok}, std::pair{"payerr.htm", run.now.pay_ko}}) {
    run.now.row.set("paymsg", text);
    run.setLanguageLinks(FileLingua(page, run.now.lingua));
    makeStaticPage(run, name, outputName(run, page));
  }
  run.now.row.set("paymsg", "");
}

}  // namespace

void makeShopPages(BuildRun& run) {
  PageTagRow& row = run.now.row;
  row = run.now.shopRow;
  row.set("search_maxart", run.now.generale.text("ricartperpag"));
  row.set("vetrina", showcaseTable(run.showcase, run.now.showcaseCells));
  row.set("elenco", run.now.siteList);
  run.checkCancel();
  Navigation navigation = run.now.navigation.CatEsplora(rootDepartment);
  row.set("reparti", std::move(navigation.tree));
  row.set("repartimenu", std::move(navigation.menu));
  for (const std::string& name : listFiles(run.now.pools.templatePool, "*.*htm*")) {
    run.checkCancel();
    const bool linked = !equalsIgnoringCase(name, "results.htm") && !equalsIgnoringCase(name, "thankyou.htm");
    run.setLanguageLinks(linked ? FileLingua(name, run.now.lingua) : std::string());
    if (equalsIgnoringCase(name, "thankyou.htm")) {
      makeThanksPages(run, name);
    } else if (equalsIgnoringCase(name, "paymsg.htm")) {
      makePaymentPages(run, name);
    } else if (!(startsWithIgnoringCase(name, "modello") && endsWithIgnoringCase(name, ".htm"))) {
      makeStaticPage(run, name, outputName(run, name));
    }
  }
}

}  // namespace kv
