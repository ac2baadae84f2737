#pragma once
// The dialog that copies one price list into others.

#include "commerce/prices/frm_percentage.h"
#include "commerce/replication/list_replication.h"
#include "platform/qt/frm_dialog.h"

class QLabel;

namespace kv {

/// The tag is "OK" when lists have been copied, and empty when it was left.
class frmReplicaListini final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog. `decimalSeparator`: of the user's locale.
  frmReplicaListini(Session& session, Environment& env, char decimalSeparator, HelpOpener help,
                    QWidget* parent = nullptr);

 private:
  QWidget* makeSource(char decimalSeparator);
  QWidget* makeOptions();
  ListReplication replication() const;  // what the controls say
  void countAgain();                    // how much would be written
  void run();                           // the OK command

  Session& session_;
  Environment& env_;
  PriceListBoxes lists_;
  // Controls under their given names; Qt owns them.
  QComboBox* cboListino_ = nullptr;
  PercentageBox* cboVariazione_ = nullptr;
  QCheckBox* chkTondi_ = nullptr;
  QCheckBox* chkOfferte_ = nullptr;
  QCheckBox* chkScq_ = nullptr;
  QCheckBox* chkVarianti_ = nullptr;
  QCheckBox* chkScRep_ = nullptr;
  QCheckBox* chkRestr_ = nullptr;
  QLabel* lblConteggio_ = nullptr;
};

}  // namespace kv
