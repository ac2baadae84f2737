#include "shell/window/fields/frm_page.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QTabBar>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/qt/frm_dialog.h"
#include "shell/window/fields/frm_columns.h"
#include "store/schema/schema.h"

namespace kv {
namespace {

constexpr int narrowestColumn = 54;  // average characters
constexpr int rowSpacing = 6;

/// The heading of a group is bold; what is below it keeps the usual font.
QWidget* underHeading(QGroupBox& box) {
  QFont heading = box.font();
  heading.setBold(true);
  box.setFont(heading);
  auto* body = new QWidget(&box);
  QFont usual = body->font();
  usual.setBold(false);
  body->setFont(usual);
  return body;
}

}  // namespace

EditorPage::EditorPage(Tab tab, Workbench& workbench, const CommandActions& actions, QWidget* parent)
    : QScrollArea(parent), tab_(tab), workbench_(workbench), actions_(actions) {
  setWidgetResizable(true);
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  auto* body = new QWidget(this);
  auto* columns = new ColumnsLayout(fontMetrics().averageCharWidth() * narrowestColumn, body);
  std::vector<Group> groups;
  for (const Editor& editor : editorTable()) {
    if (editor.tab != tab_) continue;
    if (groups.empty() || groups.back().front()->group != editor.group) groups.emplace_back();
    groups.back().push_back(&editor);
  }
  for (const Group& group : groups) {
    QWidget* box = makeGroup(group);
    columns->addWidget(box);
    if (group.front()->group == longTexts) columns->setWide(box);
    const auto isMemo = [](const Editor* editor) { return editor->control == Control::Memo; };
    if (tab_ != Tab::Site && std::any_of(group.begin(), group.end(), isMemo)) columns->addGrowing(box);
  }
  setWidget(body);
  setFocusPolicy(Qt::NoFocus);
}

EditorBinding* EditorPage::bind(const Editor& editor, QWidget* parent) {
  auto* binding = new EditorBinding(editor, workbench_, actions_, parent);
  bindings_.push_back(binding);
  connect(binding, &EditorBinding::typed, this, [this, binding](const QString& text) {
    followRate(*binding, text);
    emit typed(*binding, text);
  });
  connect(binding, &EditorBinding::entered, this, [this, binding] { emit entered(*binding); });
  return binding;
}

QWidget* EditorPage::makeGroup(const Group& group) {
  auto* box = new QGroupBox(toQt(group.front()->group), widget());
  box->setAccessibleName(toQt(group.front()->group));
  auto* frame = new QVBoxLayout(box);
  QWidget* body = underHeading(*box);
  frame->addWidget(body);
  auto* column = new QVBoxLayout(body);
  column->setContentsMargins(0, 0, 0, 0);
  if (group.front()->group == longTexts) {
    column->addWidget(makeTextStrip(group));
    return box;
  }
  const auto ofList = [](const Editor* editor) { return editor->per == Per::Listino; };
  if (std::any_of(group.begin(), group.end(), ofList)) column->addWidget(makeListinoStrip(body));
  auto* form = new QFormLayout;
  form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
  form->setRowWrapPolicy(QFormLayout::DontWrapRows);
  form->setVerticalSpacing(rowSpacing);
  column->addLayout(form);
  for (const Editor* editor : group) addRow(*form, *bind(*editor, body));
  return box;
}

void EditorPage::addRow(QFormLayout& form, EditorBinding& binding) {
  const Editor& editor = binding.editor();
  if (binding.labelsItself()) return form.addRow(binding.field());
  auto* label = new QLabel(toQt(editor.label), binding.field()->parentWidget());
  label->setBuddy(binding.field());
  binding.setLabel(label);
  // An address takes a line of its own, so that it is read to its end.
  const bool isAddress = editor.column == shopAddressField || editor.column == backOfficeAddressField;
  if (binding.row() != nullptr) return form.addRow(label, binding.row());
  if (!isAddress) return form.addRow(label, binding.field());
  form.addRow(label);
  form.addRow(binding.field());
}

/// The long texts of the shop: one strip of tabs (tabTesti), one text shown at a time.
QWidget* EditorPage::makeTextStrip(const Group& group) {
  auto* box = new QWidget(widget());
  auto* column = new QVBoxLayout(box);
  column->setContentsMargins(0, 0, 0, 0);
  auto* strip = new QTabBar(box);
  strip->setObjectName(QStringLiteral("tabTesti"));
  strip->setAccessibleName(toQt(longTexts));
  strip->setExpanding(false);
  strip->setDrawBase(false);
  strip->setUsesScrollButtons(true);
  auto* texts = new QStackedWidget(box);
  for (const Editor* editor : group) {
    auto* holder = new QWidget(texts);
    EditorBinding* binding = bind(*editor, holder);
    strip->addTab(toQt(editor->label));
    binding->row()->setContentsMargins(0, 0, 0, 0);
    holder->setLayout(binding->row());
    texts->addWidget(holder);
    constexpr int lines = 9;
    binding->field()->setMinimumHeight(fontMetrics().lineSpacing() * lines);
  }
  connect(strip, &QTabBar::currentChanged, texts, [this, texts](int index) {
    commit();
    texts->setCurrentIndex(index);
  });
  column->addWidget(strip);
  column->addWidget(texts);
  return box;
}

QTabBar* EditorPage::makeListinoStrip(QWidget* parent) {
  auto* strip = new QTabBar(parent);
  strip->setObjectName(QStringLiteral("tabListino"));
  strip->setAccessibleName(tr("Listino"));
  strip->setToolTip(tr("Il listino che si sta modificando; lo 0 è quello di base"));
  strip->setExpanding(false);
  strip->setDrawBase(false);
  for (int listino = 0; listino < listini; ++listino) strip->addTab(QString::number(listino));
  connect(strip, &QTabBar::currentChanged, this, [this](int listino) { workbench_.selectListino(listino); });
  listinoStrips_.push_back(strip);
  return strip;
}

void EditorPage::showFields(EditedSet set) {
  for (EditorBinding* binding : bindings_) {
    if (binding->editor().set == set) binding->show();
  }
  refreshEnabled();
}

void EditorPage::refreshEnabled() {
  for (EditorBinding* binding : bindings_) binding->refreshEnabled();
}

void EditorPage::showListino(int listino) {
  for (QTabBar* strip : listinoStrips_) {
    const QSignalBlocker quiet(strip);
    strip->setCurrentIndex(listino);
  }
}

bool EditorPage::commit() {
  bool saved = true;
  for (EditorBinding* binding : bindings_) saved = binding->commit() && saved;
  return saved;
}

bool EditorPage::hasUnsaved() const {
  return std::ranges::any_of(bindings_, [](const EditorBinding* binding) { return binding->isUnsaved(); });
}

EditorBinding* EditorPage::binding(EditedSet set, std::string_view column) const {
  for (EditorBinding* binding : bindings_) {
    if (binding->editor().set == set && binding->editor().column == column) return binding;
  }
  return nullptr;
}

void EditorPage::goTo(EditedSet set, std::string_view column) {
  const EditorBinding* found = binding(set, column);
  if (found == nullptr) return;
  ensureWidgetVisible(found->field());
  found->field()->setFocus(Qt::OtherFocusReason);
  if (auto* line = qobject_cast<QLineEdit*>(found->field())) line->selectAll();
}

/// Each of the two rates is shown as it follows from the other while that one is typed.
void EditorPage::followRate(const EditorBinding& from, const QString& text) {
  if (from.editor().kind != FieldKind::Rate) return;
  const std::string_view other = from.editor().column == "cambio" ? reverseRateField : std::string_view("cambio");
  const std::string rate = reverseRate(fromQt(text), workbench_.decimalSeparator());
  EditorBinding* target = binding(EditedSet::Generale, other);
  if (target != nullptr && !rate.empty()) target->preview(toQt(rate));
}

}  // namespace kv
