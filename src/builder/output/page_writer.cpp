#include "builder/output/page_writer.h"

#include <utility>

#include "platform/files/files.h"
#include "platform/text/text.h"

namespace kv {

namespace {

// Whether the file on disk holds the page already: line ends that it has more than the page at its end don't count. A
// file without text never does, so that an empty page gets its line end.
bool isUnchanged(const std::string& path, std::string_view page) {
  const auto present = readBytes(path);
  if (!present) return false;
  std::string_view old = *present;
  while (old.size() > page.size() && old.ends_with("\r\n")) old.remove_suffix(2);
  return !old.empty() && old == page;
}

}  // namespace

Result<PageTemplate> PageWriter::readTemplate(const std::string& input) {
  const auto waiting = pending_.find(input);
  if (waiting != pending_.end()) {
    PageTemplate made{std::move(waiting->second), true};
    pending_.erase(waiting);
    return made;
  }
  if (input != cachedPath_) {
    auto text = readText(input);
    if (!text) {
      const std::string message = "Il file " + std::string(baseName(input)) +
                                  " non è presente nel template selezionato.\n"
                                  "Selezionare un altro template per il sito o un altro modello per i reparti.";
      user_.message(message, Icon::Exclamation);
      return fail(ErrorKind::Told, "CreaPagina", message);
    }
    cachedPath_ = input;
    cachedText_ = std::move(*text);
  }
  return PageTemplate{cachedText_, false};
}

Result<> PageWriter::CreaPagina(const PageJob& job, const PageSources& sources, const DerivedRows& articles) {
  const PageIdentity identity = pageIdentity(job.output);
  // The text of a further sub-page would be that of the first one, which has passed already.
  if (job.reparto && identity.subPage > 1) return tables_.writeArticles(identity, job.affiancati, articles);
  auto source = readTemplate(withoutQuery(job.input));
  if (!source) return fail(source.error());
  auto text = pageText(job, std::move(*source), sources, !articles.empty(), user_);
  if (!text) return fail(text.error());
  if (job.reparto) {
    if (auto written = tables_.writeArticles(identity, job.affiancati, articles); !written) return written;
  }
  return finish(job, std::move(*text));
}

Result<> PageWriter::finish(const PageJob& job, std::string text) {
  if (pageIdentity(job.output).subPage > 1) return {};
  const std::string output = withoutQuery(job.output);
  if (job.keepForNextPass) {
    text += "\r\n";  // a pass ends its file with a line end, and the next one reads it
    pending_[output] = std::move(text);
    return {};
  }
  std::string bytes = toWindows1252(text);
  if (smartbuild_ && !isLink(output) && isUnchanged(output, bytes)) {
    ++counts_.unchanged;
    return {};
  }
  bytes += "\r\n";
  if (auto written = writeBytes(output, bytes, AtLink::Replace); !written) return written;
  ++counts_.written;
  return {};
}

}  // namespace kv
