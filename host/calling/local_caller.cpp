#include "host/calling/local_caller.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "backends/desktop/default_program.h"
#include "backends/udev/serial_ports.h"
#include "connection/serial_ports.h"

namespace calling {
namespace {

dialer::CallResult HandOver(const std::string& uri) {
  using dialer::CallProblem;
  // A program that fails does so at once. One that goes on is not waited for.
  constexpr std::chrono::milliseconds kPatience{1000};
  switch (desktop::HandOverCall(desktop::ReadEnvironment(), uri, kPatience)) {
    case desktop::HandOver::kDone:
      return dialer::CallState::kHandedOver;
    case desktop::HandOver::kNoProgram:
      return platform::Failure(dialer::CallFault{CallProblem::kNoTelephoneProgram, {}});
    case desktop::HandOver::kFailed:
      break;
  }
  return platform::Failure(dialer::CallFault{CallProblem::kTelephoneProgramFailed, {}});
}

/// Returns the device of a port. Ports that udev knows are known again after they were plugged in
/// elsewhere. The active drivers may be those of another day, so their device counts only if no
/// other port has it now.
std::u16string DeviceOfPort(platform::Registry& registry, platform::SerialDevices& devices,
                            std::u16string_view port) {
  if (std::u16string now = udev_ports::FindDevice(registry, devices, port); !now.empty()) {
    return now;
  }
  const auto active = connection::ReadActivePorts(registry);
  const connection::ActivePort* const stored = connection::FindPort(active, port);
  const auto present = devices.List();
  const bool isOther =
      stored != nullptr && present &&
      std::ranges::find(*present, stored->device, &platform::SerialDevice::node) != present->end();
  return stored == nullptr || isOther ? std::u16string() : stored->device;
}

}  // namespace

LocalCaller::LocalCaller(platform::Registry& registry, platform::Clock& clock,
                         dialer::CallWish wish)
    : m_parts{.registry = registry,
              .serialPorts = m_ports,
              .clock = clock,
              .hasTelephoneProgram = desktop::HasTelephoneProgram,
              .handOver = HandOver,
              .findDevice =
                  [this, &registry](std::u16string_view port) {
                    return DeviceOfPort(registry, m_devices, port);
                  }},
      m_caller(m_parts, std::move(wish)) {}

}  // namespace calling
