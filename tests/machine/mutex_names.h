#pragma once

#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>

#include "platform/threads.h"

namespace machine {

/// The names of the mutexes that have a holder. May be used from any thread.
class MutexNames {
 public:
  [[nodiscard]] static platform::CreatedMutex Create(const std::shared_ptr<MutexNames>& names,
                                                     std::u16string_view name);

 private:
  class Holder;

  std::mutex m_mutex;
  std::set<std::u16string, std::less<>> m_held;
};

}  // namespace machine
