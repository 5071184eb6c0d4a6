#include "connection/setting_value.h"

#include "storage/stored_text.h"

namespace connection {

std::vector<std::byte> ToSettingValue(std::u16string_view text, std::size_t byteCount) {
  std::vector<std::byte> bytes = storage::ToUtf16Bytes(
      storage::CutText(storage::UpToZero(text), byteCount / sizeof(char16_t)));
  bytes.resize(byteCount);
  return bytes;
}

}  // namespace connection
