#include "builder/page/page_text.h"

#include <array>
#include <utility>

#include "builder/page/text_blocks.h"
#include "platform/files/files.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr std::string_view pageQuery = "?n=";
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

bool isHtml(std::string_view path) { return endsWithIgnoringCase(path, ".htm") || endsWithIgnoringCase(path, ".html"); }

void putMark(std::string& text, bool reparto) {
  const auto title = findIgnoringCase(text, "<TITLE>");
  if (title == std::string::npos) return;
  const std::string mark = generatorMark(reparto);
  if (text.find(mark) == std::string::npos) text.insert(title, mark + "\r\n");
}

tl::unexpected<Error> refuse(UserPort& user, const std::string& message) {
  user.message(message, Icon::Exclamation);
  return fail(ErrorKind::Told, "CreaPagina", message);
}

Result<std::string> expand(std::string_view text, int kind, const PageSources& sources, bool reparto) {
  TagContext context;
  context.row = sources.row;
  context.words = sources.words;
  context.customTags = sources.custom;
  context.reparto = reparto;
  auto expanded = EspandiTag(text, context, kind);
  if (expanded && *expanded == failedPass) return fail(ErrorKind::Told, "CreaPagina", std::string(failedPass));
  return expanded;
}

Result<std::string> expandAll(std::string_view source, const PageSources& sources, const std::string& input,
                              bool reparto) {
  std::string text(source);
  for (const int kind : {1, 4, 5, 3}) {
    if (kind == 5 && (sources.custom == nullptr || sources.custom->empty())) continue;
    if (kind == 3 && !equalsIgnoringCase(baseName(input), "results.htm")) continue;
    auto expanded = expand(text, kind, sources, reparto);
    if (!expanded) return expanded;
    text = std::move(*expanded);
  }
  return text;
}

/// As expandAll, and no value ends a text block of PHP that it is in.
Result<std::string> expandAsData(const std::string& text, const PageSources& sources, const std::string& input,
                                 bool reparto) {
  const auto expansion = [&](std::string_view part) { return expandAll(part, sources, input, reparto); };
  auto expanded = expansion(text);
  if (!expanded || !holdsMoreEndWords(text, *expanded)) return expanded;
  return expansion(withOwnEndWords(text, expansion));
}

/// Where the article section of a department page begins and ends, its markers left out.
struct Section {
  std::size_t startMark = 0, start = 0;
  std::size_t end = 0, endMark = 0;
};

// Where a marker is, when the text holds it exactly once.
Result<std::size_t> findOnce(std::string_view text, std::string_view marker, const std::string& input, UserPort& user) {
  const auto found = findIgnoringCase(text, marker);
  const std::string name(marker);
  if (found == std::string::npos) return refuse(user, "Il file '" + input + "' non contiene il tag " + name);
  if (findIgnoringCase(text, marker, found + 1) != std::string::npos) {
    return refuse(user, "Il file '" + input + "' contiene più di un tag " + name);
  }
  return found;
}

Result<Section> findSection(std::string_view text, const std::string& input, UserPort& user) {
  const auto start = findOnce(text, startMarker, input, user);
  if (!start) return fail(start.error());
  const auto end = findOnce(text, endMarker, input, user);
  if (!end) return fail(end.error());
  const Section section{*start, *start + startMarker.size(), *end, *end + endMarker.size()};
  if (section.end < section.start) {
    return refuse(user, "Nel file '" + input + "' il tag <KV_END> precede il tag <KV_START>");
  }
  return section;
}

Result<std::string> departmentPage(const PageJob& job, const std::string& text, const PageSources& sources,
                                   bool hasRows, UserPort& user) {
  const auto section = findSection(text, withoutQuery(job.input), user);
  if (!section) return fail(section.error());
  std::string articles;
  if (hasRows) {
    const std::string cell = text.substr(section->start, section->end - section->start);
    auto expanded = expand(std::string(articleAnchor) + cell, 2, sources, true);
    if (!expanded) return expanded;
    articles = std::move(*expanded);
  }
  const std::string* phpVars = sources.row->find("php_vars");
  std::string page = departmentPrologue(sources.lingua, pageIdentity(job.output).root,
                                        phpVars != nullptr ? std::string_view(*phpVars) : std::string_view());
  page.append(text, 0, section->startMark).append(loopHead(job.affiancati));
  page.append(articles).append(loopTail(job.affiancati));
  page.append(text, section->endMark).append(departmentEpilogue());
  return page;
}

// A page that is PHP from its first character has its prologue already, and the result page is read by a script.
void putPrologue(std::string& text, const std::string& input, const PageSources& sources) {
  if (!isHtml(input) || findIgnoringCase(baseName(input), "results.htm") != std::string_view::npos) return;
  const std::string_view start = trim(text);
  if (start.starts_with("<?php")) return;
  text.insert(0, pagePrologue(input, sources.lingua, sources.order) + (start.starts_with("<") ? "\r\n" : ""));
}

}  // namespace

Result<std::string> pageText(const PageJob& job, PageTemplate source, const PageSources& sources, bool hasRows,
                             UserPort& user) {
  const std::string input = withoutQuery(job.input);
  if (isHtml(input)) putMark(source.text, job.reparto);
  if (sources.newPhpNames && !source.secondPass) {
    for (const auto& [old, current] : phpNames) source.text = replaceAll(source.text, old, current);
  }
  auto text = expandAsData(source.text, sources, input, job.reparto);
  if (!text) return text;
  if (job.reparto) return departmentPage(job, *text, sources, hasRows, user);
  putPrologue(*text, input, sources);
  return text;
}

std::string asTagValue(std::string_view text, const PageSources& sources) {
  return withOwnEndWords(text, [&](std::string_view part) { return expandAll(part, sources, {}, false); });
}

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
  const auto query = output.find(pageQuery);
  if (query != std::string_view::npos) {
    identity.subPage = static_cast<int>(leadingNumber(output.substr(query + pageQuery.size())));
  }
  return identity;
}

std::string withoutQuery(std::string_view path) { return std::string(path.substr(0, path.find(pageQuery))); }

}  // namespace kv
