#include "shell/window/look/frm_icons.h"

#include <QApplication>
#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QSvgRenderer>
#include <array>
#include <utility>

#include "platform/qt/frm_dialog.h"
#include "shell/window/look/frm_appearance.h"

/// The drawings live in a library, whose resources nothing else would bring to life.
static void bringIcons() { Q_INIT_RESOURCE(icons); }

namespace kv {
namespace {

/// The four colours that the drawings are made of, and what each becomes. On every ground the lines reach a contrast of
/// 3:1 at least. Source: WCAG 2.1, success criterion 1.4.11.
struct Ink {
  const char* drawn;
  const char* onLight;
  const char* onDark;
  const char* lit;
};
constexpr std::array inks{
    Ink{"#7a828e", "#5c6672", "#c3c9d0", "#22303a"}, Ink{"#2f7fc1", "#1f6fb2", "#74b9ee", "#c2410c"},
    Ink{"#3f9a5a", "#2c8549", "#74cf92", "#c2410c"}, Ink{"#c4473a", "#c4473a", "#f4938a", "#a32a1e"}};
constexpr qreal disabledOpacity = 0.4;

class DrawnIcon final : public QIconEngine {
 public:
  DrawnIcon(QByteArray drawing, IconColours colours) : drawing_(std::move(drawing)), colours_(colours) {}

  void paint(QPainter* painter, const QRect& area, QIcon::Mode mode, QIcon::State /*state*/) override {
    QSvgRenderer drawing(coloured());
    drawing.setAspectRatioMode(Qt::KeepAspectRatio);
    if (mode == QIcon::Disabled) painter->setOpacity(painter->opacity() * disabledOpacity);
    drawing.render(painter, QRectF(area));
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    const QString key = QStringLiteral("%1x%2 %3 %4")
                            .arg(size.width())
                            .arg(size.height())
                            .arg(static_cast<int>(mode))
                            .arg(isDark(QApplication::palette()));
    QPixmap& kept = kept_[key];
    if (kept.isNull()) {
      kept = QPixmap(size);
      kept.fill(Qt::transparent);
      QPainter painter(&kept);
      paint(&painter, QRect(QPoint(), size), mode, state);
    }
    return kept;
  }

  QIconEngine* clone() const override { return new DrawnIcon(*this); }
  bool isNull() override { return drawing_.isEmpty(); }

 private:
  QByteArray coloured() const {
    const bool dark = isDark(QApplication::palette());
    QByteArray drawing = drawing_;
    for (const Ink& ink : inks) {
      drawing.replace(ink.drawn, colours_ == IconColours::Lit ? ink.lit : dark ? ink.onDark : ink.onLight);
    }
    return drawing;
  }

  QByteArray drawing_;
  IconColours colours_;
  QHash<QString, QPixmap> kept_;
};

/// Another icon, with a fifth of the width left free on its right.
class BesideWords final : public QIconEngine {
 public:
  explicit BesideWords(QIcon icon) : icon_(std::move(icon)) {}

  void paint(QPainter* painter, const QRect& area, QIcon::Mode mode, QIcon::State state) override {
    icon_.paint(painter, area.adjusted(0, 0, -area.width() / 5, 0), Qt::AlignCenter, mode, state);
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap drawn(size);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    paint(&painter, QRect(QPoint(), size), mode, state);
    return drawn;
  }
  QIconEngine* clone() const override { return new BesideWords(*this); }

 private:
  QIcon icon_;
};

}  // namespace

QIcon flagIcon(const QString& file) {
  for (const char* kind : {".svg", ".gif"}) {
    const QString path = file + QLatin1String(kind);
    if (QFile::exists(path)) return QIcon(path);
  }
  return {};
}

QIcon flagBesideWords(const QString& file) {
  const QIcon flag = flagIcon(file);
  return flag.isNull() ? flag : QIcon(new BesideWords(flag));
}

QIcon drawnIcon(std::string_view name, IconColours colours) {
  bringIcons();
  QFile file(QStringLiteral(":/icons/") + toQt(name) + QStringLiteral(".svg"));
  if (!file.open(QIODevice::ReadOnly)) return {};
  return QIcon(new DrawnIcon(file.readAll(), colours));
}

}  // namespace kv
