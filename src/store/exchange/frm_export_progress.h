#pragma once
// How far an export has come, in a small window with a bar and Annulla.

#include <QPointer>

#include "platform/ports/user_port.h"
#include "platform/qt/frm_user.h"

class QProgressDialog;

namespace kv {

/// The user during an export: progress is shown in a window of its own, which can cancel; all else passes through.
class ExportUser final : public UserPort {
 public:
  /// `user` and `parent`, over which the window opens, outlive it.
  ExportUser(UserPort& user, QWidget* parent) : user_(user), parent_(parent) {}
  ~ExportUser() override;

  void message(const std::string& text, Icon icon) override { user_.message(text, icon); }
  Answer question(const Question& question) override { return user_.question(question); }
  std::string chooseFolder(const std::string& prompt, const std::string& initial) override {
    return user_.chooseFolder(prompt, initial);
  }
  /// Shows the window with the first caption, and takes it away with an empty one.
  void progress(const Progress& progress) override;
  /// Processes events when it is time. False once Annulla was chosen.
  bool yield() override;

 private:
  UserPort& user_;
  QWidget* parent_;
  QPointer<QProgressDialog> window_;
  EventPump pump_;
};

}  // namespace kv
