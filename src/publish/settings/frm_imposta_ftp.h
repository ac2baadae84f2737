#pragma once
// The dialog before a publish run: what is sent, and how the online database is renewed.

#include <array>

#include "platform/qt/frm_dialog.h"
#include "publish/settings/publish_options.h"
#include "sqlexport/last_run.h"
#include "store/shop/session.h"

class QCheckBox;
class QComboBox;
class QRadioButton;
class QWidget;

namespace kv {

/// The tag is "OK" when the choices are kept and the run may begin.
class frmImpostaFTP final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog; `lock` is the flag that the exports read. `help` may be empty.
  frmImpostaFTP(Session& session, Environment& env, LockStatements& lock, HelpOpener help = {},
                QWidget* parent = nullptr);

  /// Shows the dialog, unless the shop hasn't been built: then the user is told, and the tag is empty.
  int exec() override;

 private:
  QWidget* makeFiles();
  QWidget* makeDatabase();
  QWidget* makeLater();
  /// A box of a group.
  QCheckBox* addBox(QWidget* group, std::string_view caption, std::string_view name);
  /// A choice of a group.
  QRadioButton* addChoice(QWidget* group, std::string_view caption, std::string_view name);
  /// Shows options.
  void show(const PublishOptions& options);
  /// What is shown.
  PublishOptions shown() const;
  void enable();  // what can be used, by what is chosen
  void save();    // writes the file and closes, or shows the failure

  Session& session_;
  Environment& env_;
  PublishOptions options_;
  // Controls under their names; Qt owns them.
  QCheckBox* chkModificati_ = nullptr;
  QCheckBox* chkNegozio_ = nullptr;
  QCheckBox* chkImpo_ = nullptr;
  std::array<QCheckBox*, typeGroups.size()> chkTipo_{};
  QRadioButton* optAbilitato_ = nullptr;
  QRadioButton* optNonAbilitato_ = nullptr;
  QRadioButton* optTutti_ = nullptr;
  QRadioButton* optSoloModificati_ = nullptr;
  QCheckBox* chkOttimizza_ = nullptr;
  QRadioButton* optMySql3_ = nullptr;
  QRadioButton* optMySql4_ = nullptr;
  QCheckBox* chkSicuro_ = nullptr;
  QCheckBox* chkContenuto_ = nullptr;
  QComboBox* cboConnessioni_ = nullptr;
  QCheckBox* chkRiprova_ = nullptr;
  QCheckBox* chkPulizia_ = nullptr;
};

}  // namespace kv
