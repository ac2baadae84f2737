#pragma once
// The menus of the main window as data, in the order in which they are shown.

#include <span>
#include <string_view>

namespace kv {

/// What an entry without a command number does.
enum class MenuAction {
  None,
  NewShop,
  OpenShop,
  ExportShop,
  ImportShop,
  RestoreCopy,
  ChangeFolders,
  CleanFolders,
  PurgeImages,
  Languages,
  ReplicateLanguages,
  ReplicatePriceList,
  CustomTags,
  ChooseTemplate,
  BuildSettings,
  ImportAccounting,
  UpdateStock,
  DownloadOrders,
  ImportCompanion,
  Exit,
  Undo,
  Redo,
  ChangePrices,
  Shipping,
  PaymentSystems,
  OrderMail,
  Showcase,
  RequiredFields,
  ShopFtpFolder,
  ScriptFtpFolder,
  ConnectionSettings,
  ShowTab,       ///< argument: 0 departments, 1 articles, 2 site, 3 internet
  EditLanguage,  ///< argument: 1 to 4
  HideDetails,
  Look,  ///< argument: an Appearance
  HelpContents,
  HelpQuestions,
  Introduction,
  TemplateGuide,
  CheckUpdates,
  About
};

/// Which of the four `Modifica` menus, or a menu that every tab shows.
enum class MenuTab { Every, Departments, Articles, Site, Internet };

struct MenuEntry {
  MenuTab tab = MenuTab::Every;
  std::string_view menu;   ///< "File"
  std::string_view entry;  ///< "Sposta / Su": a submenu before " / "; "-": a separator
  int command = -1;        ///< number in the command table, or -1
  MenuAction action = MenuAction::None;
  int argument = 0;
  std::string_view shortcut;  ///< in the portable form, "Ctrl+N"
};

/// All entries in order; those of one menu stand together.
std::span<const MenuEntry> menuTable();

}  // namespace kv
