#pragma once
// A picture of the shop as a small preview, with the commands that set it and take it away.

#include <QLabel>
#include <QPixmap>
#include <QWidget>

class QAction;
class QPushButton;

namespace kv {

/// Preview, file name and size of a picture, with its two buttons.
/// It never enlarges a picture, draws it on white as visitors see it, and says so where a file can't be read.
class PictureField final : public QWidget {
  Q_OBJECT
 public:
  /// `name`: of the picture, for who can't see it. The actions are those of its commands.
  /// Each button is enabled while its action is, and triggers it.
  PictureField(const QString& name, QAction* choose, QAction* clear, QWidget* parent = nullptr);

  /// Shows a file of the image folder; an empty name for none. The file is read once the window has nothing else to do.
  /// Called for each row that becomes current. The same file is read again only after its time of change moved; an
  /// empty path shows that there is no picture.
  void showPicture(const QString& name, const QString& path);
  /// Says which pictures are shown with it on the site; an empty text for none.
  void showFurther(const QString& text);
  /// The picture itself, which takes the focus so that another can be pasted on it.
  QWidget& picture() { return *preview_; }

 protected:
  /// Reads the file again on a screen of another density.
  bool event(QEvent* event) override;

 private:
  /// Reads the file and shows it scaled down, with its size in pixels below the name.
  void load();
  /// Says which picture it is, with its file and size, to who can't see it.
  void nameFor(const QString& file, const QString& size);
  /// `meaning`: what the button does, said before the picture's name to who can't see it.
  void addButton(QAction* action, const QString& text, const QString& meaning);
  QLabel* preview_;              ///< the picture, or why there is none
  QLabel* about_;                ///< file name and size
  QLabel* further_;              ///< the pictures that are shown with it
  QWidget* buttons_;             ///< holds both buttons
  QString name_, title_, path_;  ///< of the file, of the picture, and the file's path
  qint64 stamp_ = 0;             ///< time of change of the file that is shown
  bool waiting_ = false;         ///< the file is still to be read
};

}  // namespace kv
