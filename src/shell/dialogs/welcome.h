#pragma once
// The welcome page: a new shop, empty or from the model, or one that is there already (rules of frmWelcome).

#include <functional>
#include <string>
#include <vector>

#include "store/shop/session.h"

namespace kv {

/// What the page shows.
struct WelcomeFacts {
  std::string newFolder;            ///< proposed for a new shop: below Negozi in the home folder, not there yet
  std::vector<std::string> recent;  ///< folders of the shops that were open last, without the one that is open
  bool hasCopies = false;           ///< of the shop that is open
};
/// Gathers them. No shop need be open.
WelcomeFacts welcomeFacts(const Session& session, const Environment& env);

/// What the merchant wants.
enum class Welcome {
  Stay,         ///< the shop that is open
  EmptyShop,    ///< a new shop with one department
  ModelShop,    ///< a new shop like the model
  Open,         ///< another shop, to be chosen
  Recent,       ///< a shop of the list
  RestoreCopy,  ///< a dated copy of the shop that is open
};
struct WelcomeChoice {
  Welcome what = Welcome::Stay;
  std::string folder;  ///< of a new or a recent shop
};

/// The folder that a typed text means: "~" at its start is the home folder; absolute, without trailing separator.
/// An empty text, or spaces, stay empty.
std::string typedShopFolder(const std::string& text);
/// The folder itself, or the nearest one above it that is there, to begin browsing at.
std::string nearestFolder(std::string folder);
/// Why a new shop can't be made there, in Italian; empty when it can.
std::string welcomeRefusal(const std::string& folder);

/// Does what was chosen. `restoreCopy` is the dialog of the copies. True when another shop, or another catalogue, was
/// taken; the session may then have no open catalogue. Failures are told to the user.
bool carryOutWelcome(const WelcomeChoice& choice, Session& session, Environment& env,
                     const std::function<bool()>& restoreCopy);

}  // namespace kv
