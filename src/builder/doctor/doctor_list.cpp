#include "builder/doctor/doctor_list.h"

#include <algorithm>

#include "platform/text/text.h"

namespace kv {
namespace {

const DoctorCheck* checkOf(const Finding& finding) {
  const auto checks = doctorChecks();
  const auto found = std::ranges::find(checks, finding.check, &DoctorCheck::name);
  return found == checks.end() ? nullptr : &*found;
}

bool passes(const DoctorList& list, const Finding& finding, const std::string& search) {
  if (list.errorsOnly && finding.severity != Severity::Error) return false;
  if (!list.subject.empty() && subjectOf(finding) != list.subject) return false;
  return search.empty() || foldCase(finding.text).find(search) != std::string::npos;
}

}  // namespace

std::vector<std::size_t> DoctorList::shown() const {
  const std::string folded = foldCase(trim(search));
  std::vector<std::size_t> indexes;
  for (std::size_t i = 0; i < examination.findings.size(); ++i) {
    if (passes(*this, examination.findings[i], folded)) indexes.push_back(i);
  }
  std::stable_partition(indexes.begin(), indexes.end(),
                        [this](std::size_t i) { return examination.findings[i].severity == Severity::Error; });
  return indexes;
}

std::string DoctorList::summary() const {
  std::string text = findingSummary(countFindings(examination.findings));
  if (examination.silenced == 1) text += "; uno è silenziato";
  if (examination.silenced > 1) text += "; " + std::to_string(examination.silenced) + " sono silenziati";
  return text;
}

std::vector<std::string_view> doctorSubjects() {
  std::vector<std::string_view> subjects;
  for (const DoctorCheck& check : doctorChecks()) {
    if (std::ranges::find(subjects, check.subject) == subjects.end()) subjects.push_back(check.subject);
  }
  return subjects;
}

std::string_view subjectOf(const Finding& finding) {
  const DoctorCheck* check = checkOf(finding);
  return check == nullptr ? std::string_view() : check->subject;
}

bool leadsSomewhere(const Finding& finding) {
  return finding.target.subject != FindingSubject::Command || !finding.target.key.empty();
}

std::string mendingLine(const Finding& finding) {
  return finding.canMend() ? "Correzione: " + finding.mending : std::string();
}

std::string mendingStep(const Finding& finding) { return "Correggi: " + finding.mending; }

}  // namespace kv
