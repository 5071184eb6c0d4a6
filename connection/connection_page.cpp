#include "connection/connection_page.h"

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "backends/text/registry_text.h"
#include "connection/serial_ports.h"
#include "resources/dialogs.h"
#include "storage/registry_keys.h"
#include "storage/stored_text.h"

// The page of the dialer's serial port. It stores texts of a fixed length, which the dialer reads
// into fields of that length.
namespace connection {
namespace {

/// A setting that is chosen from a list. The counts are those of the fields that the dialer reads
/// into; the first is in UTF-16 units.
struct ListSetting {
  int id;
  std::u16string_view valueName;
  std::span<const std::u16string_view> choices;
  std::u16string_view defaultText;
  std::size_t mostUnits;
  std::size_t byteCount;
};

struct CheckSetting {
  int id;
  std::u16string_view valueName;
};

// The bytes are what the dialer reads, and hold half as many units: a longer text is cut there.
constexpr std::size_t kLineUnits = 31;
constexpr std::size_t kLineBytes = 32;
constexpr std::size_t kPortUnits = 199;
constexpr std::size_t kPortBytes = 200;
constexpr std::size_t kCheckBytes = 4;

// Both in the order in which they are written, the lists first.
constexpr std::array<ListSetting, 5> kListSettings{{
    {resources::kBaudRateComboId, storage::kBaudRateValue, kBaudRates, kDefaultBaudRate, kLineUnits,
     kLineBytes},
    {resources::kDataBitsComboId, storage::kDataBitsValue, kDataBits, kDefaultDataBits, kLineUnits,
     kLineBytes},
    {resources::kStopBitsComboId, storage::kStopBitsValue, kStopBits, kDefaultStopBits, kLineUnits,
     kLineBytes},
    {resources::kFlowControlComboId, storage::kFlowControlValue, kFlowControls, kDefaultFlowControl,
     kLineUnits, kLineBytes},
    // Its choices are the ports of the machine.
    {resources::kPortComboId, storage::kComPortValue, {}, kDefaultPort, kPortUnits, kPortBytes},
}};
constexpr std::array<CheckSetting, 2> kCheckSettings{{
    {resources::kHeadsetCheckId, storage::kIsBluetoothValue},
    {resources::kNoHangUpCheckId, storage::kIsHangUpValue},
}};

std::vector<std::u16string> SortedPorts(platform::Registry& registry) {
  std::vector<std::u16string> names;
  for (ActivePort& port : ReadActivePorts(registry)) {
    names.push_back(std::move(port.name));
  }
  SortPorts(names);
  return names;
}

}  // namespace

std::vector<std::byte> ToSettingValue(std::u16string_view text, std::size_t byteCount) {
  std::vector<std::byte> bytes = storage::ToUtf16Bytes(
      storage::CutText(storage::UpToZero(text), byteCount / sizeof(char16_t)));
  bytes.resize(byteCount);
  return bytes;
}

ConnectionPage::ConnectionPage(platform::Registry& registry, platform::Ui& ui)
    : CPropertyPage(resources::kConnectionDialog, ui), m_registry(registry) {}

const framework::RuntimeClass& ConnectionPage::GetRuntimeClass() const {
  static constexpr framework::RuntimeClass kClass{"ConnectionPage"};
  return kClass;
}

bool ConnectionPage::OnInitDialog() {
  CPropertyPage::OnInitDialog();
  OpenKey();
  FillLists();
  ShowStored();
  return true;
}

void ConnectionPage::OnCommand(int id, platform::CommandEvent event) {
  if (event != platform::CommandEvent::kClick) {
    return;
  }
  if (id == resources::kDefaultsButtonId) {
    OnDefault();
  } else if (id == framework::kIdOk) {
    OnOK();
  }
}

void ConnectionPage::OnOK() {
  const platform::DialogWindow& window = GetWindow();
  for (const ListSetting& setting : kListSettings) {
    const std::u16string text = window.GetText(setting.id);
    Write(setting.valueName, storage::CutText(text, setting.mostUnits), setting.byteCount);
  }
  for (const CheckSetting& setting : kCheckSettings) {
    Write(setting.valueName, window.IsChecked(setting.id) ? kChecked : kUnchecked, kCheckBytes);
  }
  m_key.reset();
  CPropertyPage::OnOK();
}

void ConnectionPage::OpenKey() {
  platform::OpenedKey opened = m_registry.OpenKey(storage::kDialerKey);
  if (!opened) {
    opened = m_registry.CreateKey(storage::kDialerKey);
  }
  m_key = opened ? std::move(*opened) : nullptr;
}

void ConnectionPage::FillLists() {
  platform::DialogWindow& window = GetWindow();
  for (const ListSetting& setting : kListSettings) {
    // The sheet can show the page a second time.
    window.ResetItems(setting.id);
    for (const std::u16string_view choice : setting.choices) {
      window.AddItem(setting.id, choice);
    }
  }
  for (const std::u16string& port : SortedPorts(m_registry)) {
    window.AddItem(resources::kPortComboId, port);
  }
}

void ConnectionPage::ShowStored() {
  for (const ListSetting& setting : kListSettings) {
    const std::u16string stored = ReadStored(setting.valueName);
    // An empty value counts as none.
    ShowText(setting.id, stored.empty() ? setting.defaultText : stored);
  }
  for (const CheckSetting& setting : kCheckSettings) {
    GetWindow().SetCheck(setting.id, ReadStored(setting.valueName) == kChecked);
  }
}

std::u16string ConnectionPage::ReadStored(std::u16string_view valueName) const {
  return text::ReadText(m_key.get(), valueName);
}

/// A text that is not in the list is shown in the field all the same, and is stored again as it is:
/// a port that is unplugged at the moment, or a rate that somebody typed.
void ConnectionPage::ShowText(int id, std::u16string_view text) {
  platform::DialogWindow& window = GetWindow();
  window.SetSelection(id, std::nullopt);
  window.SetText(id, text);
  for (int i = 0; i < window.GetItemCount(id); ++i) {
    if (window.GetItemText(id, i) == text) {
      window.SetSelection(id, i);
      return;
    }
  }
  // A list without a field shows its items only.
  if (window.GetText(id) != text) {
    window.SetSelection(id, window.AddItem(id, text));
  }
}

/// Leaves the port and the box about hanging up as they are, deliberately: both are about the phone
/// and not about its line.
void ConnectionPage::OnDefault() {
  for (const ListSetting& setting : kListSettings) {
    if (setting.id != resources::kPortComboId) {
      ShowText(setting.id, setting.defaultText);
    }
  }
  GetWindow().SetCheck(resources::kHeadsetCheckId, false);
}

void ConnectionPage::Write(std::u16string_view valueName, std::u16string_view text,
                           std::size_t byteCount) {
  if (!m_key) {
    return;
  }
  // Each setting stands for itself, and the dialer has a default for each.
  const auto written =
      m_key->Set(valueName, platform::RegistryType::kString, ToSettingValue(text, byteCount));
  // Somebody has kept the store for as long as a write waits. If each of the others waited as long,
  // the window would stand still after the user's OK.
  if (!written && written.error() == platform::RegistryError::kBusy) {
    m_key.reset();
  }
}

bool RunConnectionSheet(platform::Ui& ui, platform::Registry& registry,
                        std::u16string_view caption) {
  ConnectionPage page(registry, ui);
  framework::CPropertySheet sheet(caption, ui);
  sheet.AddPage(page);
  return sheet.DoModal();
}

}  // namespace connection
