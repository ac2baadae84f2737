#pragma once
// The window of the online database update: it starts by itself, shows the answers as they come, and takes the cancel.

#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_user.h"
#include "publish/update/database_update.h"

class QPlainTextEdit;

namespace kv {

class BusyFrame;

/// The tag is "OK", or the text that the user is to read, or empty when the update was cancelled.
class frmUpdate final : public FormDialog {
 public:
  /// `env` and `http` outlive the dialog.
  frmUpdate(UpdateJob job, Environment& env, HttpClient& http, QWidget* parent = nullptr);

  /// cmdAnnulla, Escape and the close box: asks, and ends the update on Yes.
  void reject() override;

 protected:
  /// Starts the update one second after the window is there.
  void showEvent(QShowEvent* event) override;

 private:
  /// Runs the update, once.
  void start();
  /// Processes events; false once the user has cancelled.
  bool processEvents();

  UpdateJob job_;
  Environment& env_;
  HttpClient& http_;
  EventPump pump_;
  bool mayStart_ = false;  // the second is over
  bool started_ = false;
  bool running_ = false;
  bool asking_ = false;     // the question is open
  bool cancelled_ = false;  // the user has said Yes
  // Controls under their names; Qt owns them.
  QPlainTextEdit* txtRisposta_ = nullptr;
  BusyFrame* picBusy_ = nullptr;
};

}  // namespace kv
