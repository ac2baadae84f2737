#include <QCoreApplication>
#include <QListWidget>
#include <array>

#include "platform/qt/frm_dialog.h"
#include "publish/settings/frm_folder_ftp.h"
#include "scenes.h"
#include "shell/dialogs/frm_rescue.h"
#include "shell/dialogs/frm_welcome.h"
#include "shell/window/fields/frm_text.h"

namespace kv::scenes {
namespace {

void takeWelcome(Stage& stage, const QString& name) {
  const WelcomeFacts facts{"/home/mario/Negozi/negozio", {"/home/mario/Negozi/bottega", "/home/mario/prove"}, true};
  frmWelcome dialog(facts, stage.user(), &stage.window());
  takeShown(stage, dialog, name);
}

void takeRescue(Stage& stage, const QString& name) {
  frmRescue dialog("/home/mario/Negozi/bottega", true, &stage.window());
  takeShown(stage, dialog, name);
}

void takeLongText(Stage& stage, const QString& name) {
  frmTesto dialog(QStringLiteral("Descrizione"),
                  QStringLiteral("Gres smaltato a immersione, 30 cl.\n\nSi lava a mano."), &stage.window());
  takeShown(stage, dialog, name);
}

/// A server with three folders, in the first of which the login ends.
class FolderServer final : public Transfer {
 public:
  TransferCompletion currentFolder() override { return {transferDone, "/www", {}}; }
  TransferCompletion list() override {
    TransferCompletion answer;
    for (const char* folder : {"bottega", "cgi-bin", "immagini"}) {
      answer.lines.push_back("drwxr-xr-x 2 mario web 4096 Jan 1 12:00 " + std::string(folder));
    }
    return answer;
  }
  void listen(TransferEvents /*events*/) override {}
  TransferCompletion connect(const ConnectionSettings& /*settings*/) override { return {}; }
  TransferCompletion logIn() override { return {}; }
  TransferCompletion changeFolder(const std::string& /*folder*/) override { return {}; }
  TransferCompletion parentFolder() override { return {}; }
  TransferCompletion quit() override { return {}; }
  void abort() override {}
  bool isConnected() const override { return true; }
  TransferCompletion makeFolder(const std::string& /*name*/) override { return {}; }
  TransferCompletion deleteFile(const std::string& /*name*/) override { return {}; }
  TransferCompletion renameFile(const std::string& /*from*/, const std::string& /*to*/) override { return {}; }
  TransferCompletion upload(const std::string&, const std::string&, TransferMode) override { return {}; }
  TransferCompletion append(const std::string&, const std::string&, TransferMode) override { return {}; }
  TransferCompletion rawCommand(const std::string& /*command*/) override { return {}; }
};

void takeServerFolder(Stage& stage, const QString& name) {
  FolderServer server;
  frmFolderFTP dialog(shopFolderTitle, ConnectionSettings(), server, stage.user(), &stage.window());
  takeShown(stage, dialog, name, [](QWidget& shown) {
    const auto* folders = shown.findChild<QListWidget*>(QStringLiteral("lstCartelle"));
    while (shown.isVisible() && folders->count() == 0) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  });
}

}  // namespace

std::span<const Scene> startScenes() {
  static constexpr std::array scenes{Scene{"benvenuto", takeWelcome}, Scene{"nessun-negozio", takeRescue},
                                     Scene{"testo-lungo", takeLongText}, Scene{"cartella-server", takeServerFolder}};
  return scenes;
}

}  // namespace kv::scenes
