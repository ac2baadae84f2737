#pragma once
// The way on when no shop is open: a catalogue that is damaged, vanished or not to be repaired locks nobody out.

#include <functional>
#include <string>

#include "store/shop/session.h"

namespace kv {

/// What the user can do when the shop could not be opened.
enum class Rescue {
  RestoreCopy,  ///< "Ripristina una copia": a dated copy becomes the catalogue
  OpenAnother,  ///< "Apri un altro negozio"
  NewShop,      ///< "Nuovo negozio"
  Leave         ///< "Esci"
};

/// Who asks. Both are given the folder of the shop that could not be opened.
struct RescuePorts {
  std::function<Rescue(const std::string& shopFolder)> ask;              ///< the choice
  std::function<std::string(const std::string& shopFolder)> chooseCopy;  ///< the name of a copy; empty: none
};

/// Asks until a shop is open or the user leaves. Why it could not be opened has been told before. True when the session
/// has an open catalogue, at once when it has one already.
bool rescueShop(Session& session, Environment& env, const RescuePorts& ports);

/// The question, in Italian, with the folder.
std::string rescueText(const std::string& shopFolder);

}  // namespace kv
