#include "builder/output/build_output.h"

#include <utility>

#include "platform/files/files.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr std::string_view listName = "kvftp.dat";

}  // namespace

BuildOutput::BuildOutput(UserPort& user, SiteFolders folders, bool smartbuild)
    : user_(user), folders_(std::move(folders)), pages_(user, tables_, smartbuild) {}

Result<> BuildOutput::open() {
  ignore(deleteFile(folders_.shopFile(listName)), "the end of the run replaces it");
  files_.add(folders_.shopFile("source.mdb"));
  return tables_.create(folders_.shop);
}

Result<> BuildOutput::close() {
  files_.close();
  if (auto committed = tables_.commit(); !committed) return committed;
  tables_.close();
  return files_.write(folders_.shopFile(listName));
}

void BuildOutput::abandon() {
  constexpr std::string_view reason = "what ended the run is the failure to tell";
  ignore(storeTags(), reason);
  if (files_.size() > 0) ignore(files_.write(folders_.shopFile(listName)), reason);
  if (tables_.isOpen()) ignore(tables_.commit(), reason);
}

void BuildOutput::startLanguage() {
  page_.row = PageTagRow();
  page_.articles.clear();
  pages_.startLanguage();
}

Result<PageTagRow> BuildOutput::openTags() {
  auto row = tags_.create(folders_.shop);
  if (row) page_.row = *row;
  return row;
}

Result<> BuildOutput::storeTags() { return tags_.store(page_.row, columns(), page_.articles); }

Result<> BuildOutput::makePage(const PageJob& job, const PageSources& sources) {
  auto made = tryPage(job, sources);
  if (!made && made.error().kind == ErrorKind::Told) incomplete_ = true;
  return made;
}

Result<> BuildOutput::tryPage(const PageJob& job, const PageSources& sources) {
  if (job.reparto) return pages_.CreaPagina(job, sources, page_.articles);
  return pages_.CreaPagina(job, sources);
}

Result<> BuildOutput::writeChanged(const std::string& path, std::string_view text) {
  const std::string bytes = toWindows1252(text);
  const auto present = readBytes(path);
  if (!isLink(path) && (present ? *present : std::string()) == bytes) return {};
  return writeBytes(path, bytes, AtLink::Replace);
}

Result<> BuildOutput::copy(const std::string& from, const std::string& to) {
  if (auto copied = copyFile(from, to, AtLink::Replace); !copied) return copied;
  files_.add(to);
  return {};
}

Result<Statement> BuildOutput::insertInto(std::string_view table, const std::vector<std::string>& columns) {
  return tables_.insertInto(table, columns);
}

}  // namespace kv
