#pragma once
// The text of a list's cell in its three uses: seen, spoken and told by a tip.

#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_plain_tip.h"

namespace kv {

/// Whether a role of a model asks for a cell's text.
inline bool isCellTextRole(int role) {
  return role == Qt::DisplayRole || role == Qt::AccessibleTextRole || role == Qt::ToolTipRole;
}

/// The text as a role asks for it; an empty cell is spoken too.
inline QString cellText(int role, const std::string& text) {
  if (role == Qt::ToolTipRole) return plainTip(toQt(text));
  return toQt(role == Qt::AccessibleTextRole && text.empty() ? "vuoto" : text);
}

}  // namespace kv
