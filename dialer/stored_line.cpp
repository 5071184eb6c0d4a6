#include "dialer/stored_line.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

#include "backends/text/registry_text.h"
#include "backends/text/utf.h"
#include "storage/registry_keys.h"

// Another program, or a person, may have written these settings. One that is missing has its usual
// value. One that makes no sense stops the call: at a wrong speed a modem would get noise.
namespace dialer {
namespace {

using platform::Failure;
using platform::FlowControl;
using platform::Result;
using platform::SerialLine;
using platform::StopBits;

template <typename Value>
struct Named {
  std::u16string_view word;
  Value value;
};

constexpr std::array<Named<StopBits>, 3> kStopBitWords{
    {{u"1", StopBits::kOne}, {u"1.5", StopBits::kOneAndHalf}, {u"2", StopBits::kTwo}}};
constexpr std::array<Named<FlowControl>, 3> kFlowWords{{{u"none", FlowControl::kNone},
                                                        {u"hardware", FlowControl::kHardware},
                                                        {u"software", FlowControl::kSoftware}}};

constexpr std::uint32_t kLowestBaudRate = 50;
constexpr std::uint32_t kHighestBaudRate = 4'000'000;
constexpr std::uint32_t kFewestBits = 4;
constexpr std::uint32_t kMostBits = 8;

/// Returns the number that a setting says, or `missing` if the setting is empty. Fails if it says
/// anything but a number between both.
Result<std::uint32_t, CallProblem> ToNumber(std::u16string_view setting, std::uint32_t lowest,
                                            std::uint32_t highest, std::uint32_t missing) {
  if (setting.empty()) {
    return missing;
  }
  const std::string digits = text::ToUtf8(setting);
  std::uint32_t number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [last, error] = std::from_chars(digits.data(), end, number);
  if (error != std::errc() || last != end || number < lowest || number > highest) {
    return Failure(CallProblem::kLineSettings);
  }
  return number;
}

/// Returns what the word of a setting stands for, or `missing` if the setting is empty. Fails if it
/// is none of the words.
template <typename Value, std::size_t count>
Result<Value, CallProblem> ToValue(std::u16string_view setting,
                                   const std::array<Named<Value>, count>& words, Value missing) {
  if (setting.empty()) {
    return missing;
  }
  const auto found = std::ranges::find(words, setting, &Named<Value>::word);
  if (found == words.end()) {
    return Failure(CallProblem::kLineSettings);
  }
  return found->value;
}

template <typename Value, std::size_t count>
std::string WordOfValue(const std::array<Named<Value>, count>& words, Value value) {
  return text::ToUtf8(std::ranges::find(words, value, &Named<Value>::value)->word);
}

}  // namespace

Result<StoredLine, CallFault> ReadStoredLine(platform::Registry& registry) {
  const platform::OpenedKey key = registry.OpenKey(storage::kDialerKey);
  const std::u16string rate = text::ReadText(key, storage::kBaudRateValue);
  const std::u16string bits = text::ReadText(key, storage::kDataBitsValue);
  const std::u16string stops = text::ReadText(key, storage::kStopBitsValue);
  const std::u16string flow = text::ReadText(key, storage::kFlowControlValue);
  constexpr SerialLine kUsual;
  const auto baudRate = ToNumber(rate, kLowestBaudRate, kHighestBaudRate, kUsual.baudRate);
  const auto dataBits = ToNumber(bits, kFewestBits, kMostBits, kUsual.dataBits);
  const auto stopBits = ToValue(stops, kStopBitWords, kUsual.stopBits);
  const auto flowControl = ToValue(flow, kFlowWords, kUsual.flowControl);
  if (!baudRate || !dataBits || !stopBits || !flowControl) {
    return Failure(CallFault{CallProblem::kLineSettings,
                             text::ToUtf8(rate + u", " + bits + u", " + stops + u", " + flow)});
  }
  StoredLine stored;
  stored.line = {*baudRate, static_cast<int>(*dataBits), *stopBits, *flowControl};
  stored.port = text::ReadText(key, storage::kComPortValue);
  // The setting says that hanging up is *not* used. It is stored so by the page.
  stored.hangingUp = text::ReadText(key, storage::kIsHangUpValue) == u"1"
                         ? Modem::HangingUp::kNotUsed
                         : Modem::HangingUp::kUsed;
  return stored;
}

std::string Describe(const SerialLine& line) {
  return std::to_string(line.baudRate) + ", " + std::to_string(line.dataBits) + ", " +
         WordOfValue(kStopBitWords, line.stopBits) + ", " +
         WordOfValue(kFlowWords, line.flowControl);
}

}  // namespace dialer
