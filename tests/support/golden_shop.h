#pragma once
// A shop and an application folder made from the parts of a golden case, its builds, and what they produce in the
// form of wanted parts.
//
// Parts in, once the base of the case has been added and "files" divided (golden_case.h): "rows" (golden_blocks.h);
// "settings" (key=value lines); "template/...", "code/...", "backoffice/...", "languages/...",
// "tags/personal.tag" of the application; "shopcode/...", "work/...", "tags/shoptag.tag", "kvftp.ini" of the shop;
// "builds", the steps when there is more to do than one build: "build", "export" (the SQL text of the build before it),
// "set TABLE ID COLUMN = VALUE" (ID or *), "setting KEY = VALUE".
// Parts out: "want/messages.txt", "want/kvftp.dat", "want/online/...", "want/scripts/...", and of a finished build the
// rows in "want/db/sql.txt" and "want/source.txt". The files that an export keeps for itself are left out when the
// published ones are copies of them. <shop>, <app> and <version> stand for what differs between runs. A case shows the
// parts that it is about, or pieces of them, and holds the rest by digests: see golden_digest.h.

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "builder/run/make_pages.h"
#include "platform/files/settings.h"
#include "support/fixed_clock.h"
#include "support/golden_digest.h"
#include "support/golden_rows.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"
#include "support/txtar.h"

namespace kv::test {

class GoldenShop {
 public:
  /// Writes the files and rows of the case and opens the shop; a failure is a failure of the test.
  explicit GoldenShop(const Txtar& archive);

  /// Runs the steps of the part "builds", or one build.
  void run();
  BuildOutcome outcome() const { return outcome_; }
  /// The shop's folder, and how many languages it has.
  const std::string& folder() const { return shop_; }
  int languages() const { return session_.languageCount; }
  /// What the builds left: messages, list of files, the two databases of a finished build, the files of both working
  /// folders. `archive` gives the flags of the parts it shows.
  std::vector<ProducedPart> produced(const Txtar& archive) const;
  /// Writes the whole parts below "produced" in the folder of this shop; the result is that folder. A failure is a
  /// failure of the test.
  std::string writeProduced(const std::vector<ProducedPart>& parts) const;
  /// What a finished build must not leave in the shop, and what it must have stored, by sentences; empty when all is
  /// well.
  std::string leftovers();

 private:
  void writeInputs(const Txtar& archive);
  void makeDatabases(const Txtar& archive);
  void open();
  void apply(const std::string& step);
  void build();
  void exportSql();
  std::string withPlaceholders(std::string text) const;
  void addFiles(const std::string& folder, const std::string& prefix, std::vector<ProducedPart>& parts) const;

  TempFolder root_;
  std::string shop_, application_;
  std::vector<std::string> steps_;
  std::string messages_;
  Session session_;
  ScriptedUser user_;
  MemorySettings settings_;
  FixedClock clock_;
  FixedRandom openRandom_;
  BuildOutcome outcome_ = BuildOutcome::Failed;
};

}  // namespace kv::test
