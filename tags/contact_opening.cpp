#include "tags/contact_opening.h"

#include <cstdint>

namespace tags {
namespace {

constexpr int kAttempts = 3;
constexpr std::uint32_t kPauseMilliseconds = 200;

bool Connect(platform::ContactsStore& store, platform::Clock& clock) {
  for (int attempt = 1; !store.Connect(); ++attempt) {
    if (attempt == kAttempts) {
      return false;
    }
    clock.Sleep(kPauseMilliseconds);
  }
  return true;
}

}  // namespace

std::optional<ContactMessage> OpenContacts(platform::ContactsStore& store, platform::Clock& clock) {
  if (!store.Initialize()) {
    return ContactMessage{ContactFailure::kServiceNotReady};
  }
  if (!Connect(store, clock)) {
    return ContactMessage{ContactFailure::kNotConnected};
  }
  if (!store.Logon()) {
    return ContactMessage{ContactFailure::kNotLoggedOn};
  }
  return std::nullopt;
}

}  // namespace tags
