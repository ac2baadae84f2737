#pragma once
// The choice of the two working folders.

#include <array>

#include "platform/qt/frm_dialog.h"
#include "shell/dialogs/folder_choice.h"

class QLineEdit;
class QGridLayout;

namespace kv {

/// The tag is "OK"; a folder that was refused has been told to the user and stays as it was.
/// Annulla, Escape and the close box leave an empty tag and both folders as they are. Nothing is stored before OK.
class frmBrowse final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog.
  frmBrowse(Session& session, Environment& env, QWidget* parent = nullptr);

 private:
  /// One folder: its path, and the buttons to choose and to reset it.
  void addRow(QGridLayout& grid, BuildFolder folder);
  /// Asks for a folder and shows it in the field; leaving the question changes nothing.
  void browse(BuildFolder folder);
  /// Shows the folder inside the shop's own, which OK stores as "no folder set".
  void reset(BuildFolder folder);
  /// OK: what was refused has been told, and the dialog closes all the same.
  void accepted();

  Session& session_;                         ///< gets the folders that were accepted
  Environment& env_;                         ///< asks for folders and tells refusals
  FolderChoice choice_;                      ///< what the fields hold, typed or chosen
  std::array<QLineEdit*, 2> txtCartella_{};  ///< the two paths, by BuildFolder
};

}  // namespace kv
