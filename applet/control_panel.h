#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/module.h"

/// What a control panel and an applet agree on: the entry function, its messages and the record by
/// which an applet gives its name and icon.
namespace applet {

/// The values are those of the handheld.
enum class CplMessage : std::uint32_t {
  kInit = 1,        ///< Once, first. The answer is 0 if the applet cannot run.
  kGetCount = 2,    ///< How many applets the library holds.
  kInquire = 3,     ///< Not answered; kNewInquire takes its place.
  kSelect = 4,      ///< Not answered.
  kDblClk = 5,      ///< Open the applet. Returns when its window is closed.
  kStop = 6,        ///< The panel is done with one applet. Once for each.
  kExit = 7,        ///< Last, before the library is released.
  kNewInquire = 8,  ///< Fill the record at lParam2.
};

/// NEWCPLINFO. Its fields are the same on every system, and their widths are the system's: `Data`
/// is a signed number and `Icon` a handle. Texts are UTF-16 in the byte order of the machine and
/// end with a NUL.
template <typename Data, typename Icon>
struct BasicNewCplInfo {
  std::uint32_t dwSize = 0;  ///< Of the record, in bytes.
  std::uint32_t dwFlags = 0;
  std::uint32_t dwHelpContext = 0;
  Data lData = 0;  ///< The applet's own; handed back as lParam2 of kDblClk and kStop.
  Icon hIcon = 0;  ///< 0 is no icon.
  std::array<char16_t, 32> szName{};
  std::array<char16_t, 64> szInfo{};
  std::array<char16_t, 128> szHelpFile{};
};

/// The record of the handheld, and of control panels on Linux. There an icon is what
/// posix::PosixModule says of it. The applet owns the icon: it is gone when the applet's window was
/// shown and closed once, or after kStop for applet 0. A panel that keeps the picture reads it
/// before it sends either.
using NewCplInfo = BasicNewCplInfo<std::int32_t, std::uint32_t>;

static_assert(sizeof(NewCplInfo) == 468);
static_assert(offsetof(NewCplInfo, dwSize) == 0);
static_assert(offsetof(NewCplInfo, dwFlags) == 4);
static_assert(offsetof(NewCplInfo, dwHelpContext) == 8);
static_assert(offsetof(NewCplInfo, lData) == 12);
static_assert(offsetof(NewCplInfo, hIcon) == 16);
static_assert(offsetof(NewCplInfo, szName) == 20);
static_assert(offsetof(NewCplInfo, szInfo) == 84);
static_assert(offsetof(NewCplInfo, szHelpFile) == 212);

/// What an applet says of itself.
struct AppletInfo {
  int data = 0;
  platform::IconHandle icon = platform::kNoIcon;
  std::u16string_view name;  ///< Shorter than the record's field.
};

/// Writes `info` into the record at `address`. The flags, the help and the comment are the caller's
/// and stay as they are.
using RecordWriter = void (*)(std::intptr_t address, const AppletInfo& info);

/// The writer for one system's record.
template <typename Record>
void WriteRecord(std::intptr_t address, const AppletInfo& info) {
  // A message carries its record as a number.
  auto& record = *reinterpret_cast<Record*>(address);
  record.dwSize = sizeof(Record);
  record.lData = static_cast<decltype(record.lData)>(info.data);
  record.hIcon = static_cast<decltype(record.hIcon)>(info.icon);
  *std::ranges::copy(info.name, record.szName.begin()).out = u'\0';
}

/// The one function that an applet's library exports, with C linkage. `parentWindow` is opaque and
/// may be null. lParam1 is the applet's number, counted from 0, of every message that is about one
/// applet; lParam2 is the address of the record for kNewInquire and `lData` for kDblClk and kStop.
/// All calls come on one thread, which is the user-interface thread of the process.
using CplAppletFunction = std::int32_t (*)(void* parentWindow, std::uint32_t message,
                                           std::intptr_t lParam1, std::intptr_t lParam2);

inline constexpr const char* kCplAppletName = "CPlApplet";

}  // namespace applet
