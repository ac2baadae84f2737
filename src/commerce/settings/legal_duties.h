#pragma once
// What the law asks of a shop for consumers in the European Union and what this one lacks (rules of frmRequisiti, and
// for other windows that list what is to be done). It reads the catalogue and changes nothing.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "store/shop/session.h"

namespace kv {

inline constexpr std::string_view legalTitle = "Korvane - Requisiti di legge";

enum class DutyState {
  Met,
  Missing,  ///< something is lacking, as `text` says
  Check     ///< only the merchant can tell whether it applies
};
/// How the state of a duty is called.
std::string_view dutyStateName(DutyState state);

/// What a row of a duty can lead to.
enum class DutySubject { Nothing, Settings, Article, Command };
/// The field where a duty is met.
struct DutyTarget {
  DutySubject subject = DutySubject::Nothing;
  std::string column;        ///< of `generale`, or a field of the article
  std::int64_t article = 0;  ///< ID
  int language = 1;          ///< the one in which the text is missing, 1 to 4
  std::string command;       ///< name of the command that opens the dialog
};

/// One duty, and whether this shop meets it.
struct LegalDuty {
  std::string title;
  DutyState state = DutyState::Met;
  std::string text;  ///< one sentence: what is there, or what is to be done
  DutyTarget target;
};

/// All duties in the order in which a visitor meets them. applicationFolder: that of template,
/// language modules and scripts. Failures as Database::prepare.
Result<std::vector<LegalDuty>> legalDuties(Session& session, const std::string& applicationFolder);
/// "2 requisiti mancano, 1 è da verificare."
std::string legalSummary(const std::vector<LegalDuty>& duties);

}  // namespace kv
