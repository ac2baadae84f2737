#pragma once
// Nobody: a user who reads nothing and answers every question with its default.

#include "platform/ports/user_port.h"

namespace kv::bench {

class QuietUser final : public UserPort {
 public:
  void message(const std::string& /*text*/, Icon /*icon*/) override {}
  Answer question(const Question& question) override { return question.preset; }
  std::string chooseFolder(const std::string& /*prompt*/, const std::string& /*initial*/) override { return {}; }
  void progress(const Progress& /*progress*/) override {}
  bool yield() override { return true; }
};

}  // namespace kv::bench
