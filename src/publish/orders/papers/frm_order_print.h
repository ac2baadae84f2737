#pragma once
// The window that prints orders: which paper, its preview, the printer or a PDF; or address labels on sheets.

#include <functional>
#include <memory>
#include <vector>

#include "platform/ports/user_port.h"
#include "platform/qt/frm_dialog.h"
#include "publish/orders/papers/frm_order_pages.h"

class QCheckBox;
class QComboBox;
class QPrintPreviewWidget;
class QPrinter;
class QPushButton;
class QSpinBox;

namespace kv {

/// The tag is "OK" when something was printed or written. It closes then.
class frmOrderPrint final : public FormDialog {
 public:
  /// user: outlives the window; failures are told there.
  frmOrderPrint(std::vector<DeskOrder> orders, ShopSender sender, UserPort& user, HelpOpener help,
                QWidget* parent = nullptr);
  ~frmOrderPrint() override;

  /// Asks for the PDF to write; an empty path when the user leaves it. Tests put another one in.
  std::function<std::string()> chooseFile;
  /// Asks for the printer; false when the user leaves it. Tests put another one in.
  std::function<bool(QPrinter&)> choosePrinter;

  /// What the controls say.
  PrintJob job() const;

 private:
  QWidget* makeChoices();
  QWidget* makePages();
  /// The buttons below the pages.
  void makeCommands();
  /// The document has changed: what belongs to it is on, and the preview is drawn again.
  void showPaper();
  /// Enables what the chosen kind of sheet has.
  void showSheet();
  /// Which page is shown, of how many.
  void showPageNumber();
  /// Asks for a printer and prints.
  void print();
  /// Asks for a file and writes it.
  void writePdf();
  /// Says how printing ended.
  void finishWith(const Result<int>& done);

  std::vector<DeskOrder> orders_;
  ShopSender sender_;
  UserPort& user_;
  HelpOpener help_;
  QImage logo_;
  std::unique_ptr<QPrinter> printer_;  // before the preview, which draws on it to its end
  QComboBox* cboDocumento_ = nullptr;
  QComboBox* cboFogli_ = nullptr;
  QSpinBox* spnPrima_ = nullptr;
  QCheckBox* chkLogo_ = nullptr;
  QPrintPreviewWidget* preview_ = nullptr;
  QPushButton* cmdPrecedente_ = nullptr;
  QPushButton* cmdSuccessiva_ = nullptr;
  QLabel* lblPagina_ = nullptr;
};

}  // namespace kv
