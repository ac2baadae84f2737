// F1 in each dialog of commerce opens its page, and every such page comes with the program.
#include <gtest/gtest.h>

#include "builder/run/frm_impostazioni.h"
#include "commerce/gateways/frm_configura_pg.h"
#include "commerce/prices/frm_varia_prezzi.h"
#include "commerce/replication/frm_replica.h"
#include "commerce/replication/frm_replica_listini.h"
#include "commerce/settings/frm_email.h"
#include "commerce/settings/frm_obbligatori.h"
#include "commerce/settings/frm_p3p.h"
#include "commerce/settings/frm_vetrina.h"
#include "commerce/shipping/frm_spedizione.h"
#include "commerce/variants/frm_opzioni.h"
#include "dialog_fixture.h"

namespace kv {
namespace {

class TheHelpOfADialog : public test::DialogFixture {
 protected:
  void expectPage(FormDialog& dialog, const std::string& page) {
    opened.clear();
    show(dialog);
    QTest::keyClick(&dialog, Qt::Key_F1);
    EXPECT_EQ(opened, "pagine/" + page) << fromQt(dialog.windowTitle());
    EXPECT_TRUE(fileExists(KORVANE_APP_DATA "/help/pagine/" + page)) << page;
    dialog.reject();
  }

  std::string opened;
  HelpOpener help = [this](std::string_view page) { opened = page; };
};

TEST_F(TheHelpOfADialog, OpensTheirPageInThoseOfSelling) {
  frmSpedizione shipping(session, env, {{}, help, ','});
  expectPage(shipping, "spedizione.htm");
  frmOpzioni variants(session, env, {" ", ',', help});
  expectPage(variants, "varianti.htm");
  frmConfiguraPG payments(session, env, {"", {}, help});
  expectPage(payments, "pagamenti.htm");
  frmPG account(session, env, gatewayModules()[0], {"", {}, help});
  expectPage(account, "pagamenti.htm");
}

TEST_F(TheHelpOfADialog, OpensThePageOfPricesInThoseOfWholePriceListsAndLanguages) {
  frmVariaPrezzi prices(session, env, {"###", "", ','}, help);
  expectPage(prices, "prezzi.htm");
  frmReplica languages(session, env, help);
  expectPage(languages, "prezzi.htm");
  frmReplicaListini lists(session, env, ',', help);
  expectPage(lists, "prezzi.htm");
}

TEST_F(TheHelpOfADialog, OpensThePageOfTheSiteInTheSmallOnes) {
  frmVetrina showcase(session, env, help);
  expectPage(showcase, "sito.htm");
  frmObbligatori required(session, env, help);
  expectPage(required, "sito.htm");
  frmP3P privacy(session, env, {}, help);
  expectPage(privacy, "sito.htm");
  frmEmail mail("Gentile cliente", help);
  expectPage(mail, "sito.htm");
  frmImpostazioni build(session, env, help);
  expectPage(build, "sito.htm");
}

}  // namespace
}  // namespace kv
