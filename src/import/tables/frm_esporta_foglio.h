#pragma once
// What of the catalogue is written to a sheet: the table, which of its rows, and the columns. The tag is "OK" when a
// file was chosen.

#include <functional>

#include "import/tables/table_columns.h"
#include "platform/qt/frm_dialog.h"

class QCheckBox;
class QComboBox;
class QListWidget;

namespace kv {

/// What was chosen.
struct SheetExportChoice {
  std::size_t table = 0;             ///< index among the tables
  std::vector<std::string> columns;  ///< own names, in their order
  bool onlyListed = false;           ///< only the articles that the list of the window shows
  std::string path;                  ///< of the file
};

/// Which columns of which table go into a sheet.
class frmEsportaFoglio final : public FormDialog {
 public:
  /// tables: outlive the dialog. listed: how many articles the list of the window shows.
  frmEsportaFoglio(const std::vector<SheetTable>& tables, std::size_t listed, HelpOpener help,
                   QWidget* parent = nullptr);

  /// Asks for the file to write; an empty path when the user leaves it. Tests put another one in.
  std::function<std::string()> chooseFile;
  /// What the controls show, and the file.
  SheetExportChoice choice() const;

 private:
  /// Shows the columns of the chosen table.
  void showTable();
  /// Ticks all columns, or none.
  void setAll(bool isChecked);
  void accepted();

  const std::vector<SheetTable>& tables_;
  std::string path_;
  QComboBox* cboTabella_ = nullptr;
  QCheckBox* chkElenco_ = nullptr;
  QListWidget* lstColonne_ = nullptr;
};

}  // namespace kv
