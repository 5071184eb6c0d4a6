#include "connection/connection_sheet.h"

#include "connection/connection_page.h"
#include "framework/dialog.h"

namespace connection {

bool RunConnectionSheet(platform::Ui& ui, platform::Registry& registry,
                        std::u16string_view caption) {
  ConnectionPage page(registry, ui);
  framework::CPropertySheet sheet(caption, ui);
  sheet.AddPage(page);
  return sheet.DoModal();
}

}  // namespace connection
