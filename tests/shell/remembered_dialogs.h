#pragma once
// Dialogs that a test plays: each remembers that it was run, by the name of its member, and gives the answer that the
// test has set.

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "shell/workbench/workbench_dialogs.h"

namespace kv::test {

using DialogMember = WorkbenchDialogs::Dialog WorkbenchDialogs::*;

/// The dialogs that are told nothing, with their names.
struct PlainDialog {
  const char* name;
  DialogMember member;
};
inline constexpr std::array plainDialogs{PlainDialog{"welcome", &WorkbenchDialogs::welcome},
                                         PlainDialog{"exportShop", &WorkbenchDialogs::exportShop},
                                         PlainDialog{"importShop", &WorkbenchDialogs::importShop},
                                         PlainDialog{"restoreCopy", &WorkbenchDialogs::restoreCopy},
                                         PlainDialog{"changeFolders", &WorkbenchDialogs::changeFolders},
                                         PlainDialog{"languages", &WorkbenchDialogs::languages},
                                         PlainDialog{"replicateLanguages", &WorkbenchDialogs::replicateLanguages},
                                         PlainDialog{"replicatePriceList", &WorkbenchDialogs::replicatePriceList},
                                         PlainDialog{"changePrices", &WorkbenchDialogs::changePrices},
                                         PlainDialog{"importAccounting", &WorkbenchDialogs::importAccounting},
                                         PlainDialog{"importSheet", &WorkbenchDialogs::importSheet},
                                         PlainDialog{"exportSheet", &WorkbenchDialogs::exportSheet},
                                         PlainDialog{"shipping", &WorkbenchDialogs::shipping},
                                         PlainDialog{"configurePayment", &WorkbenchDialogs::configurePayment},
                                         PlainDialog{"orderMail", &WorkbenchDialogs::orderMail},
                                         PlainDialog{"showcase", &WorkbenchDialogs::showcase},
                                         PlainDialog{"makers", &WorkbenchDialogs::makers},
                                         PlainDialog{"legalDuties", &WorkbenchDialogs::legalDuties},
                                         PlainDialog{"requiredFields", &WorkbenchDialogs::requiredFields},
                                         PlainDialog{"customTags", &WorkbenchDialogs::customTags},
                                         PlainDialog{"buildSettings", &WorkbenchDialogs::buildSettings},
                                         PlainDialog{"build", &WorkbenchDialogs::build},
                                         PlainDialog{"remindToBuild", &WorkbenchDialogs::remindToBuild},
                                         PlainDialog{"publishOptions", &WorkbenchDialogs::publishOptions},
                                         PlainDialog{"publish", &WorkbenchDialogs::publish},
                                         PlainDialog{"connectionSettings", &WorkbenchDialogs::connectionSettings},
                                         PlainDialog{"verifyConnection", &WorkbenchDialogs::verifyConnection},
                                         PlainDialog{"introduction", &WorkbenchDialogs::introduction},
                                         PlainDialog{"about", &WorkbenchDialogs::about}};

class RememberedDialogs {
 public:
  virtual ~RememberedDialogs() = default;

  /// The port that is played.
  virtual WorkbenchDialogs& dialogs() = 0;

  void answer(DialogMember member, bool accepted) {
    const std::string name = std::ranges::find(plainDialogs, member, &PlainDialog::member)->name;
    dialogs().*member = [this, name, accepted] {
      dialogsRun.push_back(name);
      return accepted;
    };
  }
  void answerSearch(std::optional<std::int64_t> found) {
    dialogs().searchArticle = [this, found] {
      dialogsRun.emplace_back("searchArticle");
      return found;
    };
  }
  void answerPicture(std::optional<std::string> chosen) {
    dialogs().choosePicture = [this, chosen](const std::string& current) {
      dialogsRun.push_back(current.empty() ? "choosePicture" : "choosePicture " + current);
      return chosen;
    };
  }
  /// The call names the slot as the column does: "1", "1_3" in price list 3.
  void answerVariant(bool accepted) {
    dialogs().defineVariant = [this, accepted](const VariantSlot& slot) {
      const std::string listino = slot.listino > 0 ? "_" + std::to_string(slot.listino) : "";
      dialogsRun.push_back("defineVariant " + std::to_string(slot.slot) + listino);
      return accepted;
    };
  }
  void answerPurge(bool accepted) {
    dialogs().purgePictures = [this, accepted](const std::string& folder) {
      dialogsRun.push_back("purgePictures " + folder);
      return accepted;
    };
  }
  void answerServerFolder(bool accepted) {
    dialogs().chooseServerFolder = [this, accepted](ServerFolder folder) {
      dialogsRun.emplace_back(folder == ServerFolder::Shop ? "chooseServerFolder shop" : "chooseServerFolder scripts");
      return accepted;
    };
  }
  /// The dialogs of the daily work, each left without a choice.
  void leaveDailyDialogs() {
    answer(&WorkbenchDialogs::build, false);
    answer(&WorkbenchDialogs::publishOptions, false);
    answerSearch(std::nullopt);
    answerPicture(std::nullopt);
    answerVariant(false);
  }

  std::vector<std::string> dialogsRun;
};

}  // namespace kv::test
