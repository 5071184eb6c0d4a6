#pragma once

#include "platform/desktop_books.h"

/// The one function that voxtrel-ebook.so exports. A program loads that library when the desktop's
/// address books are first asked for, since it brings dozens of other libraries with it. Once it is
/// loaded it stays for good.
extern "C" __attribute__((visibility("default"))) void VoxtrelReadDesktopBooks(
    std::uint32_t milliseconds, platform::DesktopBooks& books);

namespace ebook {

inline constexpr const char* kLibraryName = "voxtrel-ebook.so";
inline constexpr const char* kFunctionName = "VoxtrelReadDesktopBooks";

}  // namespace ebook
