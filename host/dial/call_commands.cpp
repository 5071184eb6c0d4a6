#include "host/dial/commands.h"

namespace dial {

void HearAndCall(cli::Session& session, const cli::DialOptions& /*options*/) {
  session.Fail("names cannot be heard yet");
}

void CallContact(cli::Session& session, const cli::DialOptions& /*options*/) {
  session.Fail("nobody can be called yet");
}

}  // namespace dial
