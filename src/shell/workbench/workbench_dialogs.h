#pragma once
// The dialogs that the commands run, as a port: one typed member for each. The program sets those that it has; a member
// that isn't set has its entries disabled, so a dialog still to come is a member without a window.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace kv {

/// A variant of an article: which of its slots, in which price list.
struct VariantSlot {
  int slot = 1;     ///< 1 to 4
  int listino = 0;  ///< 0 to 9
};

/// Which of the two folders of the server a dialog is to choose.
enum class ServerFolder {
  Shop,    ///< column `folderFTP`
  Scripts  ///< column `folderCGI`
};

struct WorkbenchDialogs {
  /// A dialog that needs to be told nothing. False when it was left without a change.
  using Dialog = std::function<bool()>;

  // The shop and its folders.
  Dialog welcome;        ///< frmWelcome: a new shop or another one. False when the shop that is open stays
  Dialog exportShop;     ///< frmEsporta: for the point of sale
  Dialog importShop;     ///< frmImportaPrimo: from the smaller edition
  Dialog restoreCopy;    ///< frmBackup: a dated copy of the catalogue becomes the catalogue
  Dialog changeFolders;  ///< frmBrowse: the two working folders
  /// frmPulisciImmagini: pictures that nothing shows, in this folder. False when it was left.
  std::function<bool(const std::string& pictureFolder)> purgePictures;

  // Languages and price lists.
  Dialog languages;           ///< frmLingue: names and number of the languages
  Dialog replicateLanguages;  ///< frmReplica: the texts of one language into another
  Dialog replicatePriceList;  ///< frmReplicaListini: the prices of one list into another
  Dialog changePrices;        ///< frmVariaPrezzi: all prices by a percent

  // The catalogue.
  Dialog history;  ///< frmCronologia: the steps of this session and earlier ones, and the way back
  /// frmSearch: the ID of the article to show; none when it was left.
  std::function<std::optional<std::int64_t>()> searchArticle;
  /// frmImmagine: the file name, in the shop's picture folder, of the picture chosen instead of `current`, which is
  /// empty when there is none; nothing when it was left.
  std::function<std::optional<std::string>(const std::string& current)> choosePicture;
  /// frmOpzioni: the variant of the current article in a slot. False when it was left.
  std::function<bool(const VariantSlot& slot)> defineVariant;
  Dialog articleSheet;      ///< frmFoglio: all articles as a sheet. False when it has changed nothing
  Dialog importAccounting;  ///< frmImportaOG: rows of the accounting program
  Dialog importSheet;       ///< frmImportaFoglio: rows of a sheet
  Dialog exportSheet;       ///< frmEsportaFoglio: rows written to a sheet

  // The site.
  Dialog shipping;          ///< frmSpedizione: costs of shipping
  Dialog configurePayment;  ///< frmConfiguraPG: the payment systems on offer
  Dialog orderMail;         ///< frmEmail: text of the confirmation
  Dialog showcase;          ///< frmVetrina: articles of the first page
  Dialog makers;            ///< frmProduttori: who made the articles
  Dialog legalDuties;       ///< frmRequisiti: what the law asks. True when a field was gone to
  Dialog requiredFields;    ///< frmObbligatori: what a visitor must fill in
  Dialog privacyPolicy;     ///< frmP3P: the compact privacy policy
  Dialog customTags;        ///< frmTags: tags of the merchant's own
  Dialog buildSettings;     ///< frmImpostazioni: how pages are built

  // Build and publishing.
  Dialog build;           ///< frmElabora: builds the shop. False when it was cancelled
  Dialog remindToBuild;   ///< frmAvviso: whether the user goes on with publishing
  Dialog publishOptions;  ///< frmImpostaFTP: what is to be sent. False when publishing was cancelled
  Dialog publish;         ///< frmFTP: sends the files
  /// frmFolderFTP: a folder of the server. False when it was left.
  std::function<bool(ServerFolder folder)> chooseServerFolder;
  Dialog orders;              ///< frmOrdini: the orders received. It changes no row of the catalogue
  Dialog connectionSettings;  ///< frmFirewall: the way to the server
  Dialog verifyConnection;    ///< tries the connection as it is stored, and tells what was found

  // Help.
  Dialog doctor;        ///< frmControlla: what visitors would meet
  Dialog introduction;  ///< frmIntro: the first-run guide
  Dialog about;         ///< frmAbout: name and version
};

}  // namespace kv
