#pragma once
// The window of the shop doctor: the findings with their filters, the way to the field, the mending, the silence.

#include <functional>
#include <optional>

#include "builder/doctor/doctor_list.h"
#include "platform/ports/user_port.h"
#include "platform/qt/frm_dialog.h"

class QAbstractItemModel;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

namespace kv {

class FindingModel;  ///< the findings that are shown, as rows of severity and sentence

/// What the window has done for it.
struct DoctorActions {
  std::function<Result<Examination>()> examine;
  std::function<Result<>(const Finding&)> mend;  ///< as a step that can be undone
  std::function<Result<>(const Finding&)> silence;
  std::function<Result<>()> endSilence;
  HelpOpener help;
};

/// The tag is "OK" when the user goes to the field of a finding, and empty when the window was closed. Enter and a
/// double click in the list go there.
class frmControlla final : public FormDialog {
 public:
  /// Examines the shop at once. `user` outlives the window: failures are told there.
  frmControlla(DoctorActions actions, UserPort& user, QWidget* parent = nullptr);
  ~frmControlla() override;

  /// Where the user goes; nothing when the window was closed.
  const std::optional<FindingTarget>& chosen() const { return chosen_; }

 private:
  /// The row of filters.
  QWidget* makeFilters();
  /// The list with its lines below.
  QWidget* makeFindings();
  /// Close, go, mend, silence, hear again.
  QWidget* makeCommands();
  /// Examines again; the selection stays at its row.
  void examine();
  /// Shows what passes the filters, with a row selected.
  void show(int row);
  /// Buttons and line of the selected finding.
  void updateCommands();
  /// The selected finding; null when there is none.
  const Finding* current() const;
  /// Does something with the selected finding and examines again; a failure is told.
  void act(const std::function<Result<>(const Finding&)>& action);
  /// Closes with the field of the selected finding.
  void go();

  DoctorActions actions_;
  UserPort& user_;
  DoctorList list_;
  FindingModel* model_ = nullptr;
  QComboBox* cboTema_ = nullptr;
  QCheckBox* chkErrori_ = nullptr;
  QLineEdit* txtFiltro_ = nullptr;
  QTableView* lstAvvisi_ = nullptr;
  QLabel* lblRiepilogo_ = nullptr;
  QLabel* lblCorrezione_ = nullptr;
  QPushButton* cmdVai_ = nullptr;
  QPushButton* cmdCorreggi_ = nullptr;
  QPushButton* cmdSilenzia_ = nullptr;
  QPushButton* cmdRiattiva_ = nullptr;
  std::optional<FindingTarget> chosen_;
};

}  // namespace kv
