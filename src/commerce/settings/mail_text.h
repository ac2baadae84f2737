#pragma once
// The text of the mail that confirms an order (rules of frmEmail). The dialog edits a copy of the field of the main
// window, in the language being edited, and hands it back.

#include <array>
#include <string>
#include <string_view>

namespace kv {

inline constexpr std::string_view mailTitle = "Korvane - Testo e-mail di conferma";
/// The tags that the three commands insert: amount, number and summary of the order.
inline constexpr std::array<std::string_view, 3> mailTags{"<<importo>>", "<<codice>>", "<<riepilogo>>"};
/// The notes of the dialog.
inline constexpr std::array<std::string_view, 2> mailNotes{
    "Inserire il contenuto dell'e-mail di conferma inviata dal negozio all'acquirente. L'e-mail sarà inviata in "
    "formato "
    "testo, pertanto al suo interno non è consentito inserire codici HTML (o applicare qualsiasi formattazione al "
    "testo).",
    "I tag \"<<importo>>\", \"<<codice>>\" e \"<<riepilogo>>\" saranno sostituiti, all'invio dell'e-mail, "
    "rispettivamente con l'importo totale, il codice identificativo e il riepilogo dell'ordine."};

/// What typing or pasting a text puts into the field: all of it but double quotes and the characters "|", "[" and "]",
/// which the field of the main window refuses.
std::string acceptedMailText(std::string_view typed);

}  // namespace kv
