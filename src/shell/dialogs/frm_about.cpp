#include "shell/dialogs/frm_about.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace kv {
namespace {

constexpr int splashMilliseconds = 2500;
constexpr int pictureSide = 96;

QLabel* centred(std::string_view text, double larger, bool bold) {
  auto* label = new QLabel(toQt(text));
  QFont font = label->font();
  font.setPointSizeF(font.pointSizeF() * larger);
  font.setBold(bold);
  label->setFont(font);
  label->setAlignment(Qt::AlignCenter);
  return label;
}

}  // namespace

frmAbout::frmAbout(QWidget* parent) : frmAbout(parent, false) {}

frmAbout::frmAbout(QWidget* parent, bool splash) : FormDialog("Informazioni su Korvane", parent), splash_(splash) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(36, 28, 36, 20);
  const QIcon icon = QApplication::windowIcon();
  if (!icon.isNull()) {
    auto* picture = named(new QLabel(), "picLogo", "Il segno di Korvane");
    picture->setPixmap(icon.pixmap(pictureSide, pictureSide));
    picture->setAlignment(Qt::AlignCenter);
    column->addWidget(picture);
  }
  column->addWidget(centred("Korvane", 2.2, true));
  column->addWidget(named(centred("Versione " KORVANE_VERSION, 1.0, false), "lblVersione"));
  column->addSpacing(fontMetrics().lineSpacing());
  column->addWidget(centred("Il banco di lavoro per costruire il proprio negozio online", 1.0, false));
  column->addStretch();
  if (splash_) {
    setWindowFlags(Qt::SplashScreen);
    // Set off from the window below it.
    setBackgroundRole(QPalette::Base);
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setModal(false);
  } else {
    column->addWidget(new QLabel(toQt("Interfaccia realizzata con Qt " + std::string(qVersion()))), 0, Qt::AlignCenter);
    column->addSpacing(fontMetrics().lineSpacing());
    QDialogButtonBox* buttons = makeClose("OK");
    buttons->setCenterButtons(true);
    buttons->button(QDialogButtonBox::Close)->setDefault(true);
    column->addWidget(buttons);
  }
  sizeInCharacters(60, 14);
}

void frmAbout::showSplash(QWidget* over) {
  auto* splash = new frmAbout(over, true);
  splash->adjustSize();
  if (over != nullptr) splash->move(over->frameGeometry().center() - splash->rect().center());
  splash->show();
  QTimer::singleShot(splashMilliseconds, splash, &QWidget::close);
}

void frmAbout::mousePressEvent(QMouseEvent* event) {
  FormDialog::mousePressEvent(event);
  if (splash_) close();
}

void frmAbout::keyPressEvent(QKeyEvent* event) {
  if (splash_) {
    close();
  } else {
    FormDialog::keyPressEvent(event);
  }
}

}  // namespace kv
