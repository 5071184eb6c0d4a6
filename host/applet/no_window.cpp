#include "host/applet/no_window.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "backends/text/printable.h"
#include "backends/text/utf.h"
#include "framework/dialog.h"

namespace applet {

void TellOnStandardError(std::u16string_view text) {
  std::string line = "voxtrel.cpl: " + text::ToUtf8(text);
  std::ranges::replace(line, '\n', ' ');
  line += '\n';
  // A message that standard error does not take changes nothing.
  static_cast<void>(std::fputs(text::Printable(line).c_str(), stderr));
}

platform::MessageAnswer NoWindow::ShowMessage(const platform::MessageBox& box) {
  TellOnStandardError(box.text);
  // Nobody has agreed to anything.
  return platform::Has(box.style, platform::MessageStyle::kOkCancel)
             ? platform::MessageAnswer::kCancel
             : platform::MessageAnswer::kOk;
}

int NoWindow::RunDialog(const resources::DialogTemplate& /*dialog*/,
                        platform::DialogHandler& /*handler*/) {
  return framework::kIdCancel;
}

bool NoWindow::RunSheet(std::u16string_view /*caption*/,
                        std::span<const platform::SheetPage> /*pages*/,
                        platform::SheetHandler& /*handler*/) {
  TellOnStandardError(
      u"There is no display to open a window on. Without one, the command line does the same work: "
      u"voxtrel --help");
  return false;
}

}  // namespace applet
