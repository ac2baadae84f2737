#pragma once
// The controls of the picture dialog that turn a picture and cut it.

#include <QWidget>
#include <array>
#include <functional>
#include <string>

#include "media/choice/picture_choice.h"
#include "media/choice/picture_crop.h"

class QCheckBox;
class QComboBox;
class QGridLayout;
class QPushButton;
class QSpinBox;

namespace kv {

class PictureFrame;

/// Fills the edits of a choice. The part that is kept is drawn in the frame or typed, in pixels.
class PictureEditing final : public QWidget {
 public:
  /// `choice` and `frame` outlive the controls.
  PictureEditing(PictureChoice& choice, PictureFrame& frame, QWidget* parent = nullptr);

  /// Takes up another file; its edits begin with none. The same file again changes nothing.
  void takeUp(const std::string& path);
  /// Whether the frame is to show the whole picture with the part marked.
  bool isCutting() const;
  /// Shows that, and gives the size in pixels of what is kept.
  ImageSize showCut();
  /// Called after each change, for the preview and the size that it shows.
  std::function<void()> changed;

 private:
  void addTurns(QGridLayout& grid);
  void addCut(QGridLayout& grid);
  QSpinBox* addNumber(QGridLayout& grid, const char* caption, std::string_view name, int index);
  void start(const std::string& path);
  void enableCut(bool enabled);
  void turn(int quarters);
  void cutTicked(bool ticked);
  /// The largest part of the shape that is chosen.
  void startPart();
  void take(const PixelPart& part);
  ImageSize whole() const;
  const CropShape& shape() const;

  PictureChoice& choice_;
  PictureFrame& frame_;
  std::string path_;
  // Controls under their names; Qt owns them.
  QPushButton* cmdRuotaSinistra_ = nullptr;
  QPushButton* cmdRuotaDestra_ = nullptr;
  QCheckBox* chkRitaglia_ = nullptr;
  QComboBox* cboProporzioni_ = nullptr;
  std::array<QSpinBox*, 4> numbers_{};  ///< left, top, width, height
};

}  // namespace kv
