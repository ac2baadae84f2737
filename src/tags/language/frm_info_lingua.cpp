#include "tags/language/frm_info_lingua.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kv {
namespace {

constexpr std::string_view title = "Invio informazioni sulla lingua";
constexpr std::string_view note =
    "Selezionando questa casella, il negozio comunica al sistema di pagamento la lingua in cui il cliente ha compilato "
    "il modulo d'ordine: la pagina di pagamento sarà visualizzata nella stessa lingua.\n\n"
    "Se la casella non è selezionata, la pagina di pagamento è visualizzata nella lingua stabilita dalle impostazioni "
    "del servizio.";

}  // namespace

frmInfoLingua::frmInfoLingua(QWidget* parent) : FormDialog(title, parent) {
  auto* column = new QVBoxLayout(this);
  column->addWidget(wrappedText(note), 1);
  QDialogButtonBox* buttons = makeClose("OK");
  buttons->button(QDialogButtonBox::Close)->setDefault(true);
  column->addWidget(buttons);
  sizeInCharacters(64, 12);
}

}  // namespace kv
