#pragma once
// The steps of the first-run guide (frmIntro): what each says, and what it points at in the main window.

#include <span>
#include <string_view>
#include <vector>

namespace kv {

/// A step of the guide. The texts are shown as they are, without markup.
struct IntroStep {
  std::string_view text;                 ///< what is to be done, after the number of the step
  std::string_view tab;                  ///< to go to; empty: stay
  std::vector<int> commands;             ///< buttons to light, by command number
  std::vector<std::string_view> fields;  ///< columns of `generale` whose fields are lit; the first takes the focus
};

/// The nine steps in order.
std::span<const IntroStep> introSteps();

/// The title of the guide, its heading and the texts above the steps.
inline constexpr std::string_view introTitle = "Korvane - Per iniziare";
inline constexpr std::string_view introHeading = " Per iniziare...";
inline constexpr std::string_view introOpening =
    "Appena installato, Korvane si apre con un catalogo contenente già alcuni reparti ed articoli. Bastano quindi "
    "poche operazioni per costruire il primo negozio e metterlo online:";
inline constexpr std::string_view introHint = "Fai clic sui numeri qui sotto per eseguire le operazioni suggerite";
/// The texts below the steps.
inline constexpr std::string_view introClosing =
    "Se hai completato correttamente tutti i passi (in particolare la configurazione della scheda \"Internet\") a "
    "questo punto il tuo negozio è online!";
inline constexpr std::string_view introAgain =
    "Per aprire nuovamente questa schermata in futuro, seleziona il comando \"Introduzione\" dal menu \"?\"";

/// The width of the main window that leaves room for the guide: its own where both fit, else what the guide leaves of
/// the screen, but no less than `least`, or what it has.
/// All widths in pixels, frames included. Called once, when the guide opens.
int widthBesideIntro(int screenWidth, int mainWidth, int introWidth, int least);

/// Left edges of the two windows, in pixels of the screen.
struct IntroPlacement {
  int mainLeft = 0;   ///< from the left edge of the screen
  int introLeft = 0;  ///< from the left edge of the screen
};
/// Beside each other when both fit on the screen, the main window staying where it is if the guide fits to its right;
/// else the main window goes to the left edge and the guide to the right edge.
/// Only left edges: the caller chooses the height. All values in pixels, `mainLeft` from the left edge of the screen.
IntroPlacement placeIntro(int screenWidth, int mainLeft, int mainWidth, int introWidth);

}  // namespace kv
