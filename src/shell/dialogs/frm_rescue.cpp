#include "shell/dialogs/frm_rescue.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <array>

namespace kv {
namespace {

struct RescueButton {
  Rescue rescue;
  const char* name;
  const char* caption;
};

constexpr std::array<RescueButton, 4> buttons{{{Rescue::RestoreCopy, "cmdRipristina", "&Ripristina una copia"},
                                               {Rescue::OpenAnother, "cmdApri", "&Apri un altro negozio"},
                                               {Rescue::NewShop, "cmdNuovo", "&Nuovo negozio"},
                                               {Rescue::Leave, "cmdEsci", "&Esci"}}};

}  // namespace

frmRescue::frmRescue(const std::string& shopFolder, bool hasCopies, QWidget* parent) : FormDialog("Korvane", parent) {
  auto* column = new QVBoxLayout(this);
  column->addWidget(named(wrappedText(rescueText(shopFolder)), "lblTesto"));
  column->addSpacing(fontMetrics().lineSpacing());
  for (const RescueButton& row : buttons) {
    auto* button = named(new QPushButton(QString::fromUtf8(row.caption)), row.name);
    button->setAutoDefault(true);
    connect(button, &QPushButton::clicked, this, [this, &row] { finish(row.name); });
    column->addWidget(button);
    if (row.rescue == Rescue::RestoreCopy) button->setEnabled(hasCopies);
    const bool isFirst = row.rescue == (hasCopies ? Rescue::RestoreCopy : Rescue::OpenAnother);
    if (isFirst) button->setDefault(true);
  }
  constexpr int columns = 60, lines = 12;
  sizeInCharacters(columns, lines);
}

Rescue frmRescue::choice() const {
  for (const RescueButton& row : buttons) {
    if (tag() == row.name) return row.rescue;
  }
  return Rescue::Leave;
}

}  // namespace kv
