#pragma once
// The texts of the variant editor: its title, captions and messages.

#include <string_view>

namespace kv {

inline constexpr std::string_view variantsTitle = "Korvane - Varianti articolo";
inline constexpr std::string_view variantsShowDifference = "Visualizza automaticamente la differenza di prezzo";
inline constexpr std::string_view variantsShowSigns = "Mostra il segno \"+\" davanti alle differenze positive";

inline constexpr std::string_view variantsNone = "Non è definita alcuna variante";
inline constexpr std::string_view variantFixed = "Questa variante non può essere eliminata";
inline constexpr std::string_view variantInUse =
    "Questa variante è utilizzata in uno o più articoli, e non è possibile eliminarla";

/// The name of the variant that means none.
inline constexpr std::string_view noVariantName = "(nessuna)";

}  // namespace kv
