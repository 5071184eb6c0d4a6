#include "tests/machine/simulated_module.h"

#include <utility>

#include "platform/module.h"

namespace machine {

platform::IconHandle SimulatedModule::LoadIcon(int id) {
  if (!m_hasIcons) {
    return platform::kNoIcon;
  }
  const auto [icon, isNew] = m_icons.try_emplace(id, platform::kNoIcon);
  if (isNew) {
    icon->second = ++m_lastHandle;
  }
  return icon->second;
}

void SimulatedModule::DestroyIcon(platform::IconHandle icon) {
  std::erase_if(m_icons, [icon](const auto& loaded) { return loaded.second == icon; });
}

int SimulatedModule::LoadString(int id, std::span<char16_t> buffer) {
  return platform::CopyModuleString(id, buffer);
}

std::set<int> SimulatedModule::GetIcons() const {
  std::set<int> ids;
  for (const auto& icon : m_icons) {
    ids.insert(icon.first);
  }
  return ids;
}

}  // namespace machine
