#include "shell/window/fields/frm_picture.h"

#include <QAction>
#include <QEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QImageReader>
#include <QPainter>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace kv {
namespace {

constexpr int previewWidth = 96;
constexpr int previewHeight = 80;

}  // namespace

PictureField::PictureField(const QString& name, QAction* choose, QAction* clear, QWidget* parent)
    : QWidget(parent),
      preview_(new QLabel(this)),
      about_(new QLabel(this)),
      further_(new QLabel(this)),
      buttons_(new QWidget(this)),
      title_(name) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  preview_->setFixedSize(previewWidth, previewHeight);
  preview_->setFrameShape(QFrame::StyledPanel);
  preview_->setAlignment(Qt::AlignCenter);
  row->addWidget(preview_, 0, Qt::AlignTop);
  preview_->setText(tr("(nessuna)"));
  preview_->setFocusPolicy(Qt::StrongFocus);
  preview_->setStyleSheet(QStringLiteral("QLabel:focus { border: 2px solid palette(highlight); }"));
  preview_->setToolTip(tr("Trascina qui un'immagine, o incollala con Ctrl+V"));
  nameFor({}, {});
  auto* column = new QVBoxLayout;
  about_->setWordWrap(true);
  about_->setTextFormat(Qt::PlainText);
  column->addWidget(about_);
  further_->setWordWrap(true);
  further_->setTextFormat(Qt::PlainText);
  further_->hide();
  column->addWidget(further_);
  auto* line = new QHBoxLayout(buttons_);
  line->setContentsMargins(0, 0, 0, 0);
  line->setSpacing(4);
  addButton(choose, tr("Imposta..."), tr("Imposta "));
  addButton(clear, tr("Elimina"), tr("Elimina "));
  line->addStretch();
  column->addWidget(buttons_);
  column->addStretch();
  row->addLayout(column, 1);
}

void PictureField::addButton(QAction* action, const QString& text, const QString& meaning) {
  auto* button = new QPushButton(text, buttons_);
  constexpr int roomBeside = 14;
  button->setMinimumWidth(button->fontMetrics().horizontalAdvance(text) + roomBeside);
  button->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
  button->setAccessibleName(meaning + title_.toLower());
  button->setAutoDefault(false);
  button->setEnabled(action->isEnabled());
  connect(button, &QPushButton::clicked, action, &QAction::trigger);
  connect(action, &QAction::changed, button, [button, action] { button->setEnabled(action->isEnabled()); });
  buttons_->layout()->addWidget(button);
}

void PictureField::showPicture(const QString& name, const QString& path) {
  const QFileInfo file(path);
  const qint64 stamp = path.isEmpty() ? 0 : file.lastModified().toMSecsSinceEpoch();
  if (name == name_ && path == path_ && stamp == stamp_) return;
  name_ = name;
  path_ = path;
  stamp_ = stamp;
  preview_->clear();
  about_->setText(name);
  nameFor(name, {});
  if (path.isEmpty()) {
    preview_->setText(tr("(nessuna)"));
    return;
  }
  // Stepping through a list of articles doesn't wait for their pictures.
  if (!waiting_) QTimer::singleShot(0, this, &PictureField::load);
  waiting_ = true;
}

void PictureField::showFurther(const QString& text) {
  further_->setText(text);
  further_->setVisible(!text.isEmpty());
}

void PictureField::nameFor(const QString& file, const QString& size) {
  QString name = title_ + QStringLiteral(": ") + (file.isEmpty() ? tr("nessuna") : file);
  if (!size.isEmpty()) name += QStringLiteral(", ") + size;
  preview_->setAccessibleName(name);
}

void PictureField::load() {
  waiting_ = false;
  if (path_.isEmpty()) return;
  QImageReader reader(path_);
  reader.setDecideFormatFromContent(true);
  const QSize size = reader.size();
  const qreal ratio = devicePixelRatioF();
  const QSize room = QSize(previewWidth - 4, previewHeight - 4) * ratio;
  if (size.width() > room.width() || size.height() > room.height()) {
    reader.setScaledSize(size.scaled(room, Qt::KeepAspectRatio));
  }
  QPixmap picture = QPixmap::fromImageReader(&reader);
  if (picture.isNull()) {
    preview_->setText(tr("(non leggibile)"));
    return;
  }
  // On the white of a page, as visitors see it: a transparent logo may have dark text.
  QPixmap onPage(picture.size());
  onPage.fill(Qt::white);
  QPainter(&onPage).drawPixmap(0, 0, picture);
  onPage.setDevicePixelRatio(ratio);
  preview_->setPixmap(onPage);
  const QString sides = tr("%1 x %2").arg(size.width()).arg(size.height());
  about_->setText(name_ + QLatin1Char('\n') + sides);
  nameFor(name_, sides);
}

bool PictureField::event(QEvent* event) {
  if (event->type() == QEvent::ScreenChangeInternal && !path_.isEmpty()) load();
  return QWidget::event(event);
}

}  // namespace kv
