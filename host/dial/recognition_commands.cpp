#include "host/dial/commands.h"

namespace dial {

void RecognizeFiles(cli::Session& session, const cli::DialOptions& /*options*/) {
  session.Fail("recordings cannot be recognized yet");
}

void Evaluate(cli::Session& session, const cli::DialOptions& /*options*/) {
  session.Fail("recordings cannot be evaluated yet");
}

}  // namespace dial
