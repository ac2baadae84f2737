#pragma once
// The window of the history: the steps of this session and earlier ones, what each changed, and the way back.

#include <functional>
#include <optional>
#include <vector>

#include "platform/ports/user_port.h"
#include "platform/qt/frm_dialog.h"
#include "store/catalogue/way_back.h"

class QPlainTextEdit;
class QPushButton;
class QTableWidget;

namespace kv {

/// What the window asks for.
struct HistoryActions {
  std::function<std::vector<LoggedStep>()> steps;
  std::function<Result<std::vector<std::string>>(std::int64_t step)> describe;
  std::function<Result<WayBack>(std::int64_t step)> plan;
  HelpOpener help;
  std::string notice = {};  ///< shown below the list; empty: nothing to tell
};

/// The tag is "OK" when the user has chosen a way back and confirmed what would be lost; its caller goes that way. The
/// window itself changes nothing.
class frmCronologia final : public FormDialog {
 public:
  /// Reads the steps at once. `user` outlives the window.
  frmCronologia(HistoryActions actions, UserPort& user, QWidget* parent = nullptr);

  /// The way that was confirmed; nothing when the window was closed.
  const std::optional<WayBack>& chosen() const { return chosen_; }

 private:
  /// The steps, newest first, the first one selected.
  QWidget* makeList();
  QWidget* makeNotice();
  /// Shows what the selected step changed, and whether there may be a way back to before it.
  void showStep();
  /// Finds the way back to before the selected step and asks.
  void goBack();

  HistoryActions actions_;
  UserPort& user_;
  std::vector<LoggedStep> steps_;  ///< in the order of the rows
  std::optional<WayBack> chosen_;
  QTableWidget* lstPassi_ = nullptr;
  QPlainTextEdit* txtDettagli_ = nullptr;
  QPushButton* cmdTorna_ = nullptr;
};

}  // namespace kv
