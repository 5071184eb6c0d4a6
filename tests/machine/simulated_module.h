#pragma once

#include <map>
#include <set>

#include "platform/module.h"

namespace machine {

/// The resources of a library without pictures: every number has an icon unless there are to be
/// none. Belongs to one thread.
class SimulatedModule final : public platform::Module {
 public:
  [[nodiscard]] platform::IconHandle LoadIcon(int id) override;
  void DestroyIcon(platform::IconHandle icon) override;
  int LoadString(int id, std::span<char16_t> buffer) override;

  /// From now on no icon can be loaded.
  void RunOutOfIcons() { m_hasIcons = false; }

  /// Numbers of the icons that are loaded and not yet destroyed.
  [[nodiscard]] std::set<int> GetIcons() const;

 private:
  std::map<int, platform::IconHandle> m_icons;
  platform::IconHandle m_lastHandle = platform::kNoIcon;
  bool m_hasIcons = true;
};

}  // namespace machine
