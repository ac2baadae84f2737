#pragma once
// The dialog of variants: a grid of variants, one of the options of the current one, and the variant for a slot.

#include <cstdint>
#include <functional>
#include <map>
#include <optional>

#include "commerce/variants/variant_editor.h"
#include "platform/qt/frm_dialog.h"

class QCheckBox;
class QLabel;
class QPushButton;
class QTimer;

namespace kv {

class VariantGrid;

/// How the dialog is opened.
struct VariantChoice {
  std::string txtID = " ";      ///< the ID in the slot as text, or a space
  char decimalSeparator = ',';  ///< of the numbers in the grid
  HelpOpener help = {};         ///< empty: no help
};

/// The tag is "OK" on confirmation. The tables are changed at once: who opens the dialog restores them when the tag is
/// empty.
class frmOpzioni final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog.
  frmOpzioni(Session& session, Environment& env, const VariantChoice& choice, QWidget* parent = nullptr);

  /// ID of the variant that was chosen (lblID).
  std::int64_t lblID() const { return chosen_; }
  /// The article to go to after the dialog, when it was left through the list of uses; lblID() is then what the slot
  /// had.
  std::optional<std::int64_t> jump() const { return jump_; }

 private:
  QWidget* makeVariants();
  QWidget* makeOptions(char decimalSeparator);
  QWidget* makeSettings();
  QPushButton* addButton(std::string_view caption, const char* name, void (frmOpzioni::*run)());
  void showVariants(std::int64_t ID);  // reads all, and goes to one
  void showOptions(int row);           // of the current variant
  void variantMoved();                 // the states that follow the current variant
  void AggiornaSel();                  // shows the default mark
  const VariantRow* current() const;   // nullptr: none
  std::int64_t currentID() const;
  std::int64_t optionID() const;  // 0: none
  void addVariant();
  /// Deletes the current variant, its options, and what is unsaved of them.
  void deleteVariant();
  /// Copies the current variant and goes to the copy.
  void duplicateVariant();
  /// Stores a name that was typed, or keeps it as unsaved.
  void variantEdited(int row);
  /// Shows the name of a row, the unsaved one with its reason.
  void showName(int row);
  /// Stores a cell of an option, or keeps what was typed as unsaved.
  void storeCell(std::int64_t ID, int column, const std::string& typed);
  /// Forgets what is unsaved of an option.
  void forgetCells(std::int64_t option);
  /// Adds an option to the current variant and goes to it.
  void addOption();
  /// Deletes the current option.
  void deleteOption();
  /// Stores a cell that the user has changed.
  void optionEdited(int row, int column);
  /// Makes an option the default one of its variant.
  void mark(int row);
  /// Adds an option for each line of a text.
  void paste(const std::string& text);
  /// Lists the articles with the current variant, to go to one.
  void showUses();
  /// Shows the panel of all languages beside a row, while its command is down.
  void translate(VariantGrid& grid, int row);
  /// Tries once more to store what could not be stored; false while something can't.
  bool storeUnsaved();
  /// OK: stores what is unsaved, and closes the dialog when all is stored.
  void accepted();

  VariantEditor editor_;
  std::vector<VariantRow> variants_;
  std::vector<OptionRow> options_;
  /// What was typed and could not be stored, with the reason: names by the ID of the variant, cells by that of the
  /// option and the column.
  struct Unsaved {
    std::string text, reason;
  };
  std::map<std::int64_t, Unsaved> unsavedNames_;
  std::map<std::pair<std::int64_t, int>, Unsaved> unsavedCells_;
  std::int64_t initial_ = 0;  // of the slot; 0: none
  std::int64_t chosen_ = 0;
  std::optional<std::int64_t> jump_;
  // Controls under their given names; Qt owns them.
  VariantGrid* DBGrid1_ = nullptr;
  VariantGrid* DBGrid2_ = nullptr;
  QPushButton* cmdDuplica_ = nullptr;
  QPushButton* cmdElimina_ = nullptr;
  QPushButton* cmdUso_ = nullptr;
  QPushButton* cmdAdd_ = nullptr;
  QPushButton* cmdDel_ = nullptr;
  QPushButton* cmdLingue_ = nullptr;
  QCheckBox* chkNoDiff_ = nullptr;
  QCheckBox* chkShowSigns_ = nullptr;
  QLabel* lblLingue_ = nullptr;  // the panel
  QTimer* hiding_ = nullptr;     // of the panel
};

}  // namespace kv
