#pragma once
// The frame in which the picture dialog shows a picture, and in which a part of it is drawn with the mouse.

#include <QLabel>
#include <functional>

#include "media/choice/picture_crop.h"

namespace kv {

/// A picture in the middle of a square, made smaller when it is larger, never larger.
class PictureFrame final : public QLabel {
 public:
  explicit PictureFrame(QWidget* parent = nullptr);

  /// Shows a picture alone; one without pixels leaves the frame empty.
  void showPicture(const PixelBuffer& pixels);
  /// Says in the empty frame why there is no picture; an empty text says nothing.
  void showReason(const QString& why);
  /// Shows a whole picture with a part of it marked; from now on the mouse draws another part.
  void showPart(const PixelBuffer& whole, const PixelPart& part);
  /// Marks another part of the picture that is shown.
  void markPart(const PixelPart& part);
  /// Called while the mouse draws, with the points of the picture where it was pressed and where it is.
  std::function<void(PixelPoint from, PixelPoint to)> drawn;

 protected:
  /// Dims what is cut off.
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  QRect pictureRect() const;  ///< of the picture in the frame
  PixelPoint pointAt(QPoint position) const;

  ImageSize whole_;  ///< of the picture whose part is marked; 0 by 0: none is
  PixelPart part_;
  PixelPoint pressed_;
};

}  // namespace kv
