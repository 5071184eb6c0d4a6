#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <span>
#include <utility>

#include "backends/posix/system_calls.h"
#include "platform/module.h"

namespace posix {

/// The resources of a library on Linux. The handle of an icon is the number of a file descriptor:
/// known to the whole process without help from this library, and good for reading the picture. It
/// is a file in memory that nobody can change any more. Belongs to one thread.
class PosixModule final : public platform::Module {
 public:
  /// The picture of an icon by its number, empty for none.
  using GetPicture = std::function<std::span<const std::byte>(int id)>;

  explicit PosixModule(GetPicture getPicture) : m_getPicture(std::move(getPicture)) {}

  [[nodiscard]] platform::IconHandle LoadIcon(int id) override;
  void DestroyIcon(platform::IconHandle icon) override;
  int LoadString(int id, std::span<char16_t> buffer) override;

 private:
  const GetPicture m_getPicture;
  std::map<int, Descriptor> m_icons;
};

}  // namespace posix
