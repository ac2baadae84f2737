#pragma once
// The window that finds unused pictures, lists them with their looks and sizes, and deletes those that are ticked.

#include <memory>

#include "media/purge/unused_pictures.h"
#include "platform/qt/frm_dialog.h"

class QLabel;
class QListWidget;
class QProgressBar;
class QPushButton;

namespace kv {

/// The tag is "OK" when files were deleted; empty when the window was left, or closed by itself after an error.
class frmPulisciImmagini final : public FormDialog {
 public:
  /// `user` outlives the window. The search begins once the window is shown for the first time.
  frmPulisciImmagini(PurgeSources sources, UserPort& user, QWidget* parent = nullptr);
  ~frmPulisciImmagini() override;

 protected:
  /// Starts the search, once.
  void showEvent(QShowEvent* event) override;

 private:
  class SearchUser;
  QWidget* makeList();
  void search();
  void fillList();
  void tickAll(bool ticked);
  void deleteTicked();

  std::unique_ptr<SearchUser> user_;  ///< whose progress is the bar of this window
  PicturePurge purge_;
  // Controls under their given names; Qt owns them.
  QListWidget* lstFiles_ = nullptr;
  QProgressBar* prgBarra_ = nullptr;
  QLabel* lblTotale_ = nullptr;  ///< number and bytes of the pictures found
  QPushButton* cmdTutti_ = nullptr;
  QPushButton* cmdNessuno_ = nullptr;
  QPushButton* cmdElimina_ = nullptr;
  bool started_ = false;
};

}  // namespace kv
