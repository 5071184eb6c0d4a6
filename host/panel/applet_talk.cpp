#include "host/panel/applet_talk.h"

#include <dlfcn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include "backends/qt/strings.h"
#include "resources/desktop_strings.h"

// The panel's side of the contract with applets (applet/control_panel.h): load, begin, ask, open,
// end. Nothing that a library says is believed: counts, sizes and descriptors are all checked.
namespace panel {
namespace {

using applet::CplMessage;

/// No library holds more applets than this. A greater count makes no sense.
constexpr std::int32_t kMostApplets = 64;
constexpr std::size_t kLongestIcon = std::size_t{1} << 20U;  // bytes

QString LatestProblem() {
  // Each process of the panel that loads an applet has one thread at that time.
  const char* text = ::dlerror();  // NOLINT(concurrency-mt-unsafe)
  return text == nullptr ? QStringLiteral("the reason is not known") : QString::fromLocal8Bit(text);
}

auto CannotBeLoaded(const QString& reason) {
  return platform::Failure(qt::Say(resources::kCannotBeLoaded).arg(reason));
}

/// Returns the picture of an icon, whose handle is the number of a descriptor on this system.
/// Returns "" if there is none. The offset of the file is not touched, since others share it.
std::string ReadIcon(std::uint32_t handle) {
  const int descriptor = static_cast<int>(handle);
  struct stat status {};
  // The number comes from a library that anybody may have written. It can be any descriptor of this
  // process, or none.
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

platform::Result<AppletLibrary, QString> AppletLibrary::Load(const std::string& path) {
  // Any other path is a file of the current folder, or one of the system's folders of libraries.
  if (!path.starts_with('/')) {
    return CannotBeLoaded(qt::Say(resources::kNoFullPath));
  }
  // All of its symbols are found now, or the library counts as one that cannot be loaded.
  Handle handle(::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
  if (!handle) {
    return CannotBeLoaded(LatestProblem());
  }
  const auto function =
      reinterpret_cast<applet::CplAppletFunction>(::dlsym(handle.get(), applet::kCplAppletName));
  if (function == nullptr) {
    return platform::Failure(
        qt::Say(resources::kIsNoApplet).arg(QLatin1String(applet::kCplAppletName)));
  }
  return AppletLibrary(std::move(handle), function);
}

AppletLibrary::AppletLibrary(Handle handle, applet::CplAppletFunction function)
    : m_handle(std::move(handle)), m_function(function) {}

std::int32_t AppletLibrary::Send(applet::CplMessage message, std::intptr_t lParam1,
                                 std::intptr_t lParam2) const {
  return m_function(nullptr, static_cast<std::uint32_t>(message), lParam1, lParam2);
}

void AppletLibrary::Release::operator()(void* library) const {
  static_cast<void>(::dlclose(library));
}

platform::Result<std::unique_ptr<AppletTalk>, QString> AppletTalk::Begin(
    const AppletLibrary& library) {
  if (library.Send(CplMessage::kInit) == 0) {
    // A library that did not begin gets no message about an end.
    return platform::Failure(qt::Say(resources::kDoesNotWantToStart));
  }
  std::unique_ptr<AppletTalk> talk(new AppletTalk(library));  // From here on there is an end.
  const std::int32_t count = library.Send(CplMessage::kGetCount);
  if (count < 1 || count > kMostApplets) {
    return platform::Failure(qt::Say(resources::kSaysThatItHolds).arg(count));
  }
  talk->m_answers.reserve(static_cast<std::size_t>(count));
  for (int number = 0; number < count; ++number) {
    talk->m_answers.push_back(talk->Ask(number));
  }
  return talk;
}

AppletTalk::~AppletTalk() {
  for (std::size_t number = 0; number < m_answers.size(); ++number) {
    static_cast<void>(m_library.Send(CplMessage::kStop, static_cast<std::intptr_t>(number),
                                     m_answers[number].data));
  }
  // The library is released after this, and not before: the talk is gone before the library that it
  // refers to.
  static_cast<void>(m_library.Send(CplMessage::kExit));
}

void AppletTalk::Open(int number) const {
  static_cast<void>(m_library.Send(CplMessage::kDblClk, number,
                                   m_answers[static_cast<std::size_t>(number)].data));
}

AppletAnswer AppletTalk::Ask(int number) const {
  // Zeros, so that a field that the applet leaves out is empty.
  applet::NewCplInfo info;
  static_cast<void>(
      m_library.Send(CplMessage::kNewInquire, number, reinterpret_cast<std::intptr_t>(&info)));
  if (info.dwSize != sizeof(info)) {
    return {};  // The applet filled another record than this one, or none.
  }
  return {ReadName(info), ReadIcon(info.hIcon), info.lData};
}

}  // namespace panel
