#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/result.h"
#include "platform/wave_devices.h"

namespace platform {

/// One input that the user may record from.
struct WaveInput {
  std::u16string name;         ///< By which it is known again when it was unplugged meanwhile.
  std::u16string description;  ///< In words for people.
  bool isUsed = false;         ///< WaveIn opens this one now.
};

/// The inputs of the machine, for a user who chooses one. May be called from any thread.
class WaveInputs {
 public:
  WaveInputs() = default;
  WaveInputs(const WaveInputs&) = delete;
  WaveInputs& operator=(const WaveInputs&) = delete;
  virtual ~WaveInputs() = default;

  /// Returns the real inputs; one that only listens to an output is none. Fails with kNoDevice if
  /// the sound service cannot be reached, or does not answer within a fixed limit of a few seconds.
  [[nodiscard]] virtual Result<std::vector<WaveInput>, WaveResult> List() = 0;

  /// Stands for a watch as long as it is there. After it is destroyed nothing is called any more.
  class Watch {
   public:
    Watch() = default;
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    virtual ~Watch() = default;
  };

  /// Calls `changed` each time the list may have become another one: also when the sound service
  /// comes and goes. It is called on a thread of the watch, returns soon and throws nothing.
  [[nodiscard]] virtual std::unique_ptr<Watch> StartWatch(std::function<void()> changed) = 0;
};

}  // namespace platform
