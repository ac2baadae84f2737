// The answer of a web host to the update of the database. Only "OK" is success, whatever else a host sends; the text
// that the user reads holds no CR, and the log is the answer with its line ends made long.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <string_view>

#include "platform/files/files.h"
#include "platform/ports/clock.h"
#include "platform/text/text.h"
#include "publish/update/database_update.h"

namespace {

void requireAnswer(bool holds) {
  if (!holds) std::abort();
}

/// A host that always gives the same answer.
class SameAnswer final : public kv::HttpClient {
 public:
  explicit SameAnswer(std::string answer) : answer_(std::move(answer)) {}
  kv::Result<kv::HttpResponse> send(const kv::HttpRequest& request, const std::function<bool()>&) override {
    return kv::HttpResponse{request.method == "POST" ? 200 : 404, answer_};
  }

 private:
  std::string answer_;
};

class SilentUser final : public kv::UserPort {
 public:
  void message(const std::string&, kv::Icon) override {}
  kv::Answer question(const kv::Question& question) override { return question.preset; }
  std::string chooseFolder(const std::string&, const std::string&) override { return {}; }
  void progress(const kv::Progress&) override {}
  bool yield() override { return true; }
};

/// A shop folder in memory of the machine, with one language.
const std::string& shopFolder() {
  static const std::string folder = [] {
    const std::string path = "/dev/shm/korvane-answer-fuzz";
    kv::ignore(kv::createFolders(path + "/db"), "the requests would fail");
    kv::ignore(kv::writeBytes(path + "/s.sc", "1\r\n"), "the requests would fail");
    return path;
  }();
  return folder;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string answer(reinterpret_cast<const char*>(data), size);
  const std::string clean = kv::cleanAnswer(answer);
  requireAnswer(clean.size() <= answer.size() && answer.find(clean) != std::string::npos);
  SameAnswer host(answer);
  SilentUser user;
  std::string shown;
  const kv::UpdateJob job{shopFolder(), shopFolder(), "http://a", {"h", "u", "d", "n", "s"}};
  const auto answers = kv::UpdateDB(
      job, {host, kv::systemRandom(), user, [] { return true; }, [&](const std::string& text) { shown = text; }});
  requireAnswer(answers.has_value() && answers->empty() == (clean == "OK"));
  requireAnswer(shown.ends_with(clean == "OK" ? "Lingua1: OK\n_______________________\n\n"
                                              : "Lingua1: ERRORE\n_______________________\n\n"));
  const auto log = kv::readBytes(shopFolder() + "/db1.log");
  requireAnswer(log && *log == kv::replaceAll(clean, "\n", "\r\n"));
  return 0;
}
