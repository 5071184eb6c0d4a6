#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// What a control panel and an applet agree on: the entry function, its messages and the record by
/// which an applet tells its name and icon. The values and the layout are those of the handheld.
namespace applet {

enum class CplMessage : std::uint32_t {
  kInit = 1,        ///< Once, first; 0 where the applet cannot run.
  kGetCount = 2,    ///< How many applets the library holds.
  kInquire = 3,     ///< Not answered; kNewInquire takes its place.
  kSelect = 4,      ///< Not answered.
  kDblClk = 5,      ///< Open the applet; returns when its window is closed.
  kStop = 6,        ///< The panel is done with one applet; once for each.
  kExit = 7,        ///< Last, before the library is released.
  kNewInquire = 8,  ///< Fill the NewCplInfo at lParam2.
};

/// A handle of 32 bits, known to the whole process, of something that lives outside the record.
///
/// Here an icon is the number of an open file descriptor that holds a picture in SVG, read-only and
/// of fixed length. 0 is no icon. The applet owns it: it is closed when the applet's window was
/// shown and closed once, or by kStop for applet 0. A panel that keeps the picture reads it (from
/// offset 0, with pread or through a mapping, since the file offset is shared) before it sends
/// either, and never closes the descriptor.
using IconHandle = std::uint32_t;

inline constexpr IconHandle kNoIcon = 0;

/// NEWCPLINFO. Texts are UTF-16 in the byte order of the machine and end with a NUL.
struct NewCplInfo {
  std::uint32_t dwSize = 0;  ///< kNewCplInfoSize.
  std::uint32_t dwFlags = 0;
  std::uint32_t dwHelpContext = 0;
  std::int32_t lData = 0;  ///< The applet's own; handed back as lParam2 of kDblClk and kStop.
  IconHandle hIcon = kNoIcon;
  std::array<char16_t, 32> szName{};
  std::array<char16_t, 64> szInfo{};
  std::array<char16_t, 128> szHelpFile{};
};

inline constexpr std::size_t kNewCplInfoSize = 468;

static_assert(sizeof(NewCplInfo) == kNewCplInfoSize);
static_assert(offsetof(NewCplInfo, dwSize) == 0);
static_assert(offsetof(NewCplInfo, dwFlags) == 4);
static_assert(offsetof(NewCplInfo, dwHelpContext) == 8);
static_assert(offsetof(NewCplInfo, lData) == 12);
static_assert(offsetof(NewCplInfo, hIcon) == 16);
static_assert(offsetof(NewCplInfo, szName) == 20);
static_assert(offsetof(NewCplInfo, szInfo) == 84);
static_assert(offsetof(NewCplInfo, szHelpFile) == 212);

/// The one function that an applet's library exports, with C linkage. `parentWindow` is opaque and
/// may be null. lParam1 is the applet's number, counted from 0, of every message that is about one
/// applet; lParam2 is the address of the record for kNewInquire and `lData` for kDblClk and kStop.
/// All calls come on one thread, which is the user-interface thread of the process.
using CplAppletFunction = std::int32_t (*)(void* parentWindow, std::uint32_t message,
                                           std::intptr_t lParam1, std::intptr_t lParam2);

inline constexpr const char* kCplAppletName = "CPlApplet";

}  // namespace applet
