#pragma once
// The choice of a folder of the server, by browsing it.

#include <string>

#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_user.h"
#include "publish/settings/folder_picker.h"

class QDialogButtonBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace kv {

inline constexpr std::string_view shopFolderTitle = "Korvane - Selezione cartella del negozio";
inline constexpr std::string_view scriptFolderTitle = "Korvane - Selezione cartella script CGI";

/// The tag is ">" and the chosen folder; empty when there is no choice.
class frmFolderFTP final : public FormDialog {
 public:
  /// title: shopFolderTitle or scriptFolderTitle. `transfer` and `user` outlive the dialog.
  frmFolderFTP(std::string_view title, ConnectionSettings settings, Transfer& transfer, UserPort& user,
               QWidget* parent = nullptr);

  /// Annulla, Escape and the close box: breaks the session off, also in the middle of a command.
  void reject() override;

 protected:
  /// Starts the connection once the window is painted.
  void showEvent(QShowEvent* event) override;

 private:
  /// Makes the list and the buttons.
  void makeControls();
  /// Connects and shows the first folder.
  void start();
  void browse(
      const std::function<bool()>& step);  // a command that lists another folder; closes when it ends the session
  void showFolder();
  /// Disables what would disturb a command of the server.
  void setBusy(bool busy);
  /// Processes events; false once the user has cancelled.
  bool processEvents();
  /// OK: takes the folder that is shown.
  void accepted();

  ConnectionSettings settings_;
  FolderPicker picker_;
  EventPump pump_;
  bool started_ = false;
  bool busy_ = false;  // a command is under way
  bool left_ = false;  // the user has gone, perhaps during a command
  // Controls under their names; Qt owns them.
  QLineEdit* txtPath_ = nullptr;
  QPushButton* cmdUP_ = nullptr;
  QListWidget* lstCartelle_ = nullptr;
  QLineEdit* txtSelFolder_ = nullptr;
  QLabel* lblStato_ = nullptr;
  QPushButton* ok_ = nullptr;
};

}  // namespace kv
