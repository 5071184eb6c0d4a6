#include "tests/e2e/unix_socket.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <string>

namespace e2e {
namespace {

constexpr int kBacklog = 8;

int MakeSocket() { return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0); }

sockaddr_un MakeAddress(const std::filesystem::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string text = path.string();
  std::copy_n(text.begin(), std::min(text.size(), sizeof(address.sun_path) - 1), address.sun_path);
  return address;
}

}  // namespace

Descriptor::~Descriptor() {
  if (IsOpen()) close(m_number);
}

bool CanConnect(const std::filesystem::path& path) {
  const Descriptor client(MakeSocket());
  const sockaddr_un address = MakeAddress(path);
  return connect(client.Number(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) ==
         0;
}

SilentListener::SilentListener(const std::filesystem::path& path) : m_socket(MakeSocket()) {
  const sockaddr_un address = MakeAddress(path);
  m_isListening =
      bind(m_socket.Number(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 &&
      listen(m_socket.Number(), kBacklog) == 0;
}

}  // namespace e2e
