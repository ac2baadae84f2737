#pragma once
// What a build produces, and its only writer: pages, copied files, rows of both databases, and the list of files. The
// phases of a build compute values and hand them over here; none of them writes a file or a row of its own.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "builder/output/file_list.h"
#include "builder/output/page_writer.h"
#include "builder/output/row_tables.h"
#include "builder/output/site_folders.h"
#include "builder/output/tag_database.h"

namespace kv {

/// The page that is being made. It stays until the next one begins, since the tag database shows it when the run ends.
struct PageAtHand {
  PageTagRow row;        ///< values of the page tags
  DerivedRows articles;  ///< of a department's sub-page
};

/// The output of one run. `user` outlives it; it hears what is wrong with a template and what the site goes without.
class BuildOutput {
 public:
  /// `smartbuild`: a page whose text is unchanged isn't written again.
  BuildOutput(UserPort& user, SiteFolders folders, bool smartbuild);
  BuildOutput(const BuildOutput&) = delete;
  BuildOutput& operator=(const BuildOutput&) = delete;

  /// The folders that the site is written to.
  const SiteFolders& folders() const { return folders_; }
  /// The columns of the derived rows of the page at hand.
  const DerivedColumns& columns() const { return tables_.columns(); }

  /// Removes the list of the last build and creates the build database. Failures as RowTables::create.
  Result<> open();
  /// Commits the rows, writes the list of files and closes both databases. Failures as Database::commit, writeText.
  Result<> close();
  /// Leaves what a run that ended early has made: rows, page at hand and list as far as they came. A failure here is
  /// dropped, since what ended the run is the one to tell.
  void abandon();

  /// Begins a language: there is no page at hand.
  void startLanguage();
  /// Creates the tag database of the language. Gives the page tag row of its columns, which is the page at hand until
  /// the first one is made. Failures as TagDatabase::create.
  Result<PageTagRow> openTags();
  /// Opens the tables that get the articles of a language. Failures as RowTables::startLanguage.
  Result<> openArticleTables(std::string_view lingua) { return tables_.startLanguage(lingua); }
  /// Stores the page at hand in the tag database. Failures as TagDatabase::store.
  Result<> storeTags();

  /// The page at hand, for the phase that makes it.
  PageAtHand& page() { return page_; }
  /// Makes a page; that of a department with the articles of the page at hand. Failures as PageWriter::CreaPagina; the
  /// site is then incomplete.
  Result<> makePage(const PageJob& job, const PageSources& sources);
  /// Makes a page that the site may go without: a refusal leaves the site complete. Failures as PageWriter::CreaPagina.
  Result<> tryPage(const PageJob& job, const PageSources& sources);
  /// Replaces a file of text unless it holds the same; the file then keeps its date. Failures as writeBytes.
  Result<> writeChanged(const std::string& path, std::string_view text);
  /// Copies a file and lists the copy. Failures as copyFile.
  Result<> copy(const std::string& from, const std::string& to);
  /// Lists a file as part of the site.
  void list(std::string_view path) { files_.add(path); }
  /// The statement that appends rows to a table of the build database: one parameter per column. Failures as
  /// Database::prepare.
  Result<Statement> insertInto(std::string_view table, const std::vector<std::string>& columns);

  /// Adds a table that only some shops have to the build database. Failures as Database::createTable.
  Result<> addTable(const TableInfo& table) { return tables_.addTable(table); }
  /// The build database, for a phase that reads what was written so far.
  Database& writtenRows() { return tables_.written(); }

  /// Tells the user of something that the site goes without; the build goes on.
  void warn(const std::string& message) { user_.message(message, Icon::Exclamation); }
  /// Tests whether the output folders can be written. Failures as kv::probeFolders.
  Result<> probeFolders(std::string_view probe) { return kv::probeFolders(folders_, probe, user_); }

  /// Whether a page was refused that the site can't do without.
  bool isIncomplete() const { return incomplete_; }
  /// What was done with pages so far.
  const PageCounts& pageCounts() const { return pages_.counts(); }
  /// The number of files that are listed.
  std::size_t filesListed() const { return files_.size(); }

 private:
  UserPort& user_;
  SiteFolders folders_;
  RowTables tables_;
  TagDatabase tags_;
  FileList files_;
  PageWriter pages_;
  PageAtHand page_;
  bool incomplete_ = false;
};

}  // namespace kv
