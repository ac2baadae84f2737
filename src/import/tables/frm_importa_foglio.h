#pragma once
// The guide of an import from a sheet: three pages with Indietro, Avanti and, at the end, Importa. The tag is "OK" when
// the plan is to be written.

#include <functional>

#include "import/tables/table_guide.h"
#include "platform/ports/user_port.h"
#include "platform/qt/frm_dialog.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QStackedWidget;
class QTableView;
class QTableWidget;

namespace kv {

class PlanModel;

class frmImportaFoglio final : public FormDialog {
 public:
  /// guide, user: outlive the dialog. Reading and planning show their progress to the user, who can cancel them.
  frmImportaFoglio(TableGuide& guide, UserPort& user, HelpOpener help, QWidget* parent = nullptr);

  /// Asks for a file; an empty path when the user leaves it. Tests put another one in.
  std::function<std::string()> chooseFile;
  /// Reads a file and shows it, as after Sfoglia.
  void openFile(const std::string& path);

 private:
  QWidget* makeFilePage();
  QWidget* makeColumnsPage();
  QWidget* makePlanPage();
  /// A list of captions to choose from.
  QComboBox* choiceOf(const char* name, const QStringList& captions);
  /// Reads the file as its page says now.
  void readAgain();
  /// Runs a work that shows its progress, which ends with it. The work's text.
  std::string watched(const std::function<std::string()>& work);
  /// The first page: how the file is read, and its beginning.
  void showFile();
  /// The rows that may be that of the headers, to choose from.
  void showHeaderRows();
  /// The second: which column of the sheet goes where.
  void showColumns();
  /// The last: what the import would do.
  void showPlan();
  /// Its rows, as far as the filter lets them through.
  void showRows();
  /// What the current row changes.
  void showChanges();
  /// Shows a page.
  void goTo(int page);
  /// Goes on to the next page, or imports from the last.
  void next();

  TableGuide& guide_;
  UserPort& user_;
  QStackedWidget* pages_ = nullptr;
  QLineEdit* txtFile_ = nullptr;
  QComboBox *cboTabella_ = nullptr, *cboFoglio_ = nullptr, *cboCodifica_ = nullptr, *cboSeparatore_ = nullptr,
            *cboDecimali_ = nullptr, *cboMigliaia_ = nullptr, *cboChiave_ = nullptr, *cboModo_ = nullptr,
            *cboFiltro_ = nullptr, *cboFineRiga_ = nullptr, *cboProgramma_ = nullptr, *cboIntestazioni_ = nullptr;
  QLabel *lblLettura_ = nullptr, *lblSomme_ = nullptr, *lblMotivo_ = nullptr;
  QTableWidget *grdRighe_ = nullptr, *grdColonne_ = nullptr, *grdValori_ = nullptr;
  QTableView* grdPiano_ = nullptr;
  QCheckBox* chkFuori_ = nullptr;
  PlanModel* model_ = nullptr;
  QPushButton *cmdIndietro_ = nullptr, *cmdAvanti_ = nullptr;
};

}  // namespace kv
