#pragma once
// The tabs of the main window.

namespace kv {

/// In the order of their strip: kReparti, kArticoli, kSito, kInternet.
enum class Tab { Departments, Articles, Site, Internet };
inline constexpr int tabCount = 4;

}  // namespace kv
