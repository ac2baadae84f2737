#pragma once
// The options of an import from the accounting package, for its second and its third generation.

#include <array>

#include "import/accounting/accounting_options.h"
#include "platform/ports/user_port.h"
#include "platform/qt/frm_dialog.h"

class QCheckBox;
class QComboBox;
class QRadioButton;
class QVBoxLayout;

namespace kv {

/// What both dialogs share: the controls, and their state as options. The tag is the line of digits.
class AccountingForm : public FormDialog {
 public:
  /// Hides the window while its fields still have something to be left for.
  ~AccountingForm() override { hide(); }
  /// The options as the controls show them.
  AccountingOptions options() const;

 protected:
  /// `options`: what the controls show at first. `user` outlives the dialog.
  AccountingForm(const AccountingOptions& options, int generation, UserPort& user, QWidget* parent);

 private:
  void addColumns(QVBoxLayout& column);
  void addSwitches(QVBoxLayout& column);
  void addVisibilities(QVBoxLayout& column);
  void show(const AccountingOptions& options);
  /// Returns the line, or tells what is missing.
  void accepted();

  int generation_;
  UserPort& user_;
  QCheckBox* chkContrassegna_ = nullptr;
  QComboBox* cboPrezzo_ = nullptr;
  QComboBox* cboOfferta_ = nullptr;
  QComboBox* cboListino_ = nullptr;
  QCheckBox* chkIva_ = nullptr;
  QRadioButton* optImporta_ = nullptr;
  QRadioButton* optTralascia_ = nullptr;
  QCheckBox* chkBackup_ = nullptr;
  std::array<QCheckBox*, visibilities> chkVista_{};
};

/// The second generation: 7 digits.
class frmImportaOG final : public AccountingForm {
 public:
  frmImportaOG(const AccountingOptions& options, UserPort& user, QWidget* parent = nullptr)
      : AccountingForm(options, 2, user, parent) {}
};

/// The third generation, whose rows have a visibility: 11 digits.
class frmImportaOG3 final : public AccountingForm {
 public:
  frmImportaOG3(const AccountingOptions& options, UserPort& user, QWidget* parent = nullptr)
      : AccountingForm(options, 3, user, parent) {}
};

}  // namespace kv
