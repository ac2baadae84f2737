#pragma once
// Our own drawings as icons: vectors, so crisp at every density, in colours that contrast with the palette in use.

#include <QIcon>
#include <string_view>

namespace kv {

/// How a drawing is coloured: as the palette of the moment asks, or lit, for the highlight colour of the guide.
enum class IconColours { Palette, Lit };

/// The drawing of this name; an empty icon when the program carries none. It follows a change of palette by itself.
/// `name`: of the file, without folder and extension.
QIcon drawnIcon(std::string_view name, IconColours colours = IconColours::Palette);

/// A flag with some room on its right, for a button that has its words there. `file`: without its kind; the drawing
/// NAME.svg goes before the picture NAME.gif. Empty when there is neither.
/// The first without that room, for a menu.
QIcon flagIcon(const QString& file);
QIcon flagBesideWords(const QString& file);

}  // namespace kv
