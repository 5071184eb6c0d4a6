#pragma once

#include <memory>
#include <string_view>

#include "framework/dialog.h"
#include "platform/registry.h"

namespace connection {

/// The serial port of the companion dialer and the settings of its line. The page is no part of the
/// applet's sheet. Lives on the user-interface thread.
class ConnectionPage final : public framework::CPropertyPage {
 public:
  /// `registry` outlives the page. Its active drivers are the ports that the page offers.
  ConnectionPage(platform::Registry& registry, platform::Ui& ui);

  [[nodiscard]] const framework::RuntimeClass& GetRuntimeClass() const override;

  /// Fills the lists and shows what is stored, or the defaults. Opens the dialer's key, which is
  /// made where it is missing and stays open until OnOK.
  bool OnInitDialog() override;
  void OnCommand(int id, platform::CommandEvent event) override;

  /// Stores what the page shows, and closes the key. A setting that cannot be written stays as it
  /// was, and nothing is said about it; so do all that follow one that found the store busy.
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
  std::unique_ptr<platform::RegistryKey> m_key;  ///< Null where it cannot be opened.
};

}  // namespace connection
