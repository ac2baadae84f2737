#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QTabWidget>
#include <QTableView>
#include <array>

#include "media/purge/frm_pulisci_immagini.h"
#include "platform/files/files.h"
#include "scenes.h"
#include "store/exchange/frm_esporta.h"

namespace kv::scenes {
namespace {

/// A dialog of the tab of the site.
void takeSiteEntry(Stage& stage, std::string_view command, const QString& name) {
  stage.show(Tab::Site);
  takeEntry(stage, command, name);
}
void takePayment(Stage& stage, const QString& name) { takeSiteEntry(stage, "payment", name); }
void takeShipping(Stage& stage, const QString& name) { takeSiteEntry(stage, "shipping", name); }

/// One page of the dialog of shipping.
void takeShippingPage(Stage& stage, int page, const QString& name) {
  stage.show(Tab::Site);
  stage.during([&] { stage.choose("shipping"); },
               [&](QWidget& dialog) {
                 dialog.findChild<QTabWidget*>(QStringLiteral("tabSpedizione"))->setCurrentIndex(page);
                 if (auto* amount = dialog.findChild<QLineEdit*>(QStringLiteral("txtProvaImporto"))) {
                   amount->setText(QStringLiteral("49,90"));
                 }
                 stage.take(name);
               });
}
void takeShippingCountries(Stage& stage, const QString& name) { takeShippingPage(stage, 1, name); }
void takeShippingCosts(Stage& stage, const QString& name) { takeShippingPage(stage, 2, name); }
void takeShippingTrial(Stage& stage, const QString& name) { takeShippingPage(stage, 3, name); }

/// The dialog of one payment module, over the window with all of them.
void takeAccount(Stage& stage, const char* button, const QString& name) {
  stage.show(Tab::Site);
  stage.during([&] { stage.choose("payment"); },
               [&](QWidget& modules) {
                 stage.during([&] { modules.findChild<QAbstractButton*>(QLatin1String(button))->click(); },
                              [&](QWidget&) { stage.take(name); });
               });
}
void takeBankpass(Stage& stage, const QString& name) { takeAccount(stage, "cmdConfigura13", name); }
void takeSella(Stage& stage, const QString& name) { takeAccount(stage, "cmdConfigura1", name); }
void takeCash(Stage& stage, const QString& name) { takeAccount(stage, "cmdConfigura4", name); }

void takeLanguageCopy(Stage& stage, const QString& name) { takeEntry(stage, "languages.replicate", name); }
void takeListCopy(Stage& stage, const QString& name) { takeEntry(stage, "prices.replicate", name); }
void takeMail(Stage& stage, const QString& name) { takeEntry(stage, "orderMail", name); }
void takeShowcase(Stage& stage, const QString& name) { takeEntry(stage, "showcase", name); }
void takeRequired(Stage& stage, const QString& name) { takeEntry(stage, "requiredFields", name); }
void takeDuties(Stage& stage, const QString& name) { takeEntry(stage, "legalDuties", name); }
void takeMakers(Stage& stage, const QString& name) { takeEntry(stage, "makers", name); }
void takePrivacy(Stage& stage, const QString& name) { takeEntry(stage, "privacyPolicy", name); }
void takeBuildSettings(Stage& stage, const QString& name) { takeEntry(stage, "build.settings", name); }

void takePrices(Stage& stage, const QString& name) {
  stage.during([&] { stage.choose("prices.change"); },
               [&](QWidget& dialog) {
                 for (const char* box : {"optEstensione1", "chkListino0", "chkListino3"}) {
                   dialog.findChild<QAbstractButton*>(QLatin1String(box))->click();
                 }
                 dialog.findChild<QComboBox*>(QStringLiteral("cboVariazione"))->setEditText(QStringLiteral("+10"));
                 stage.take(name);
               });
}

void takeVariants(Stage& stage, const QString& name) {
  goToArticle(stage);
  takeEntry(stage, "article.variant1", name);
}

void takeConnection(Stage& stage, const QString& name) { takeEntry(stage, "connection.settings", name); }
/// What is sent, once the shop has been built.
void takePublishing(Stage& stage, const QString& name) {
  const auto& options = stage.window().workbench().ports().dialogs.publishOptions;
  stage.during([&] { ignore(options(), "the picture is all that counts"); }, [&](QWidget&) { stage.take(name); });
}

/// The choice of a picture, on one of the shop's own.
void takePicture(Stage& stage, const QString& name) {
  goToArticle(stage);
  stage.during([&] { stage.choose("article.picture0.set"); },
               [&](QWidget& dialog) {
                 dialog.findChild<QTabWidget*>(QStringLiteral("tabOrigine"))->setCurrentIndex(1);
                 auto* pictures = dialog.findChild<QListWidget*>(QStringLiteral("lstNegozio"));
                 pictures->setCurrentRow(pictures->count() / 2);
                 stage.take(name);
               });
}

/// The same with a square part of it marked.
void takePictureCut(Stage& stage, const QString& name) {
  goToArticle(stage);
  stage.during([&] { stage.choose("article.picture0.set"); },
               [&](QWidget& dialog) {
                 dialog.findChild<QTabWidget*>(QStringLiteral("tabOrigine"))->setCurrentIndex(1);
                 auto* pictures = dialog.findChild<QListWidget*>(QStringLiteral("lstNegozio"));
                 pictures->setCurrentRow(pictures->count() / 2);
                 dialog.findChild<QAbstractButton*>(QStringLiteral("chkRitaglia"))->click();
                 dialog.findChild<QComboBox*>(QStringLiteral("cboProporzioni"))->setCurrentIndex(2);
                 stage.take(name);
               });
}

/// Says nothing: what the search of the purge tells would be over its window.
class SilentUser final : public UserPort {
 public:
  void message(const std::string& /*text*/, Icon /*icon*/) override {}
  Answer question(const Question& question) override { return question.preset; }
  std::string chooseFolder(const std::string& /*prompt*/, const std::string& /*initial*/) override { return {}; }
  void progress(const Progress& /*progress*/) override {}
  bool yield() override { return true; }
};

/// Four pictures that nothing uses, one of them named in a text.
void takePurge(Stage& stage, const QString& name) {
  const std::string work = joinPath(stage.session().ShopFolder, "work");
  SilentUser silent;
  const auto used = [&](const TextReader& read) -> Result<> {
    const std::vector<std::string> names = listFiles(work, "*");
    constexpr std::size_t unused = 4;
    for (std::size_t i = 0; i + unused < names.size(); ++i) read(names[i]);
    return {};
  };
  const auto texts = [&](const TextReader& read) -> Result<> {
    read(listFiles(work, "*").back());
    return {};
  };
  frmPulisciImmagini dialog({work, used, texts, {}}, silent, &stage.window());
  stage.during([&] { dialog.exec(); },
               [&](QWidget&) {
                 Stage::processEvents();
                 dialog.findChild<QAbstractButton*>(QStringLiteral("cmdTutti"))->click();
                 stage.take(name);
               });
}

void takeSheet(Stage& stage, const QString& name) {
  stage.show(Tab::Articles);
  stage.during([&] { stage.choose("articles.sheet"); }, [&](QWidget&) { stage.take(name); });
}

/// A search over the sheet, with its hits.
void takeReplace(Stage& stage, const QString& name) {
  stage.show(Tab::Articles);
  const auto search = [&](QWidget& dialog) {
    dialog.findChild<QLineEdit*>(QStringLiteral("txtTrova"))->setText(QStringLiteral("o"));
    dialog.findChild<QLineEdit*>(QStringLiteral("txtSostituisci"))->setText(QStringLiteral("a"));
    dialog.findChild<QAbstractButton*>(QStringLiteral("cmdTrova"))->click();
    stage.take(name);
  };
  stage.during([&] { stage.choose("articles.sheet"); },
               [&](QWidget& sheet) {
                 stage.during([&] { sheet.findChild<QAbstractButton*>(QStringLiteral("cmdTrova"))->click(); }, search);
               });
}

/// A step of prices over all cells of the sheet, with its preview.
void takePriceStep(Stage& stage, const QString& name) {
  stage.show(Tab::Articles);
  const auto step = [&](QWidget& dialog) {
    dialog.findChild<QLineEdit*>(QStringLiteral("txtPasso"))->setText(QStringLiteral("+10 %"));
    stage.take(name);
  };
  stage.during([&] { stage.choose("articles.sheet"); },
               [&](QWidget& sheet) {
                 sheet.findChild<QTableView*>(QStringLiteral("lstFoglio"))->selectAll();
                 stage.during([&] { sheet.findChild<QAbstractButton*>(QStringLiteral("cmdPrezzi"))->click(); }, step);
               });
}

void takeExport(Stage& stage, const QString& name) {
  frmEsporta dialog({true, true, {"kvservizi.php", "vetrina.js"}}, &stage.window());
  stage.during([&] { dialog.exec(); }, [&](QWidget&) { stage.take(name); });
}

}  // namespace

std::span<const Scene> tradeScenes() {
  static constexpr std::array scenes{Scene{"prezzi", takePrices},
                                     Scene{"replica-lingue", takeLanguageCopy},
                                     Scene{"replica-listini", takeListCopy},
                                     Scene{"foglio", takeSheet},
                                     Scene{"foglio-sostituisci", takeReplace},
                                     Scene{"foglio-prezzi", takePriceStep},
                                     Scene{"email", takeMail},
                                     Scene{"vetrina", takeShowcase},
                                     Scene{"obbligatori", takeRequired},
                                     Scene{"requisiti", takeDuties},
                                     Scene{"produttori", takeMakers},
                                     Scene{"p3p", takePrivacy},
                                     Scene{"impostazioni-costruzione", takeBuildSettings},
                                     Scene{"immagine", takePicture},
                                     Scene{"immagine-ritaglio", takePictureCut},
                                     Scene{"pulizia-immagini", takePurge},
                                     Scene{"esporta", takeExport},
                                     Scene{"pagamenti", takePayment},
                                     Scene{"pagamenti-bankpass", takeBankpass},
                                     Scene{"pagamenti-sella", takeSella},
                                     Scene{"pagamenti-contrassegno", takeCash},
                                     Scene{"spedizione", takeShipping},
                                     Scene{"spedizione-paesi", takeShippingCountries},
                                     Scene{"spedizione-spese", takeShippingCosts},
                                     Scene{"spedizione-prova", takeShippingTrial},
                                     Scene{"varianti", takeVariants},
                                     Scene{"connessione", takeConnection},
                                     Scene{"pubblicazione", takePublishing}};
  return scenes;
}

}  // namespace kv::scenes
