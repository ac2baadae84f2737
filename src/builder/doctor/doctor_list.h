#pragma once
// What the window of the shop doctor shows: the findings that pass its filters, and what can be done with each. Knows
// no window.

#include "builder/doctor/doctor.h"

namespace kv {

/// The state of the window.
struct DoctorList {
  Examination examination;
  std::string subject;      ///< only this one of doctorSubjects; empty: all
  bool errorsOnly = false;  ///< no warnings
  std::string search;       ///< part of the sentence, case ignored; empty: all

  /// Indexes of the findings that are shown, errors before warnings.
  std::vector<std::size_t> shown() const;
  /// "2 errori, 3 avvisi", and how many are silenced.
  std::string summary() const;
};

/// What the findings are about, in the order of the checks: "Articoli", "Reparti" and so on.
std::vector<std::string_view> doctorSubjects();
/// What a finding is about.
std::string_view subjectOf(const Finding& finding);
/// Whether there is a field or a dialog to go to.
bool leadsSomewhere(const Finding& finding);
/// What the mending does, for the line below the list; empty without one.
std::string mendingLine(const Finding& finding);
/// How undo names the mending.
std::string mendingStep(const Finding& finding);

}  // namespace kv
