#include "builder/run/frm_elabora.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <string>
#include <utility>

#include "builder/doctor/doctor.h"
#include "builder/run/build_parts.h"
#include "builder/run/build_summary.h"
#include "platform/qt/frm_user.h"

namespace kv {
namespace {

constexpr std::string_view buildTitle = "Korvane - Costruzione sito";
constexpr std::string_view buildHeading = "Elaborazione in corso...";
constexpr std::string_view buildStarts = "Inizializzazione";
constexpr std::string_view buildLeaves = "Annullamento in corso...";
constexpr std::string_view publishedNote =
    "Il negozio com'è pubblicato ora: ciò che è stato costruito vi appare dopo l'aggiornamento del sito";
constexpr std::string_view doctorNote = "Il comando Controlla il negozio del menu ? dice quali";

}  // namespace

/// The user of the build: questions and refusals pass through to the program's own, the progress stays here until it
/// is due on the screen, and the closing message waits for its buttons.
class frmElabora::BuildUser final : public UserPort {
 public:
  BuildUser(frmElabora& window, UserPort& user) : window_(window), user_(user) {}

  void message(const std::string& text, Icon icon) override {
    if (icon == Icon::Information) {
      closing = text;
    } else {
      user_.message(text, icon);
    }
  }
  Answer question(const Question& question) override { return user_.question(question); }
  std::string chooseFolder(const std::string& prompt, const std::string& initial) override {
    return user_.chooseFolder(prompt, initial);
  }
  void progress(const Progress& progress) override {
    caption = progress.caption;
    position = progress.position;
    maximum = progress.maximum;
  }
  bool yield() override { return window_.processEvents(); }

  std::string closing;
  std::string caption{buildStarts};
  double position = 0;
  double maximum = 0;
  EventPump pump;

 private:
  frmElabora& window_;
  UserPort& user_;
};

frmElabora::frmElabora(Session& session, Environment& env, BuildViews views, QWidget* parent)
    : FormDialog(buildTitle, parent),
      session_(session),
      env_(env),
      views_(std::move(views)),
      user_(std::make_unique<BuildUser>(*this, env.user)) {
  auto* column = new QVBoxLayout(this);
  column->addWidget(new QLabel(toQt(buildHeading)));
  lblStato_ = named(new QLabel(toQt(buildStarts)), "lblStato");
  column->addWidget(lblStato_);
  prgBarra_ = named(new QProgressBar(), "prgBarra", "Avanzamento della costruzione");
  prgBarra_->setRange(0, 0);
  column->addWidget(prgBarra_);
  lblAvvisi_ = named(new QLabel(), "lblAvvisi");
  lblAvvisi_->setToolTip(toQt(doctorNote));
  lblAvvisi_->hide();
  column->addWidget(lblAvvisi_);
  column->addStretch();
  QDialogButtonBox* buttons = makeClose("Annulla");
  cmdAnnulla_ = named(buttons->button(QDialogButtonBox::Close), "cmdAnnulla");
  column->addWidget(buttons);
  setCursor(Qt::BusyCursor);
  cmdAnnulla_->setCursor(Qt::ArrowCursor);
  sizeInCharacters(64, 9);
}

frmElabora::~frmElabora() = default;

void frmElabora::showEvent(QShowEvent* event) {
  FormDialog::showEvent(event);
  if (!started_) QTimer::singleShot(0, this, &frmElabora::start);
}

void frmElabora::start() {
  if (started_ || !isVisible()) return;
  started_ = true;
  running_ = true;
  user_->pump.processEvents(false);
  const std::string notice = noticeBeforeBuild(session_, env_.applicationFolder);
  lblAvvisi_->setText(toQt(notice));
  lblAvvisi_->setVisible(!notice.empty());
  Environment env{*user_, env_.settings, env_.clock, env_.random, env_.applicationFolder, env_.hooks};
  outcome_ = MakePages(session_, env, shopBuildParts(session_, env), &counts_);
  running_ = false;
  if (outcome_ == BuildOutcome::Done) {
    showProgress();
    showFinished(user_->closing);
  }
  finish(outcome_ == BuildOutcome::Done ? "OK" : "");
}

void frmElabora::reject() {
  if (!running_) {
    FormDialog::reject();
    return;
  }
  cancelled_ = true;
  cmdAnnulla_->setEnabled(false);
  lblStato_->setText(toQt(buildLeaves));
}

bool frmElabora::processEvents() {
  if (cancelled_) return false;
  if (!user_->pump.isDue()) return true;
  showProgress();
  user_->pump.processEvents(true);
  // Hidden only here, after the events: nothing that was clicked in it may reach the window below while the build
  // is still running.
  if (cancelled_) hide();
  return !cancelled_;
}

void frmElabora::showProgress() {
  lblStato_->setText(toQt(user_->caption));
  const int maximum = static_cast<int>(user_->maximum);
  // The totals aren't known yet below 2; a bar from 0 to 0 shows that something is going on.
  prgBarra_->setRange(0, maximum > 1 ? maximum : 0);
  if (maximum > 1) prgBarra_->setValue(static_cast<int>(user_->position));
}

void frmElabora::showFinished(const std::string& text) {
  if (!views_.openShop && !views_.openFolder) {
    env_.user.message(text, Icon::Information);
    return;
  }
  unsetCursor();
  QMessageBox box(QMessageBox::Information, windowTitle(), toQt(text), QMessageBox::NoButton, this);
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(toQt(buildSummary(counts_)));
  const auto offer = [&box](const std::function<void()>& view, const char* caption, const char* name) {
    return view ? named(box.addButton(toQt(caption), QMessageBox::ActionRole), name) : nullptr;
  };
  auto* shop = offer(views_.openShop, "Apri il &sito online", "cmdBrowser");
  if (shop != nullptr) shop->setToolTip(toQt(publishedNote));
  const auto* folder = offer(views_.openFolder, "Apri la &cartella", "cmdCartella");
  QPushButton* ok = named(box.addButton(toQt("OK"), QMessageBox::AcceptRole), "cmdOK");
  box.setDefaultButton(ok);
  box.setEscapeButton(ok);
  makeReadable(box);
  box.exec();
  if (shop != nullptr && box.clickedButton() == shop) views_.openShop();
  if (folder != nullptr && box.clickedButton() == folder) views_.openFolder();
}

}  // namespace kv
