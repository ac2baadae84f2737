#pragma once
// The choice of the company whose data are imported, and what the import would do.

#include "import/accounting/accounting_import.h"
#include "platform/qt/frm_dialog.h"

class QComboBox;
class QLabel;
class QTableView;

namespace kv {

class AccountingPlanModel;

/// The tag is "OK" and, for a variant with a list of companies, the `ID` of the one that was chosen. Nothing is
/// written here.
class frmImportaOGMAProg final : public FormDialog {
 public:
  /// All but the request outlive the dialog.
  frmImportaOGMAProg(Session& session, const Settings& settings, AccountingRequest request, QWidget* parent = nullptr);
  /// Hides the window while its fields still have something to be left for.
  ~frmImportaOGMAProg() override { hide(); }

  /// The company of a tag.
  static std::string companyOf(const std::string& tag) { return tag.substr(2); }

 private:
  /// `ID` of the company that is selected; empty when there is none.
  std::string company() const;
  /// Shows what the import of this company would do.
  void showPreview();

  Session& session_;
  const Settings& settings_;
  AccountingRequest request_;
  std::vector<AccountingCompany> companies_;
  QComboBox* cboSelect_ = nullptr;
  QLabel* lblSomme_ = nullptr;
  QTableView* grdAnteprima_ = nullptr;
  AccountingPlanModel* model_ = nullptr;
};

}  // namespace kv
