#pragma once
// The reminder to build before publishing (rules of frmAvviso).

#include <string_view>

#include "platform/files/settings.h"

namespace kv {

/// The texts of the dialog from top to bottom: what is to be done first, why, and the question that Sì and No answer.
inline constexpr std::string_view reminderText =
    "Se sono state effettuate modifiche al negozio, prima di aggiornare il sito (trasferire i file sul server) è "
    "necessario costruire il negozio.";
inline constexpr std::string_view reminderReason =
    "Le modifiche apportate al negozio, infatti, non avranno effetto finché il negozio non sarà ricostruito.";
inline constexpr std::string_view reminderQuestion = "Si desidera procedere con l'aggiornamento?";
/// The caption of its check box.
inline constexpr std::string_view reminderNever = "Non mostrare più questo avviso in futuro";

/// Whether the reminder is to be shown: setting `NoShow` is not "1".
bool wantsReminder(const Settings& settings);
/// Either button was pressed: with the check box on, the reminder is not shown again.
/// Without it nothing is written. Failures: as Settings::set.
Result<> answerReminder(Settings& settings, bool never);

}  // namespace kv
