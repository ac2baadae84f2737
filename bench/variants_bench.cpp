// The dialog of variants over 1,000 variants of 50 options each and many articles: how long it takes to open with its
// window, and to refuse the deletion of a variant that the last article alone uses, beside one bare scan of the forty
// columns of slots. The screen is one in memory. The fastest of each counts.
//
// Arguments: --quick (10,000 articles).

#include <QApplication>
#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>

#include "catalogue_shop.h"
#include "commerce/variants/frm_opzioni.h"
#include "commerce/variants/variant_rows.h"
#include "measure.h"
#include "platform/files/settings.h"
#include "platform/ports/clock.h"

namespace {

using kv::bench::printBar;
using kv::bench::secondsOf;

constexpr int variantRounds = 5;
constexpr double scanBar = 3;
constexpr const char* manyVariants =
    "DELETE FROM opzioni; DELETE FROM dettagliop; UPDATE articoli SET opzione1 = ID % 900 + 1;"
    "INSERT INTO opzioni (ID, nome) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000)"
    " SELECT i, iif(i = 1, '(nessuna)', 'Variante ' || i) FROM n;"
    "INSERT INTO dettagliop (OpID, testo, prezzo) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n"
    " WHERE i < 50) SELECT opzioni.ID, 'Opzione ' || n.i, n.i * 1000 FROM opzioni, n WHERE opzioni.ID > 1;"
    "UPDATE articoli SET opzione4_9 = 950 WHERE ID = (SELECT max(ID) FROM articoli)";

int run(const std::string& folder, int articles) {
  const kv::bench::CatalogueShop shop(folder, articles, manyVariants);
  kv::bench::SilentUser user(kv::Answer::Yes);
  kv::MemorySettings settings;
  kv::Environment env{user, settings, kv::systemClock(), kv::systemRandom(), folder + "/app", {}};
  kv::Session session;
  session.ShopFolder = shop.shop();
  session.languageCount = 4;
  session.languageNames = {"italiano", "inglese", "francese", "tedesco"};
  session.catalogue = shop.fresh();
  double scan = 1e9, opening = 1e9, refusal = 1e9;
  for (int i = 0; i < variantRounds; ++i) {
    scan = std::min(scan, secondsOf([&] {
                      return session.catalogue
                          .scalar("SELECT count(*) FROM articoli WHERE 950 IN (" + kv::allSlotColumns() + ")")
                          .has_value();
                    }));
    opening = std::min(opening, secondsOf([&] {
                         kv::frmOpzioni dialog(session, env, {"950"});
                         dialog.show();
                         QApplication::processEvents();
                         return dialog.isVisible();
                       }));
    kv::VariantEditor editor(session, user, ',');
    refusal = std::min(refusal, secondsOf([&] { return !editor.deleteVariant(950); }));
  }
  std::printf("%d articles: scan %.3f s, opening %.3f s, refusal %.3f s\n\nBars\n", articles, scan, opening, refusal);
  printBar("opening / scan", opening / scan, scanBar);
  printBar("refusal / scan", refusal / scan, scanBar);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  const bool quick = argc > 1 && std::string_view(argv[1]) == "--quick";
  const kv::bench::FreshFolder folder;
  return run(folder.path(), quick ? 10000 : 100000);
}
