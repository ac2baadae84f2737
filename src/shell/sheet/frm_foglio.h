#pragma once
// The sheet of articles: the whole catalogue as rows and columns, edited in its cells.

#include "platform/qt/frm_dialog.h"
#include "shell/sheet/sheet_edits.h"
#include "shell/sheet/sheet_rows.h"
#include "shell/workbench/workbench.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QModelIndex;
class QTableView;
class QTimer;
class QToolButton;

namespace kv {

class SheetModel;

/// Everything done in it is stored at once, each as one step of the workbench's history. The tag is "OK" when something
/// was changed, whichever way the window was closed.
class frmFoglio final : public FormDialog {
 public:
  /// The workbench outlives the dialog; its shop stays open.
  frmFoglio(Workbench& workbench, HelpOpener help, QWidget* parent = nullptr);
  ~frmFoglio() override;

  /// The article to show in the main window; 0 when none was asked for.
  std::int64_t jump() const { return jump_; }
  void reject() override;

 private:
  QWidget* makeFilter();
  QWidget* makeTools();
  QWidget* makeTable();
  QToolButton* addTool(const char* name, std::string_view caption, std::string_view shortcut, void (frmFoglio::*run)());
  SheetFilter filter() const;
  void fillDepartments();
  void fillColumns();

  /// Reads the rows as filter and order say; the current cell stays current where it still shows.
  void refresh();
  void sortBy(int section);
  void chooseColumns(std::vector<std::size_t> shown);
  void keepOrderOfColumns();
  /// Writes cells as one step, and says what became of them.
  void write(const std::string& step, std::vector<CellText> cells, std::size_t outside = 0);
  void showMessage(const SheetOutcome& outcome);
  /// The selected cells in rows and columns as they are seen.
  std::vector<std::vector<CellText>> selectedBlock() const;
  std::vector<CellText> selectedCells() const;

  // The tools.
  void copy();
  void paste();
  void fillDown();
  void sameValue();
  void replace();
  void changePrices();
  void undo();
  void redo();
  void travel(std::string_view command);
  void showArticle();
  void openText(const QModelIndex& index);
  void updateTools();

  Workbench& workbench_;
  HelpOpener help_;
  std::vector<SheetColumn> columns_;
  SheetModel* model_ = nullptr;
  SheetOrder order_;
  QLineEdit* txtFiltro_ = nullptr;
  QComboBox* cboReparto_ = nullptr;
  QCheckBox* chkSottoreparti_ = nullptr;
  QComboBox* cboMostra_ = nullptr;
  QTableView* lstFoglio_ = nullptr;
  QMenu* mnuColonne_ = nullptr;
  QLabel* lblStato_ = nullptr;
  QTimer* waiting_ = nullptr;  ///< for the end of typing in the filter
  std::vector<QToolButton*> cellTools_;
  bool isChanged_ = false;
  std::int64_t jump_ = 0;
};

}  // namespace kv
