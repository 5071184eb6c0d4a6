#include "host/dial/commands.h"

#include <fmt/format.h>

#include <string>
#include <string_view>
#include <utility>

#include "backends/text/utf.h"
#include "host/session/tag_reading.h"
#include "tags/contact_reading.h"

namespace dial {
namespace {

using dialer::PassedOver;
using dialer::PassedOverTag;

/// What follows the names of the tags.
std::string_view WhyNotUsed(PassedOver reason) {
  switch (reason) {
    case PassedOver::kMissing:
      return "not used: a file is missing, as while a tag is deleted; if that stays so, "
             "`voxtrel check` says what to do";
    case PassedOver::kInUse:
      return "not used: the applet is writing it at this moment";
    case PassedOver::kDamaged:
      return "not used: a file is damaged, or is being written; if that stays so, `voxtrel check` "
             "says what to do";
    case PassedOver::kTooLong:
      return "not used: it is longer than a name";
    case PassedOver::kNotRead:
      return "not used: it cannot be read";
    case PassedOver::kOtherMathematics:
      return "not used: another version of Voxtrel computed its template; `voxtrel reinit` "
             "computes "
             "it again";
  }
  return {};
}

/// A store of another version would give a hundred lines, so each reason has one.
void WarnOfPassedOver(session::Session& session, const std::vector<PassedOverTag>& tags) {
  constexpr std::size_t kMostNames = 3;
  constexpr auto kReasons = static_cast<int>(PassedOver::kOtherMathematics) + 1;
  for (int reason = 0; reason < kReasons; ++reason) {
    std::string names;
    std::size_t count = 0;
    for (const PassedOverTag& tag : tags) {
      if (static_cast<int>(tag.reason) == reason && ++count <= kMostNames) {
        names += (count == 1 ? "" : ", ") + text::ToUtf8(tag.name);
      }
    }
    if (count > kMostNames) {
      names += fmt::format(" and {} more", count - kMostNames);
    }
    if (count > 0) {
      session.Warn(
          fmt::format("voice tag {}: {}", names, WhyNotUsed(static_cast<PassedOver>(reason))));
    }
  }
}

}  // namespace

std::optional<dialer::TaughtTags> ReadTaught(session::Session& session) {
  auto taught = dialer::ReadTaughtTags(session.GetFiles(), session.GetRegistry());
  if (!taught) {
    session.Fail(session.ExplainStore(taught.error()));
    return std::nullopt;
  }
  WarnOfPassedOver(session, taught->passedOver);
  if (taught->tags.empty() && !taught->passedOver.empty()) {
    session.Fail("none of the voice tags can be used");
    return std::nullopt;
  }
  return std::move(*taught);
}

platform::ContactsStore* OpenContacts(session::Session& session) {
  const platform::Platform platform = session.GetPlatform();
  if (tags::OpenContacts(platform.contacts, platform.clock)) {
    return &platform.contacts;
  }
  session::WarnOfContacts(session);
  return nullptr;
}

}  // namespace dial
