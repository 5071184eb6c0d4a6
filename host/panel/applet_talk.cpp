#include "host/panel/applet_talk.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>

#include "host/panel/message.h"
#include "resources/desktop_strings.h"

namespace panel {
namespace {

using applet::CplMessage;

/// More applets than any library holds; beyond it the count makes no sense.
constexpr std::int32_t kMostApplets = 64;
constexpr std::size_t kLongestIcon = std::size_t{1} << 20U;  // bytes

/// Returns the picture of an icon, whose handle is the number of a descriptor on this system.
/// Returns "" if there is none. The offset of the file is not touched, since others share it.
std::string ReadIcon(std::uint32_t handle) {
  const int descriptor = static_cast<int>(handle);
  struct stat status {};
  if (handle == platform::kNoIcon || descriptor < 0 || ::fstat(descriptor, &status) != 0 ||
      !S_ISREG(status.st_mode) || status.st_size <= 0 ||
      static_cast<std::size_t>(status.st_size) > kLongestIcon) {
    return {};
  }
  std::string icon(static_cast<std::size_t>(status.st_size), '\0');
  const ssize_t count = ::pread(descriptor, icon.data(), icon.size(), 0);
  icon.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  return icon;
}

/// A name that fills its field has no NUL.
std::u16string ReadName(const applet::NewCplInfo& info) {
  const auto* const end = std::ranges::find(info.szName, u'\0');
  return {info.szName.begin(), end};
}

}  // namespace

AppletTalk::AppletTalk(const AppletLibrary& library) : m_library(library) {
  m_hasBegun = m_library.Send(CplMessage::kInit) != 0;
  if (!m_hasBegun) {
    m_problem = Message(resources::kDoesNotWantToStart).toStdString();
    return;
  }
  const std::int32_t count = m_library.Send(CplMessage::kGetCount);
  if (count < 1 || count > kMostApplets) {
    m_problem = Message(resources::kSaysThatItHolds).arg(count).toStdString();
    return;
  }
  m_answers.reserve(static_cast<std::size_t>(count));
  for (int number = 0; number < count; ++number) {
    m_answers.push_back(Ask(number));
  }
}

AppletTalk::~AppletTalk() {
  if (!m_hasBegun) {
    return;  // A library that did not begin is not told of an end.
  }
  for (std::size_t number = 0; number < m_answers.size(); ++number) {
    static_cast<void>(m_library.Send(CplMessage::kStop, static_cast<std::intptr_t>(number),
                                     m_answers[number].data));
  }
  static_cast<void>(m_library.Send(CplMessage::kExit));
}

void AppletTalk::Open(int number) const {
  static_cast<void>(m_library.Send(CplMessage::kDblClk, number,
                                   m_answers[static_cast<std::size_t>(number)].data));
}

AppletAnswer AppletTalk::Ask(int number) const {
  applet::NewCplInfo info;
  static_cast<void>(
      m_library.Send(CplMessage::kNewInquire, number, reinterpret_cast<std::intptr_t>(&info)));
  if (info.dwSize != sizeof(info)) {
    return {};  // Another record than this, or none.
  }
  return {ReadName(info), ReadIcon(info.hIcon), info.lData};
}

}  // namespace panel
