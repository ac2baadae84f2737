#pragma once
// How the showcase of the first page looks (rules of frmVetrina). Stored in the row of `generale`; pages follow at the
// next build.

#include <array>
#include <string>
#include <string_view>

#include "platform/database/database.h"

namespace kv {

inline constexpr std::string_view showcaseTitle = "Korvane - Impostazioni vetrina";

/// An alignment that the dialog offers: its caption and the two columns it stands for.
struct ShowcaseAlignment {
  std::string_view caption;
  std::string_view align;  ///< `vetalign`
  std::string_view style;  ///< `vetalignstyle`
};
inline constexpr std::array<ShowcaseAlignment, 5> showcaseAlignments{
    {{"a sinistra", "left", ""},
     {"al centro", "center", ""},
     {"a destra", "right", ""},
     {"immagine a sinistra", "left", "style=\"float: left\""},
     {"immagine a destra", "right", "style=\"float: right\""}}};
/// The boxes of the fields shown, in the order of their bits in `vetopzioni`.
inline constexpr std::array<std::string_view, 5> showcaseFields{"Titolo", "Sottotitolo", "Descrizione", "Prezzo",
                                                                "Seconda valuta"};
inline constexpr std::string_view showcasePicture = "Immagine piccola (obbligatorio)";
/// Where a click in the showcase leads: `singleitem_vet` 0 and 1.
inline constexpr std::array<std::string_view, 2> showcaseLinks{"Mostra tutti gli articoli del reparto",
                                                               "Mostra solo l'articolo in vetrina"};
/// The largest of the font sizes and of the numbers of columns on offer; both begin with 1.
inline constexpr int largestShowcaseFont = 7;
inline constexpr int mostShowcaseColumns = 10;

/// What the controls of the dialog show.
struct ShowcaseForm {
  std::size_t alignment = 1;  ///< index in showcaseAlignments
  std::array<bool, showcaseFields.size()> fields{};
  int fontSize = 0;  ///< `vetsize`; 0: none is stored
  int columns = 0;   ///< `colonnevetrina`; 0: none is stored. Out of range it stays: the build corrects it
  bool singleItem = false;
};

/// Reads the settings. The style of "immagine a destra" is compared with that of "immagine a sinistra", so what was
/// stored by it reopens as "a destra"; what is unknown as "al centro". Failures: as the store's.
Result<ShowcaseForm> loadShowcase(Database& catalogue);
/// The OK command: stores all of it.
Result<> storeShowcase(Database& catalogue, const ShowcaseForm& form);

}  // namespace kv
