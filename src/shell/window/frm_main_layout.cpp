// How the main window is divided and where it was, from one run to the next.

#include <QSplitter>

#include "shell/window/frm_main.h"

namespace kv {
namespace {

constexpr std::string_view placeSection = "Finestra";

QByteArray bytesOf(const Settings& settings, std::string_view key) {
  return QByteArray::fromBase64(QByteArray::fromStdString(settings.get(placeSection, key)));
}

}  // namespace

void frmMain::keepLayout() {
  const auto keep = [this](std::string_view key, const QByteArray& bytes) {
    const std::string text = bytes.toBase64().toStdString();
    if (env_.settings.get(placeSection, key) == text) return;
    ignore(env_.settings.set(placeSection, key, text), "the window opens where it was before");
  };
  keep("geometria", saveGeometry());
  keep("divisori", sides_->saveState());
  keep("elenchi", lists_->saveState());
}

void frmMain::restoreLayout() {
  restoreGeometry(bytesOf(env_.settings, "geometria"));
  sides_->restoreState(bytesOf(env_.settings, "divisori"));
  lists_->restoreState(bytesOf(env_.settings, "elenchi"));
  panel_->restoreColumns();
}

}  // namespace kv
