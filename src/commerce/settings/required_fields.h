#pragma once
// Which fields of the order form a visitor must fill in (rules of frmObbligatori).

#include <array>
#include <string_view>

#include "platform/database/database.h"

namespace kv {

inline constexpr std::string_view requiredFieldsTitle = "Korvane - Campi obbligatori";
/// The boxes, in the order of their bits in `campi_obbligatori`.
inline constexpr std::array<std::string_view, 4> requiredFields{"Ragione Sociale", "Partita IVA / Codice Fiscale",
                                                                "Telefono", "Maggiorenne"};
inline constexpr std::string_view requiredFieldsNote =
    "Per alcuni campi del modulo d'ordine è possibile specificare se renderli obbligatori. Nel caso del campo "
    "\"Maggiorenne\", se si sceglie di non renderlo obbligatorio gli ordini saranno inviati anche se l'utente non ha "
    "selezionato l'apposita checkbox sul modulo d'ordine.";
/// The caption of cmdReset, in this dialog and in those beside it.
inline constexpr std::string_view resetCaption = "Ripristina la configurazione di default";

/// A box each.
using RequiredFields = std::array<bool, requiredFields.size()>;
/// What cmdReset ticks: "Maggiorenne" alone.
inline constexpr RequiredFields requiredByDefault{false, false, false, true};

/// Reads the boxes from their sum; none is ticked where nothing is stored. Failures: as the store's.
Result<RequiredFields> loadRequiredFields(Database& catalogue);
/// The OK command: stores the sum of the boxes as the text of the number.
Result<> storeRequiredFields(Database& catalogue, const RequiredFields& fields);

}  // namespace kv
