#pragma once
// The editors of the main window as data: which column each writes, on which page, what it is called and what may be
// typed. The pages are made from this table. Columns without a row here belong to a dialog, to the build, or to nobody
// (`codincart`, `cercacodice`, `searchusesCGI`, `merchantid` and `sendmail` are carried along and read by no page).

#include <span>
#include <string>
#include <string_view>

#include "shell/workbench/fields/field_rules.h"
#include "shell/workbench/fields/tab.h"
#include "store/catalogue/catalogue_sets.h"

namespace kv {

enum class Control {
  Line,      ///< one line
  Password,  ///< one line, its characters hidden
  Memo,      ///< many lines
  Check,     ///< a flag
  Choice,    ///< a number: the index in the list of choices
  Pick,      ///< a text of the list of choices
  Combo,     ///< a text, typed or taken from the list of choices
  Picture,   ///< a picture with its preview and its commands
  Variant,   ///< the name of a variant, chosen by its command
  Shown      ///< a text that can't be changed
};

/// How a column repeats itself; the window shows the language or price list that is being edited.
enum class Per { Shop, Listino };

/// The choices of a Pick or Combo that the workbench knows only when the list is opened.
enum class ChoiceSource { Fixed, Models, RelatedWords, Makers };

struct Editor {
  EditedSet set = EditedSet::Generale;
  std::string_view column;  ///< its bare name; empty for a Shown text that is no column
  Tab tab = Tab::Departments;
  std::string_view group;
  std::string_view label;
  Control control = Control::Line;
  FieldKind kind = FieldKind::PlainText;
  Per per = Per::Shop;
  std::string_view unit;     ///< shown after the field
  std::string_view toolTip;  ///< where the label alone isn't plain
  std::string_view choices;  ///< parted by "|"
  ChoiceSource source = ChoiceSource::Fixed;
  int number = 0;            ///< of the picture, or of the variant slot
  std::string_view command;  ///< of the button beside a line; empty: there is none
  bool beside = false;       ///< kept in a table of its own (side_editors.h)
};

/// All editors in the order of tab, group and row.
std::span<const Editor> editorTable();
/// The editor of a column; null when it has none.
const Editor* editorOf(EditedSet set, std::string_view column);

/// The column that the editor writes while a price list is being edited: "prezzo3", "opzione2_3".
std::string columnOf(const Editor& editor, int listino);

/// The name of the command beside `p3p`: the dialog of the compact privacy policy.
inline constexpr std::string_view privacyCommand = "privacyPolicy";
/// The group of `generale`'s long texts, which is shown as one strip of tabs (tabTesti).
inline constexpr std::string_view longTexts = "Testi del negozio";
/// The one of the pair of rate fields that is no column: 1 / `cambio`.
inline constexpr std::string_view reverseRateField = "cambio inverso";
/// The two Shown texts: the full addresses of shop and back office.
inline constexpr std::string_view shopAddressField = "indirizzo negozio";
inline constexpr std::string_view backOfficeAddressField = "indirizzo backoffice";

}  // namespace kv
