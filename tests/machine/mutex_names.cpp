#include "tests/machine/mutex_names.h"

#include <utility>

namespace machine {

class MutexNames::Holder final : public platform::NamedMutex {
 public:
  Holder(std::shared_ptr<MutexNames> names, std::u16string_view name)
      : m_names(std::move(names)), m_name(name) {}
  ~Holder() override {
    const std::lock_guard lock(m_names->m_mutex);
    m_names->m_held.erase(m_name);
  }

 private:
  const std::shared_ptr<MutexNames> m_names;
  const std::u16string m_name;
};

platform::CreatedMutex MutexNames::Create(const std::shared_ptr<MutexNames>& names,
                                          std::u16string_view name) {
  const std::lock_guard lock(names->m_mutex);
  if (!names->m_held.emplace(name).second) {
    return {nullptr, true};
  }
  return {std::make_unique<Holder>(names, name), false};
}

}  // namespace machine
