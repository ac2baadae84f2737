#pragma once
// A short text beside a field: why a key did nothing, or why what was typed is not taken. It shifts no other control
// and takes no click.

#include <QString>

class QWidget;

namespace kv {

/// Shows a note below a field of a window, or above it where there is no room below; an empty text hides it.
/// Each window has one note: it goes when another is shown, after ten seconds, or by an empty text. Screen readers are
/// told of it.
void showNote(QWidget& field, const QString& text);
/// The note that a window shows now; empty when there is none.
QString noteOf(const QWidget& window);

}  // namespace kv
