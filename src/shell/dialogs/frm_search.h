#pragma once
// The search for articles, and the jump to one of the hits.

#include <cstdint>
#include <functional>

#include "platform/qt/frm_dialog.h"
#include "shell/dialogs/article_search.h"

class QAbstractTableModel;
class QButtonGroup;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

namespace kv {

class HitModel;  ///< the hits as rows of code and title

/// The tag is the ID of the article to show, as decimal text; empty when none was chosen.
/// Enter searches while the text has the focus and shows the article while the list has it. The dialog moves no cursor:
/// its caller goes to the article.
class frmSearch final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog.
  frmSearch(Session& session, Environment& env, QWidget* parent = nullptr);
  ~frmSearch() override;

  /// The article chosen by Mostra; 0 when none was.
  std::int64_t chosen() const { return chosen_; }

 private:
  /// The upper half: text, column to search in and whole words, with the button Cerca.
  QWidget* makeQuestion();
  /// The lower half: the hits, and the line that says that there are none.
  QWidget* makeAnswer();
  /// Runs the search that the controls describe.
  /// The wait cursor shows meanwhile; a failure is told to the user and leaves the list as it was.
  void search();
  /// Fills the list, or says that nothing was found.
  /// The first hit is selected and the list takes the focus.
  void showHits(std::vector<ArticleHit> hits);
  /// Ends the dialog with the hit that is selected.
  /// Nothing happens while none is selected. A double click does the same.
  void showArticle();
  /// The button is enabled while a hit is selected.
  void updateMostra();

  Session& session_;
  Environment& env_;
  HitModel* model_ = nullptr;         ///< the hits of the last search
  QLineEdit* txtTesto_ = nullptr;     ///< takes search characters only, see isSearchCharacter
  QButtonGroup* optCampo_ = nullptr;  ///< ids are indexes of searchColumns()
  QCheckBox* chkParole_ = nullptr;    ///< whole words only
  QTableView* lstArticoli_ = nullptr;
  QLabel* lblNessuno_ = nullptr;  ///< shows while a search has found nothing
  QPushButton* cmdCerca_ = nullptr;
  QPushButton* cmdMostra_ = nullptr;
  std::int64_t chosen_ = 0;  ///< ID of the article; 0 until Mostra
};

}  // namespace kv
