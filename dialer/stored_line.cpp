#include "dialer/stored_line.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

#include "backends/text/utf.h"
#include "storage/registry_keys.h"
#include "storage/tag_record.h"

namespace dialer {
namespace {

using platform::FlowControl;
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

std::u16string ReadSetting(platform::RegistryKey* key, std::u16string_view name) {
  const auto value =
      key != nullptr ? key->Query(name) : platform::Failure(platform::RegistryError::kNotFound);
  return value ? storage::TextOfValue(*value) : std::u16string();
}

/// Sets `number` if the text is a number between both. Returns whether it is. An empty text leaves
/// the number as it is.
bool TakeNumber(std::u16string_view text, std::uint32_t lowest, std::uint32_t highest,
                std::uint32_t& number) {
  if (text.empty()) {
    return true;
  }
  const std::string digits = text::ToUtf8(text);
  std::uint32_t parsed = 0;
  const char* const end = digits.data() + digits.size();
  const auto [last, error] = std::from_chars(digits.data(), end, parsed);
  const bool fits = error == std::errc() && last == end && parsed >= lowest && parsed <= highest;
  number = fits ? parsed : number;
  return fits;
}

/// The same for a word.
template <typename Value, std::size_t count>
bool TakeWord(std::u16string_view text, const std::array<Named<Value>, count>& words,
              Value& value) {
  const auto found = std::ranges::find(words, text, &Named<Value>::word);
  if (found != words.end()) {
    value = found->value;
  }
  return text.empty() || found != words.end();
}

template <typename Value, std::size_t count>
std::string WordOfValue(const std::array<Named<Value>, count>& words, Value value) {
  return text::ToUtf8(std::ranges::find(words, value, &Named<Value>::value)->word);
}

}  // namespace

platform::Result<StoredLine, CallFault> ReadStoredLine(platform::Registry& registry) {
  const platform::OpenedKey opened = registry.OpenKey(storage::kDialerKey);
  platform::RegistryKey* const key = opened ? opened->get() : nullptr;
  const std::u16string rate = ReadSetting(key, storage::kBaudRateValue);
  const std::u16string bits = ReadSetting(key, storage::kDataBitsValue);
  const std::u16string stops = ReadSetting(key, storage::kStopBitsValue);
  const std::u16string flow = ReadSetting(key, storage::kFlowControlValue);
  StoredLine stored;
  auto dataBits = static_cast<std::uint32_t>(stored.line.dataBits);
  if (!TakeNumber(rate, kLowestBaudRate, kHighestBaudRate, stored.line.baudRate) ||
      !TakeNumber(bits, kFewestBits, kMostBits, dataBits) ||
      !TakeWord(stops, kStopBitWords, stored.line.stopBits) ||
      !TakeWord(flow, kFlowWords, stored.line.flowControl)) {
    return platform::Failure(
        CallFault{CallProblem::kLineSettings,
                  text::ToUtf8(rate + u", " + bits + u", " + stops + u", " + flow)});
  }
  stored.line.dataBits = static_cast<int>(dataBits);
  stored.port = ReadSetting(key, storage::kComPortValue);
  stored.hangingUp = ReadSetting(key, storage::kIsHangUpValue) == u"1" ? Modem::HangingUp::kNotUsed
                                                                       : Modem::HangingUp::kUsed;
  return stored;
}

std::string Describe(const SerialLine& line) {
  return std::to_string(line.baudRate) + ", " + std::to_string(line.dataBits) + ", " +
         WordOfValue(kStopBitWords, line.stopBits) + ", " +
         WordOfValue(kFlowWords, line.flowControl);
}

}  // namespace dialer
