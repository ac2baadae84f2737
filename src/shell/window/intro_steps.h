#pragma once
// The steps of the first-run guide (frmIntro): what each says, and what it points at in the main window.

#include <span>
#include <string_view>
#include <vector>

namespace kv {

struct IntroStep {
  std::string_view text;
  std::string_view tab;                  ///< to go to; empty: stay
  std::vector<int> commands;             ///< buttons to light, by command number
  std::vector<std::string_view> fields;  ///< columns of `generale` whose fields are lit; the first takes the focus
};

/// The nine steps in order.
std::span<const IntroStep> introSteps();

inline constexpr std::string_view introTitle = "Korvane - Per iniziare";
inline constexpr std::string_view introHeading = " Per iniziare...";
inline constexpr std::string_view introOpening =
    "Appena installato, Korvane si apre con un catalogo contenente già alcuni reparti ed articoli. Bastano quindi "
    "poche operazioni per costruire il primo negozio e metterlo online:";
inline constexpr std::string_view introHint = "Fai clic sui numeri qui sotto per eseguire le operazioni suggerite";
inline constexpr std::string_view introClosing =
    "Se hai completato correttamente tutti i passi (in particolare la configurazione della scheda \"Internet\") a "
    "questo punto il tuo negozio è online!";
inline constexpr std::string_view introAgain =
    "Per aprire nuovamente questa schermata in futuro, seleziona il comando \"Introduzione\" dal menu \"?\"";

/// The width of the main window that leaves room for the guide: its own where both fit, else what the guide leaves of
/// the screen, but no less than `least`, or what it has.
int widthBesideIntro(int screenWidth, int mainWidth, int introWidth, int least);

/// Where the two windows stand, in pixels of the screen.
struct IntroPlacement {
  int mainLeft = 0;
  int introLeft = 0;
};
/// Beside each other when both fit on the screen, the main window staying where it is if the guide fits to its right;
/// else the main window goes to the left edge and the guide to the right edge.
IntroPlacement placeIntro(int screenWidth, int mainLeft, int mainWidth, int introWidth);

}  // namespace kv
