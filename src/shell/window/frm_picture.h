#pragma once
// A picture of the shop as a small preview, with the commands that set it and take it away.

#include <QLabel>
#include <QPixmap>
#include <QWidget>

class QAction;
class QPushButton;

namespace kv {

/// Preview, file name and size of a picture, with its two buttons.
class PicturePreview final : public QWidget {
  Q_OBJECT
 public:
  /// `name`: of the picture, for who can't see it. The actions are those of its commands.
  PicturePreview(const QString& name, QAction* choose, QAction* clear, QWidget* parent = nullptr);

  /// Shows a file of the image folder; an empty name for none. The file is read once the window has nothing else to do.
  void showPicture(const QString& name, const QString& path);

 protected:
  bool event(QEvent* event) override;

 private:
  void load();
  void addButton(QAction* action, const QString& text, const QString& meaning);
  QLabel* preview_;
  QLabel* about_;
  QWidget* buttons_;
  QString name_, title_, path_;
  qint64 stamp_ = 0;      ///< time of change of the file that is shown
  bool waiting_ = false;  ///< the file is still to be read
};

}  // namespace kv
