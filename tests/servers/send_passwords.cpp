// send_passwords SHOP replace|append REQUESTS RESPONSES [HOST_FOLDER]: what frmOTP does with two lists of one-time
// passwords. Prints what the user would be told, and "OK" at the end when the passwords are loaded. With HOST_FOLDER
// the user carries the script there by hand when asked to, and deletes it. For tests/web/one_time_passwords.py.

#include <cstdio>
#include <string>

#include "platform/files/files.h"
#include "platform/ports/clock.h"
#include "publish/passwords/password_run.h"
#include "publish/passwords/password_script.h"

namespace {

using namespace kv;

class CarryingUser final : public UserPort {
 public:
  CarryingUser(std::string online, std::string host) : online_(std::move(online)), host_(std::move(host)) {}

  void message(const std::string& text, Icon /*icon*/) override {
    std::printf("%s\n", text.c_str());
    for (const std::string& name : listFiles(host_, "*.php")) {
      if (text.find('"' + name + '"') != std::string::npos) ignore(deleteFile(joinPath(host_, name)), "the test looks");
    }
  }
  Answer question(const Question& question) override {
    std::printf("%s\n", question.text.c_str());
    for (const std::string& name : listFiles(online_, "*.php")) {
      if (host_.empty() || question.text.find('"' + name + '"') == std::string::npos) continue;
      ignore(copyFile(joinPath(online_, name), joinPath(host_, name)), "the host answers that nothing is there");
    }
    return question.buttons == Buttons::YesNo ? Answer::Yes : Answer::Ok;
  }
  std::string chooseFolder(const std::string& /*prompt*/, const std::string& /*initial*/) override { return {}; }
  void progress(const Progress& /*progress*/) override {}
  bool yield() override { return true; }

 private:
  std::string online_, host_;
};

class QuietView final : public PublishView {
  void title(const std::string& /*text*/) override {}
  void operation(const std::string& /*text*/) override {}
  void dialogue(const std::string& /*line*/) override {}
  void progress(const PublishProgress& /*progress*/) override {}
};

int sendLists(const std::string& shop, const std::string& host, PasswordScriptJob script) {
  Session session;
  session.ShopFolder = shop;
  session.onlineFolder = joinPath(shop, "online");
  auto catalogue = Database::open(joinPath(shop, "catalog.mdb"), OpenMode::ReadOnly);
  if (!catalogue) return 1;
  session.catalogue = std::move(*catalogue);
  const auto job = passwordJobOf(session);
  if (!job) return 1;
  script.shopFolder = shop;
  script.onlineFolder = session.onlineFolder;
  script.serverFolder = job->serverFolderKey();
  const auto transfer = makeTransfer();
  const auto http = makeHttpClient();
  CarryingUser user(session.onlineFolder, host);
  QuietView view;
  const auto sent = sendPasswordScript(script, systemRandom(), [&](const std::string& name) {
    return PasswordRun(*job, {*transfer, *http, user, view, {}}).send(name);
  });
  if (!sent) std::printf("%s: %s\n", sent.error().where.c_str(), sent.error().what.c_str());
  if (sent && *sent) std::printf("OK\n");
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 5 && count != 6) return 2;
  kv::PasswordScriptJob script;
  script.replaces = std::string(arguments[2]) == "replace";
  script.files = {arguments[3], arguments[4]};
  return sendLists(arguments[1], count == 6 ? arguments[5] : "", script);
}
