#pragma once
// A whole shop and application folder in a fresh folder, small and plain: one department model, one page, a back office
// of one file, two language modules. A test changes what it is about and builds.

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "builder/run/make_pages.h"
#include "platform/files/settings.h"
#include "store/shop/session.h"
#include "support/fixed_clock.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"

namespace kv::test {

/// A row to insert: columns and values.
using Row = std::vector<std::pair<std::string, Value>>;

/// Money of a text such as "12.50".
Money money(std::string_view text);

class TempShop {
 public:
  explicit TempShop(int languages = 1);

  const std::string& folder() const { return shop_; }
  const std::string& applicationFolder() const { return application_; }

  void sql(const std::string& statements);
  void insert(const std::string& table, const Row& row);
  /// Sets columns of every row of a table.
  void update(const std::string& table, const Row& row);
  /// A department with ID and pagina `id`, at the top level unless `more` says otherwise.
  void department(const std::string& id, const Row& more = {});
  /// An article of a department; returns its ID. Titles and prices as `more` tells.
  std::int64_t article(const std::string& department, const Row& more = {});

  // Files of the application and the shop, given as UTF-8; lines end as written.
  void application(const std::string& path, std::string_view text);
  void shopFile(const std::string& path, std::string_view text);
  void templateFile(const std::string& name, std::string_view text) { application("template/prova/" + name, text); }

  BuildOutcome build(const BuildParts& parts = {});

  /// The text of a produced page of the online folder, with its line ends; "(missing)" when there is none.
  std::string page(const std::string& name) const;
  std::string scriptPage(const std::string& name) const;
  bool hasPage(const std::string& name) const;
  /// Fields of all rows of a query over db/sql.mdb, as text: fields parted by "|", rows by "\n".
  std::string rows(const std::string& query) const;
  /// The same over source.mdb.
  std::string tagRows(const std::string& query) const;
  /// Lines of kvftp.dat.
  std::vector<std::string> fileList() const;

  Session session;
  ScriptedUser user;
  MemorySettings settings;
  FixedClock clock;
  FixedRandom random;
  BuildCounts counts;

 private:
  void makeApplication();
  void makeShop(int languages);

  TempFolder root_;
  std::string shop_, application_;
  std::int64_t nextDepartment_ = 0, nextArticle_ = 0;
};

/// A GIF of one pixel.
std::string onePixelGif(unsigned char red, unsigned char green, unsigned char blue);

}  // namespace kv::test
