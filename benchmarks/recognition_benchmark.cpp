// The time from the end of speech to the answer, with 100 tags.
//
//   recognition_benchmark                  processor time of both ways
//   recognition_benchmark both|quick N     hears N takes, for the counting of instructions

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "dialer/recognizer.h"
#include "tests/support/signals.h"
#include "voicemath/take_template.h"

namespace {

constexpr std::uint32_t kTags = 100;

/// A whole take: 3 s, of which a name of usual length is 0.5 to 0.9 s.
support::Samples SpeakTake(std::uint32_t seed) {
  const std::size_t length = 5500 + seed * 997 % 4500;
  return support::Mixed(support::Noise(33075, 30, seed), 9000,
                        support::SpeechLike(length, 9000, seed));
}

std::vector<support::Samples> SpeakTakes() {
  std::vector<support::Samples> spoken;
  for (std::uint32_t i = 0; i < kTags; ++i) {
    spoken.push_back(SpeakTake(i));
  }
  return spoken;
}

std::vector<dialer::TaughtTag> TeachTags(const std::vector<support::Samples>& spoken) {
  std::vector<dialer::TaughtTag> tags;
  for (std::uint32_t i = 0; i < kTags; ++i) {
    const support::Samples& take = spoken[i];
    const voicemath::Segment kept = voicemath::FindKeptPart(take);
    tags.push_back({.name = {},
                    .oid = static_cast<std::int32_t>(i),
                    .phoneKind = {},
                    .features = voicemath::ComputeLearnedTemplate(take),
                    .samples = {take.data() + kept.first, take.data() + kept.last + 1}});
  }
  return tags;
}

double Milliseconds(std::clock_t from, std::clock_t to) {
  return 1000.0 * static_cast<double>(to - from) / CLOCKS_PER_SEC;
}

/// Returns how many of the takes were known, which keeps the work from being left out.
std::uint32_t Hear(const dialer::Recognizer& recognizer,
                   const std::vector<support::Samples>& spoken, std::uint32_t takes) {
  std::uint32_t known = 0;
  for (std::uint32_t i = 0; i < takes; ++i) {
    const auto answer = recognizer.Recognize(spoken[i % kTags]);
    known += answer.candidates.front().oid == static_cast<std::int32_t>(i % kTags) ? 1U : 0U;
  }
  return known;
}

void Measure(const char* name, dialer::Steps steps) {
  const auto spoken = SpeakTakes();
  const auto tags = TeachTags(spoken);
  const std::clock_t begin = std::clock();
  const dialer::Recognizer recognizer(tags, steps);
  const std::clock_t made = std::clock();
  const std::uint32_t known = Hear(recognizer, spoken, kTags);
  const std::clock_t heard = std::clock();
  std::printf("%-10s before speech %6.1f ms   answer %6.2f ms   known %u of %u\n", name,
              Milliseconds(begin, made), Milliseconds(made, heard) / kTags, known, kTags);
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 3) {
    Measure("both", dialer::Steps::kBoth);
    Measure("quick", dialer::Steps::kTemplatesOnly);
    return 0;
  }
  const bool isQuick = std::string_view(arguments[1]) == "quick";
  const auto spoken = SpeakTakes();
  const dialer::Recognizer recognizer(
      TeachTags(spoken), isQuick ? dialer::Steps::kTemplatesOnly : dialer::Steps::kBoth);
  const auto takes = static_cast<std::uint32_t>(std::strtoul(arguments[2], nullptr, 10));
  std::printf("%u known\n", Hear(recognizer, spoken, takes));
}
