#pragma once
// The user and the window of a run, for connections side by side: each call is made on the stack that began the run,
// whose window and messages then have all the room that windows want, and events are processed there alone.

#include <string>

#include "platform/ports/user_port.h"
#include "platform/transfer/side_by_side.h"
#include "publish/run/publish_view.h"

namespace kv {

/// The user, asked on that stack.
class MainStackUser final : public UserPort {
 public:
  /// `user` outlives the object.
  explicit MainStackUser(UserPort& user) : user_(user) {}
  void message(const std::string& text, Icon icon) override {
    runOnMainStack([&] { user_.message(text, icon); });
  }
  Answer question(const Question& question) override {
    Answer answer = question.preset;
    runOnMainStack([&] { answer = user_.question(question); });
    return answer;
  }
  std::string chooseFolder(const std::string& prompt, const std::string& initial) override {
    std::string chosen;
    runOnMainStack([&] { chosen = user_.chooseFolder(prompt, initial); });
    return chosen;
  }
  void progress(const Progress& progress) override {
    runOnMainStack([&] { user_.progress(progress); });
  }
  bool yield() override {
    bool goesOn = false;
    runOnMainStack([&] { goesOn = user_.yield(); });
    return goesOn;
  }

 private:
  UserPort& user_;
};

/// The window of a run, shown to on that stack.
class MainStackView final : public PublishView {
 public:
  /// `view` outlives the object.
  explicit MainStackView(PublishView& view) : view_(view) {}
  void title(const std::string& text) override {
    runOnMainStack([&] { view_.title(text); });
  }
  void operation(const std::string& text) override {
    runOnMainStack([&] { view_.operation(text); });
  }
  void dialogue(const std::string& line) override {
    runOnMainStack([&] { view_.dialogue(line); });
  }
  void progress(const PublishProgress& progress) override {
    runOnMainStack([&] { view_.progress(progress); });
  }

 private:
  PublishView& view_;
};

}  // namespace kv
