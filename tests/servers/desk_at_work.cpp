// desk_at_work SHOP: what the merchant does in the window of orders, line by line from the standard input, columns
// between tabs, over the program's own HTTP client and ordini.db: "fetch"; "state CODE FROM TO ANSWER MAIL STOCK" (yes
// or no each; ANSWER to a conflict); "note CODE TEXT"; "stock A KEY BEFORE AFTER ANSWER". Prints what the merchant is
// told or asked, a line each with "\n" for line ends, and "done" or "failed" after each. For
// tests/web/backoffice_program.py.

#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "platform/files/files.h"
#include "platform/ports/clock.h"
#include "platform/text/text.h"
#include "publish/orders/desk/order_desk.h"

namespace {

using namespace kv;

/// A merchant who has one answer to all questions.
class DeskMerchant final : public UserPort {
 public:
  Answer answer = Answer::No;

  void message(const std::string& text, Icon /*icon*/) override { print("told", text); }
  Answer question(const Question& question) override {
    print("asked", question.text);
    return answer;
  }
  std::string chooseFolder(const std::string& /*prompt*/, const std::string& /*initial*/) override { return {}; }
  void progress(const Progress& /*progress*/) override {}
  bool yield() override { return true; }

 private:
  static void print(const char* how, const std::string& text) {
    std::printf("%s\t%s\n", how, replaceAll(text, "\n", "\\n").c_str());
  }
};

std::vector<std::string> columnsOf(const std::string& line) {
  std::vector<std::string> columns{""};
  for (const char c : line) {
    if (c == '\t') {
      columns.emplace_back();
    } else {
      columns.back() += c;
    }
  }
  columns.resize(7);
  return columns;
}

bool carriedOut(OrderDesk& desk, DeskMerchant& merchant, const std::vector<std::string>& words) {
  const auto isYes = [](const std::string& word) { return word == "yes"; };
  merchant.answer = isYes(words[words[0] == "stock" ? 5 : 4]) ? Answer::Yes : Answer::No;
  if (words[0] == "fetch") return desk.fetch().has_value();
  if (words[0] == "state") {
    return desk.changeState({words[1], words[2], words[3], isYes(words[6]), isYes(words[5]), {}});
  }
  if (words[0] == "note") return desk.addNote({words[1], words[2]});
  return desk.setStock({StockKind::Articles, words[2], words[3], words[4]}, words[2]).has_value();
}

int workAtDesk(const std::string& shop) {
  Session session;
  session.ShopFolder = shop;
  auto catalogue = Database::open(joinPath(shop, "catalog.mdb"), OpenMode::ReadOnly);
  if (!catalogue) return 1;
  session.catalogue = std::move(*catalogue);
  const auto http = makeHttpClient();
  DeskMerchant merchant;
  OrderStore store(shop);
  OrderDesk desk(store, {[&] { return orderAccess(session, systemRandom()); },
                         {*http, systemClock(), systemRandom(), [] { return true; }},
                         merchant});
  if (!desk.open()) return 1;
  for (std::string line; std::getline(std::cin, line);) {
    std::puts(carriedOut(desk, merchant, columnsOf(line)) ? "done" : "failed");
  }
  return 0;
}

}  // namespace

int main(int count, char** words) { return count == 2 ? workAtDesk(words[1]) : 2; }
