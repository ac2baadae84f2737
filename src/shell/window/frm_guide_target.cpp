// The main window as the first-run guide reaches it: fields and buttons in the highlight colour.

#include <QLineEdit>
#include <QPalette>

#include "shell/window/frm_main.h"
#include "shell/window/look/frm_appearance.h"

namespace kv {
namespace {

constexpr const char* litMark = "evidenziato";

void light(QWidget& field) {
  QPalette palette = field.palette();
  palette.setColor(QPalette::Base, litColour);
  palette.setColor(QPalette::Text, Qt::black);
  field.setPalette(palette);
  field.setProperty(litMark, true);
}

}  // namespace

void frmMain::goToTab(std::string_view tabKey) {
  for (std::size_t tab = 0; tab < tabKeys.size(); ++tab) {
    if (tabKeys[tab] == tabKey && workbench_.tab() != static_cast<Tab>(tab)) {
      workbench_.selectTab(static_cast<Tab>(tab));
    }
  }
}

void frmMain::goToField(EditedSet set, std::string_view column) {
  for (EditorPage* page : pages_) page->goTo(set, column);
}

void frmMain::AttivaTextBox(std::string_view field, std::string_view tabKey) {
  goToTab(tabKey);
  for (EditorPage* page : pages_) {
    EditorBinding* binding = page->binding(EditedSet::Generale, field);
    if (binding == nullptr) continue;
    light(*binding->field());
    page->goTo(EditedSet::Generale, field);
  }
}

void frmMain::AttivaTasto(int command, std::string_view tabKey) {
  goToTab(tabKey);
  menus_->lightButton(command);
}

void frmMain::DisattivaTextBox() {
  menus_->unlightButtons();
  for (EditorPage* page : pages_) {
    for (QLineEdit* field : page->findChildren<QLineEdit*>()) {
      if (!field->property(litMark).toBool()) continue;
      field->setPalette(QPalette());
      field->setProperty(litMark, false);
    }
  }
}

bool frmMain::onDepartment() const { return workbench_.sets().onDepartment(); }

void frmMain::selectFirstDepartment() {
  const auto& rows = workbench_.sets().tree();
  if (rows.empty()) return;
  workbench_.goToDepartment(rows.front().ID);
  workbench_.AggiornaSchede();
}

}  // namespace kv
