#include "backends/posix/doorbell.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <system_error>

namespace posix {

using platform::Failure;

namespace {

platform::Result<sockaddr_un, DoorbellError> AddressOf(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.empty() || path.size() >= sizeof(address.sun_path)) {
    return Failure(DoorbellError::kBadPath);
  }
  std::ranges::copy(path, static_cast<char*>(address.sun_path));
  return address;
}

/// The system's calls take every kind of address by one type.
const sockaddr* Generic(const sockaddr_un& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

/// Datagrams: a ring is one message, whole or not at all, and needs no connection that somebody
/// would have to accept. Neither side ever waits for the other.
Descriptor MakeSocket() {
  return Descriptor(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

/// Sixteen digits, different for different folders (FNV-1a). A path itself would be too long for
/// the name of a socket.
std::string DigitsOf(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325U;
  for (const char byte : text) {
    hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3U;
  }
  std::string digits;
  for (unsigned shift = 64; shift > 0; shift -= 4) {
    digits += "0123456789abcdef"[(hash >> (shift - 4)) & 0xFU];
  }
  return digits;
}

}  // namespace

Doorbell::~Doorbell() {
  // Only by the one who hung it. A socket whose process was killed stays, and Hang replaces it.
  if (!m_path.empty()) {
    ::unlink(m_path.c_str());
  }
}

platform::Result<void, DoorbellError> Doorbell::Hang(const std::string& path) {
  const auto address = AddressOf(path);
  if (!address) {
    return Failure(address.error());
  }
  Descriptor bell = MakeSocket();
  if (!bell.IsOpen()) {
    return Failure(DoorbellError::kFailed);
  }
  // Left by a process that was killed: the caller holds the mutex, so nobody else answers there.
  ::unlink(path.c_str());
  if (::bind(bell.Get(), Generic(*address), sizeof(*address)) != 0) {
    return Failure(DoorbellError::kFailed);
  }
  // Only the user's own programs may ring.
  static_cast<void>(::chmod(path.c_str(), S_IRUSR | S_IWUSR));
  m_socket = std::move(bell);
  m_path = path;
  return {};
}

std::optional<std::string> Doorbell::Answer() const {
  std::array<char, kMaxMessage> message{};
  const ssize_t length = ::recv(m_socket.Get(), message.data(), message.size(), 0);
  return length < 0 ? std::nullopt
                    : std::optional(std::string(message.data(), static_cast<std::size_t>(length)));
}

platform::Result<void, DoorbellError> Doorbell::Ring(const std::string& path,
                                                     std::string_view message) {
  const auto address = AddressOf(path);
  if (!address) {
    return Failure(address.error());
  }
  if (message.size() > kMaxMessage) {
    return Failure(DoorbellError::kMessageTooLong);
  }
  const Descriptor hand = MakeSocket();
  if (!hand.IsOpen()) {
    return Failure(DoorbellError::kFailed);
  }
  if (::sendto(hand.Get(), message.data(), message.size(), MSG_NOSIGNAL, Generic(*address),
               sizeof(*address)) < 0) {
    return Failure(DoorbellError::kNoBell);
  }
  return {};
}

std::string Doorbell::PathFor(const std::string& runtimeFolder, const std::string& root) {
  std::error_code error;
  std::filesystem::path real = std::filesystem::weakly_canonical(root, error);
  if (!real.has_filename()) {
    real = real.parent_path();  // One folder by either name, with or without a "/" at the end.
  }
  const std::string name = error ? root : real.native();
  // The desktop's folder for sockets goes with the session. Without one the root holds the bell.
  const std::string& folder = runtimeFolder.starts_with('/') ? runtimeFolder : name;
  return folder + "/voxtrel-" + DigitsOf(name) + ".socket";
}

}  // namespace posix
