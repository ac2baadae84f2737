#include "builder/doctor/findings.h"

#include "platform/text/json_text.h"

namespace kv {
namespace {

constexpr std::string_view subjectNames[]{"article", "department", "settings", "command"};

std::string_view nameOfSubject(FindingSubject subject) { return subjectNames[static_cast<std::size_t>(subject)]; }

std::string countedNoun(std::size_t count, std::string_view one, std::string_view many) {
  if (count == 1) return "un " + std::string(one);
  return std::to_string(count) + " " + std::string(many);
}

std::string asJsonObject(const Finding& finding) {
  const bool isError = finding.severity == Severity::Error;
  const FindingTarget& target = finding.target;
  std::string out = "{\"check\": " + jsonString(finding.check);
  out += ", \"severity\": " + jsonString(isError ? "error" : "warning");
  out += ", \"text\": " + jsonString(finding.text);
  out += ", \"subject\": " + jsonString(nameOfSubject(target.subject));
  out += ", \"key\": " + jsonString(target.key) + ", \"column\": " + jsonString(target.column);
  out += ", \"language\": " + std::to_string(target.language) + ", \"list\": " + std::to_string(target.listino);
  out += ", \"mending\": " + (finding.canMend() ? jsonString(finding.mending) : std::string("null"));
  return out + "}";
}

}  // namespace

std::string Finding::identity() const {
  std::string name(check);
  for (const std::string& part : {std::string(nameOfSubject(target.subject)), target.key, target.column,
                                  std::to_string(target.language), std::to_string(target.listino), detail}) {
    name += "|" + part;
  }
  return name;
}

Finding commandFinding(std::string text, std::string command, std::string detail) {
  Finding finding;
  finding.text = std::move(text);
  finding.target = {FindingSubject::Command, std::move(command), "", 1, 0};
  finding.detail = std::move(detail);
  return finding;
}

FindingCounts countFindings(const Findings& findings) {
  FindingCounts counts;
  for (const Finding& finding : findings) ++(finding.severity == Severity::Error ? counts.errors : counts.warnings);
  return counts;
}

std::string findingSummary(const FindingCounts& counts) {
  if (counts.all() == 0) return "Nessun avviso";
  std::string text;
  if (counts.errors > 0) text = countedNoun(counts.errors, "errore", "errori");
  if (counts.warnings > 0) text += (text.empty() ? "" : ", ") + countedNoun(counts.warnings, "avviso", "avvisi");
  return text;
}

std::string_view severityName(Severity severity) { return severity == Severity::Error ? "Errore" : "Avviso"; }

std::string findingsAsJson(const Findings& findings) {
  std::string out = "[";
  for (const Finding& finding : findings) out += (out.size() > 1 ? ",\n " : "\n ") + asJsonObject(finding);
  return out + (findings.empty() ? "]\n" : "\n]\n");
}

}  // namespace kv
