#pragma once

#include <string_view>

namespace storage {

// What reading and writing a registry file have in common.
inline constexpr char16_t kByteOrderMark = 0xFEFF;
inline constexpr std::u16string_view kRegistryFileHeader = u"Windows Registry Editor Version 5.00";
inline constexpr std::u16string_view kAnsiRegistryFileHeader = u"REGEDIT4";
inline constexpr std::u16string_view kRootName = u"HKEY_LOCAL_MACHINE";

/// Before the byte count of a value of four bytes that is a number, and before bytes.
inline constexpr std::u16string_view kDwordPrefix = u"dword:";
inline constexpr std::u16string_view kHexPrefix = u"hex";

}  // namespace storage
