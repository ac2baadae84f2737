#pragma once
// Tips of texts that somebody else has written.

#include <QString>

namespace kv {

/// The text as a tip that shows it as it is: the toolkit takes a tip that looks like HTML for HTML.
inline QString plainTip(const QString& text) {
  return text.isEmpty() ? text
                        : QStringLiteral("<span style=\"white-space:pre-wrap\">%1</span>").arg(text.toHtmlEscaped());
}

}  // namespace kv
