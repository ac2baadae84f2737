// kvftp.ini and firewall.net, which merchants edit by hand. Whatever a text says, the choices are within their limits,
// and what is written of them is read again as the same choices, in the same bytes.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/text/text.h"
#include "publish/settings/firewall_choice.h"
#include "publish/settings/publish_options.h"

namespace {

void requireSettings(bool holds) {
  if (!holds) std::abort();
}

void checkChoices(const std::string& text) {
  const kv::PublishSettings settings = kv::parsePublishSettings(text);
  requireSettings(settings.silenceSeconds >= 5 && settings.silenceSeconds <= 3600);
  const std::string written = kv::publishSettingsText(settings);
  requireSettings(kv::parsePublishSettings(written) == settings);
  requireSettings(kv::publishSettingsText(kv::parsePublishSettings(written)) == written);
  const kv::PublishOptions options = kv::PublishOptions::of(settings, true);
  requireSettings(kv::groupsOf(options.chosen().types) == options.types || !options.filtersTypes);
  requireSettings(!kv::acceptsType(settings.types, "leggimi") || kv::equalsIgnoringCase(settings.types, kv::allTypes));
}

void checkWay(const std::string& text) {
  const kv::FirewallSettings settings = kv::parseFirewallSettings(text);
  const auto kind = static_cast<std::size_t>(settings.kind);
  requireSettings(kind < kv::firewallKinds.size());
  requireSettings(static_cast<std::size_t>(settings.tls) < kv::tlsModes.size());
  // The first writing gives ports their plain form; from then on nothing changes.
  const std::string written = kv::firewallSettingsText(settings);
  const kv::FirewallSettings again = kv::parseFirewallSettings(written);
  requireSettings(kv::firewallSettingsText(again) == written);
  requireSettings(again.password == settings.password && again.kind == settings.kind);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = kv::fromWindows1252({reinterpret_cast<const char*>(data), size});
  checkChoices(text);
  checkWay(text);
  return 0;
}
