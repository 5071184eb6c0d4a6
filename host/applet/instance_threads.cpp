#include "host/applet/instance_threads.h"

namespace applet {

platform::CreatedMutex InstanceThreads::CreateNamedMutex(std::u16string_view name) {
  platform::CreatedMutex created = m_inner.CreateNamedMutex(name);
  if (created.existed) {
    m_options.onRefused(posix::Doorbell::Ring(m_options.bellPath, m_options.message));
  } else if (created.mutex && m_bell.Hang(m_options.bellPath)) {
    m_options.onHung(m_bell);
  }
  return created;
}

}  // namespace applet
