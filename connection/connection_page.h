#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "framework/dialog.h"
#include "platform/registry.h"
#include "platform/ui.h"

namespace connection {

// What the lists of the page offer, in their order, and what they show if nothing was stored. The
// dialer knows these words.

inline constexpr std::array<std::u16string_view, 15> kBaudRates{
    u"256000", u"128000", u"115200", u"57600", u"56000", u"38400", u"19200", u"14400",
    u"9600",   u"4800",   u"2400",   u"1200",  u"600",   u"300",   u"110"};
inline constexpr std::array<std::u16string_view, 5> kDataBits{u"4", u"5", u"6", u"7", u"8"};
inline constexpr std::array<std::u16string_view, 3> kStopBits{u"1", u"1.5", u"2"};
inline constexpr std::array<std::u16string_view, 3> kFlowControls{u"hardware", u"software",
                                                                  u"none"};

inline constexpr std::u16string_view kDefaultBaudRate = u"9600";
inline constexpr std::u16string_view kDefaultDataBits = u"8";
inline constexpr std::u16string_view kDefaultStopBits = u"1";
inline constexpr std::u16string_view kDefaultFlowControl = u"none";
inline constexpr std::u16string_view kDefaultPort = u"COM2:";

/// How a check box is stored.
inline constexpr std::u16string_view kChecked = u"1";
inline constexpr std::u16string_view kUnchecked = u"0";

/// Returns the bytes of a stored text: UTF-16, lowest byte first, always `byteCount` of them. Zeros
/// follow a shorter text. A text that fills all bytes, or more, is cut and has no terminator,
/// deliberately: the dialer reads fields of fixed lengths.
[[nodiscard]] std::vector<std::byte> ToSettingValue(std::u16string_view text,
                                                    std::size_t byteCount);

/// The page with the serial port of the dialer and the settings of its line. It is no part of the
/// applet's sheet. Lives on the user-interface thread.
class ConnectionPage final : public framework::CPropertyPage {
 public:
  /// `registry` must outlive the page. Its active drivers are the ports that the page offers.
  ConnectionPage(platform::Registry& registry, platform::Ui& ui);

  [[nodiscard]] const framework::RuntimeClass& GetRuntimeClass() const override;

  /// Fills the lists and shows what is stored, or the defaults. Opens the dialer's key, and makes
  /// it if it is missing. The key stays open until OnOK.
  bool OnInitDialog() override;
  void OnCommand(int id, platform::CommandEvent event) override;

  /// Stores what the page shows, and closes the key. A setting that cannot be written stays as it
  /// was, without a message. If one finds the store busy, all that follow stay as they were too.
  void OnOK() override;

 private:
  void OpenKey();
  void FillLists();
  void ShowStored();
  [[nodiscard]] std::u16string ReadStored(std::u16string_view valueName) const;
  void ShowText(int id, std::u16string_view text);
  void OnDefault();
  void Write(std::u16string_view valueName, std::u16string_view text, std::size_t byteCount);

  platform::Registry& m_registry;
  std::unique_ptr<platform::RegistryKey> m_key;  ///< Null if it cannot be opened.
};

/// Shows a sheet with only the connection settings until the user closes it. Returns whether the
/// user closed it by OK, which stores them.
bool RunConnectionSheet(platform::Ui& ui, platform::Registry& registry,
                        std::u16string_view caption);

}  // namespace connection
