#pragma once
// The compact privacy policy of the shop (rules of frmP3P): a text of the setting `p3p`.

#include <array>
#include <string>
#include <string_view>

#include "platform/database/database.h"

namespace kv {

inline constexpr std::string_view privacyTitle = "Korvane - Compact Privacy Policy";
inline constexpr std::string_view privacyNote =
    "Alcuni browser recenti possono essere impostati in modo da accettare i cookie solo dai siti che possiedono una "
    "\"Compact Privacy Policy\": una serie di dati che specificano il modo in cui vengono trattate le informazioni "
    "personali.";
/// What cmdReset writes into the field.
inline constexpr std::string_view defaultPrivacyPolicy = "ALL CUR ADM CONi PHY ONL UNI PUR COM NAV INT OUR STP";
/// The pages that explain the words of a policy.
inline constexpr std::array<std::string_view, 2> privacyAddresses{"https://www.w3.org/P3P/",
                                                                  "https://www.w3.org/TR/P3P/"};

/// Reads the policy; empty where none is stored. Failures: as the store's.
Result<std::string> loadPrivacyPolicy(Database& catalogue);
/// The OK command.
Result<> storePrivacyPolicy(Database& catalogue, const std::string& policy);

}  // namespace kv
