#pragma once
// The choice of the two working folders.

#include <array>

#include "platform/qt/frm_dialog.h"
#include "shell/dialogs/folder_choice.h"

class QLineEdit;
class QGridLayout;

namespace kv {

/// The tag is "OK"; a folder that was refused has been told to the user and stays as it was.
class frmBrowse final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog.
  frmBrowse(Session& session, Environment& env, QWidget* parent = nullptr);

 private:
  /// One folder: its path, and the buttons to choose and to reset it.
  void addRow(QGridLayout& grid, WorkingFolder folder);
  void browse(WorkingFolder folder);
  void reset(WorkingFolder folder);
  /// OK: what was refused has been told, and the dialog closes all the same.
  void accepted();

  Session& session_;
  Environment& env_;
  FolderChoice choice_;
  std::array<QLineEdit*, 2> txtCartella_{};
};

}  // namespace kv
