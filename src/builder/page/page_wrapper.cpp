#include "builder/page/page_wrapper.h"

#include <array>
#include <utility>

#include "builder/values/run_failure.h"
#include "platform/files/files.h"
#include "platform/numbers/number_form.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr std::string_view queryMark = "?n=";
constexpr std::string_view startMarker = "<KV_START>";
constexpr std::string_view endMarker = "<KV_END>";
constexpr std::string_view failedPass = "###ERROR###";
constexpr std::string_view articleAnchor = "<a name=<<2-/COUNTER/>>></a>";

constexpr std::array<std::pair<std::string_view, std::string_view>, 6> phpNames{{{"$HTTP_GET_VARS", "$_GET"},
                                                                                 {"$HTTP_POST_VARS", "$_POST"},
                                                                                 {"$HTTP_COOKIE_VARS", "$_COOKIE"},
                                                                                 {"$HTTP_SERVER_VARS", "$_SERVER"},
                                                                                 {"$HTTP_POST_FILES", "$_FILES"},
                                                                                 {"$HTTP_ENV_VARS", "$_ENV"}}};

std::string cutAtQuery(std::string_view path) { return std::string(path.substr(0, path.find(queryMark))); }

bool isHtml(std::string_view path) { return endsWithIgnoringCase(path, ".htm") || endsWithIgnoringCase(path, ".html"); }

void putMark(std::string& text, bool reparto) {
  const auto title = findIgnoringCase(text, "<TITLE>");
  if (title == std::string::npos) return;
  const std::string mark = generatorMark(reparto);
  if (text.find(mark) == std::string::npos) text.insert(title, mark + "\r\n");
}

// Whether the file on disk holds the page already: line ends that it has more than the page at its end don't count.
bool isUnchanged(const std::string& path, std::string_view page) {
  const auto present = readBytes(path);
  if (!present || present->empty()) return false;
  std::string_view old = *present;
  while (old.size() > page.size() && old.ends_with("\r\n")) old.remove_suffix(2);
  return !old.empty() && old == page;
}

}  // namespace

std::string generatorMark(bool reparto) {
  std::string mark = "<meta name=\"generator\" content=\"Korvane ";
  return mark.append(reparto ? "x.x.x" : KORVANE_VERSION).append("\">");
}

PageIdentity pageIdentity(std::string_view output) {
  output = baseName(output);
  const auto extension = output.find(".php");
  if (extension == std::string_view::npos) return {};
  PageIdentity identity;
  identity.root = output.substr(0, extension);
  const auto query = output.find(queryMark);
  if (query != std::string_view::npos) {
    identity.subPage = static_cast<int>(leadingNumber(output.substr(query + queryMark.size())));
  }
  return identity;
}

void PageWrapper::openTables(Database& build, const DerivedColumns& columns, std::string_view lingua) {
  firstLanguage_ = lingua.empty();
  articles_ = must(DerivedRowWriter::open(build, "articoli" + std::string(lingua), columns, {"pagina", "sottopagina"}));
  if (!firstLanguage_) return;
  details_ = must(DerivedRowWriter::open(build, "dettaglio", columns, {"beforecode", "aftercode"}));
  order_ = must(DerivedRowWriter::open(build, "ordinamento", columns, {}));
}

void PageWrapper::setSources(const PageTagRow* row, const LanguageModule* words, const CustomTags* custom,
                             std::string_view lingua) {
  row_ = row;
  words_ = words;
  custom_ = custom;
  lingua_ = lingua;
  cachedPath_.clear();
}

void PageWrapper::complain(const std::string& message) { user_.message(message, Icon::Exclamation); }

bool PageWrapper::readInput(const std::string& input, Template& out) {
  const auto waiting = pending_.find(input);
  if (waiting != pending_.end()) {
    out = {std::move(waiting->second), true};
    pending_.erase(waiting);
    return true;
  }
  if (input != cachedPath_) {
    auto text = readText(input);
    if (!text) {
      complain("Il file " + std::string(baseName(input)) +
               " non è presente nel template selezionato.\n"
               "Selezionare un altro template per il sito o un altro modello per i reparti.");
      return false;
    }
    cachedPath_ = input;
    cachedText_ = std::move(*text);
  }
  out = {cachedText_, false};
  return true;
}

std::string PageWrapper::expand(std::string_view text, int kind, bool reparto) const {
  TagContext context;
  context.row = row_;
  context.words = words_;
  context.customTags = custom_;
  context.reparto = reparto;
  return must(EspandiTag(text, context, kind));
}

std::string PageWrapper::expandAll(std::string text, std::string_view input, bool reparto) const {
  for (const int kind : {1, 4, 5, 3}) {
    if (kind == 5 && (custom_ == nullptr || custom_->empty())) continue;
    if (kind == 3 && !equalsIgnoringCase(baseName(input), "results.htm")) continue;
    text = expand(text, kind, reparto);
    if (text == failedPass) break;
  }
  return text;
}

bool PageWrapper::CreaPagina(const PageJob& job, const std::vector<DerivedRow>& rows, std::size_t rowCount) {
  const std::string input = cutAtQuery(job.input);
  // Further sub-pages are rows alone: their text would be that of the first one, which has passed already.
  if (job.reparto && pageIdentity(job.output).subPage > 1) {
    writeRows(job, rows, rowCount);
    return true;
  }
  Template source;
  if (!readInput(input, source)) return false;
  if (isHtml(input)) putMark(source.text, job.reparto);
  if (settings_.newPhpNames && !source.secondPass) {
    for (const auto& [old, current] : phpNames) source.text = replaceAll(source.text, old, current);
  }
  std::string text = expandAll(std::move(source.text), input, job.reparto);
  if (text == failedPass) return false;
  if (job.reparto) {
    if (!makeDepartmentPage(job, text, rowCount > 0)) return false;
    writeRows(job, rows, rowCount);
  } else if (isHtml(input) && findIgnoringCase(baseName(input), "results.htm") == std::string_view::npos) {
    const std::string_view start = trim(text);
    if (!start.starts_with("<?php")) {
      text.insert(0, pagePrologue(input, lingua_, settings_.order) + (start.starts_with("<") ? "\r\n" : ""));
    }
  }
  finish(job, std::move(text));
  return true;
}

bool PageWrapper::makeDepartmentPage(const PageJob& job, std::string& text, bool hasRows) {
  const std::string input = cutAtQuery(job.input);
  const auto findOnce = [this, &text, &input](std::string_view marker) {
    const auto place = findIgnoringCase(text, marker);
    const std::string name(marker);
    if (place == std::string::npos) {
      complain("Il file '" + input + "' non contiene il tag " + name);
    } else if (findIgnoringCase(text, marker, place + 1) != std::string::npos) {
      complain("Il file '" + input + "' contiene più di un tag " + name);
      return std::string::npos;
    }
    return place;
  };
  const auto start = findOnce(startMarker);
  if (start == std::string::npos) return false;
  const auto end = findOnce(endMarker);
  if (end == std::string::npos) return false;
  const auto sectionStart = start + startMarker.size();
  if (end < sectionStart) {
    complain("Nel file '" + input + "' il tag <KV_END> precede il tag <KV_START>");
    return false;
  }
  std::string section;
  if (hasRows) {
    section = expand(std::string(articleAnchor) + text.substr(sectionStart, end - sectionStart), 2, true);
    if (section == failedPass) return false;
  }
  const std::string* phpVars = row_->find("php_vars");
  std::string page = departmentPrologue(lingua_, pageIdentity(job.output).root,
                                        phpVars != nullptr ? std::string_view(*phpVars) : std::string_view());
  page.append(text, 0, start).append(loopHead(job.affiancati)).append(section).append(loopTail(job.affiancati));
  page.append(text, end + endMarker.size()).append(departmentEpilogue());
  text = std::move(page);
  return true;
}

void PageWrapper::writeRows(const PageJob& job, const std::vector<DerivedRow>& rows, std::size_t rowCount) {
  const PageIdentity identity = pageIdentity(job.output);
  std::vector<DerivedField> page(2), cells(2);
  page[0].set(std::string_view(identity.root));
  page[1].setWhole(identity.subPage);
  for (std::size_t i = 0; i < rowCount; ++i) {
    must(articles_.write(rows[i], page));
    if (!firstLanguage_) continue;
    CellCode code = cellCode(static_cast<int>(i), job.affiancati, i + 1 == rowCount);
    cells[0].set(std::move(code.before));
    cells[1].set(std::move(code.after));
    must(details_.write(rows[i], cells));
    must(order_.write(rows[i], {}));
  }
}

void PageWrapper::finish(const PageJob& job, std::string text) {
  if (pageIdentity(job.output).subPage > 1) return;
  const std::string output = cutAtQuery(job.output);
  if (job.keepForNextPass) {
    text += "\r\n";  // a pass ends its file with a line end, and the next one reads it
    pending_[output] = std::move(text);
    return;
  }
  std::string bytes = toWindows1252(text);
  if (settings_.smartbuild && isUnchanged(output, bytes)) {
    ++counts_.unchanged;
    return;
  }
  bytes += "\r\n";
  must(writeBytes(output, bytes));
  ++counts_.written;
}

}  // namespace kv
