#pragma once
// Windows within the screen: the part of it that panels leave free, and the frame that the window manager adds.

#include <functional>

class QWidget;

namespace kv {

/// Makes a window smaller and moves it until its frame is within the part of its screen that windows may use.
/// Nothing for a window that is maximised or fills the screen. A window is never made smaller than its layout allows;
/// then its upper left corner is what shows.
void bringOnScreen(QWidget& window);

/// Runs an action from the event loop once the window manager has framed a window, or after half a second where none
/// does. Dropped when the window goes before.
void whenFramed(QWidget& window, std::function<void()> action);

}  // namespace kv
