#pragma once
// The dialog of payment methods, countries and costs of shipping.

#include <functional>

#include "commerce/shipping/shipping_editor.h"
#include "platform/qt/frm_dialog.h"

class QCheckBox;
class QComboBox;
class QTabWidget;

namespace kv {

class NumberLine;
class ShippingMethodsPage;
class ShippingZonesPage;

/// What the dialog asks of the window that it belongs to.
struct ShippingHooks {
  std::function<void()> configure;  ///< opens frmConfiguraPG; empty: its button is off
  HelpOpener help;                  ///< empty: no help
  char decimalSeparator = ',';      ///< of the numbers in the fields
};

/// The tag is "OK" when the zone of the preselected country has been stored. All else is stored at once: who opens the
/// dialog restores the tables when the tag is empty.
class frmSpedizione final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog.
  frmSpedizione(Session& session, Environment& env, const ShippingHooks& hooks, QWidget* parent = nullptr);

  /// A field that has the focus is left while the dialog is still whole.
  ~frmSpedizione() override { hide(); }

 private:
  QWidget* makePreselection();
  QWidget* makeSettings(char decimalSeparator);
  void showPreselection();  // fills both lists
  void methodsChanged();
  bool leaveVatRate();
  void accepted();

  ShippingEditor editor_;
  // Controls under their given names; Qt owns them.
  QTabWidget* pages_ = nullptr;
  ShippingMethodsPage* methods_ = nullptr;
  ShippingZonesPage* zones_ = nullptr;
  QComboBox* cboPagamento_ = nullptr;
  QComboBox* cboPaese_ = nullptr;
  NumberLine* txtIvaSpese_ = nullptr;
  QCheckBox* chkAlfabetico_ = nullptr;
};

}  // namespace kv
