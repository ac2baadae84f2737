#pragma once
// The choice of a picture: from the disk, reduced to a box if the user wants it, or from the shop's own pictures.

#include "media/choice/picture_choice.h"
#include "media/choice/picture_folder.h"
#include "platform/qt/frm_dialog.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTabWidget;

namespace kv {

class PictureEditing;
class PictureFrame;

/// The tag is the file name within the image folder; empty when the dialog was left, or the file can't be read.
class frmImmagine final : public FormDialog {
 public:
  /// `settings` and `user` outlive the dialog. folder: the shop's image folder. current: the picture in use
  /// (txtParametri), shown on the tab of the shop's own pictures.
  frmImmagine(Settings& settings, UserPort& user, const std::string& folder, const std::string& current,
              QWidget* parent = nullptr);
  /// Hides the window while its fields still have something to be left for.
  ~frmImmagine() override { hide(); }

 private:
  QWidget* makeDiskTab();
  QWidget* makeShopTab();
  QWidget* makePreview();
  QWidget* makeBox();
  QLineEdit* makeLimit(std::string_view name, int value);
  /// Lists a folder; one that can't be read leaves the list as it is.
  void openFolder(const std::string& path);
  void showFolder(PictureFolder opened);
  void browse();
  /// The path of the file selected on the tab in use; empty when none is.
  std::string selected() const;
  void showPreview();
  /// Says how large the copy will be, also to who can't see it; 0 by 0 for no picture.
  void showSize(ImageSize size, std::string_view name);
  /// Takes over a limit's field, or puts the number that holds back and keeps the focus.
  void leaveLimit(QLineEdit* field, int ImageSize::*side);
  void boxTicked(bool ticked);
  void accepted();

  PictureChoice choice_;
  UserPort& user_;
  PictureFolder folder_;  // listed on the disk's tab
  // Controls under their given names; Qt owns them.
  QTabWidget* tabOrigine_ = nullptr;
  QLineEdit* txtCartella_ = nullptr;
  QListWidget* lstCartelle_ = nullptr;
  QListWidget* lstFile_ = nullptr;
  QListWidget* lstNegozio_ = nullptr;
  PictureFrame* picAnteprima_ = nullptr;
  PictureEditing* editing_ = nullptr;
  QLabel* lblDimensioni_ = nullptr;
  QCheckBox* chkAdatta_ = nullptr;
  QLineEdit* txtLarghezza_ = nullptr;
  QLineEdit* txtAltezza_ = nullptr;
  QCheckBox* chkLuogo_ = nullptr;  ///< shown for a photo that tells where it was taken
  QPushButton* cmdOk_ = nullptr;
};

}  // namespace kv
