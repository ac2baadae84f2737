#pragma once
// The texts of the shipping dialog: its title, captions and the messages of its rules.

#include <string_view>

namespace kv {

inline constexpr std::string_view shippingTitle = "Korvane - Spese di spedizione";
inline constexpr std::string_view shippingByAmount = "Importo dell'ordine";
inline constexpr std::string_view shippingByWeight = "Peso";
inline constexpr std::string_view shippingUpToAmount = "Ordini fino a";
inline constexpr std::string_view shippingUpToWeight = "Peso fino a";
inline constexpr std::string_view shippingCost = "Importo spese";
inline constexpr std::string_view shippingBeyond = "Oltre:";
inline constexpr std::string_view shippingZoneVat = "Gli ordini provenienti da questa zona sono soggetti ad IVA";
inline constexpr std::string_view shippingVatRate = "IVA spese  (%):";
inline constexpr std::string_view shippingAlphabetic = "Ordina alfabeticamente nel negozio";
inline constexpr std::string_view shippingAddHint = "Premere il tasto \"Invio\" per aggiungere questo paese alla lista";
inline constexpr std::string_view shippingConfigureNote =
    "Dopo aver selezionato i metodi di pagamento, affinché funzionino è necessario configurarli nell'apposita "
    "schermata.";

// The refusals.
inline constexpr std::string_view shippingMethodPreselected =
    "Questo metodo di pagamento è preselezionato e non può essere eliminato";
inline constexpr std::string_view shippingLastMethod = "Almeno un metodo di pagamento deve essere selezionato";
inline constexpr std::string_view shippingCountryPreselected =
    "Questo Paese è preselezionato e non può essere eliminato";
inline constexpr std::string_view shippingLastCountry = "Almeno un paese deve essere definito";
inline constexpr std::string_view shippingOtherCountry = "Selezionare un Paese differente nel campo 'Preselezione'";
inline constexpr std::string_view shippingOtherMethod =
    "Selezionare un diverso metodo di pagamento/spedizione nel campo 'Preselezione'";

}  // namespace kv
