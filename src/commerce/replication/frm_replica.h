#pragma once
// The dialog that copies the texts of one language into another.

#include <array>

#include "commerce/replication/language_replication.h"
#include "platform/qt/frm_dialog.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QProgressBar;
class QRadioButton;

namespace kv {

/// The tag is "OK" when texts have been copied, and empty when it was left.
class frmReplica final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog.
  frmReplica(Session& session, Environment& env, HelpOpener help, QWidget* parent = nullptr);

  /// Nothing while a replication runs.
  void reject() override;

 private:
  class RunUser;
  QWidget* makeLanguages();
  QWidget* makeChoices();
  QWidget* makeStatus();
  LanguageReplication replication() const;  // what the controls say
  void sourceChosen();                      // offers the other languages, keeping the one that was chosen
  void countAgain();                        // how much would be written
  void run();                               // the OK command

  Session& session_;
  Environment& env_;
  bool running_ = false;
  // Controls under their given names; Qt owns them.
  QComboBox* cboOrigine_ = nullptr;
  QComboBox* cboDestinazione_ = nullptr;
  std::array<QCheckBox*, copiedParts.size()> chkCopy_{};
  std::array<QRadioButton*, copyModes.size()> optCopy_{};
  QLabel* lblConteggio_ = nullptr;
  QProgressBar* prgBarra_ = nullptr;
};

}  // namespace kv
