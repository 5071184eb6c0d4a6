#include "host/cli/recording_warnings.h"

#include <fmt/format.h>

#include "host/cli/output.h"
#include "voicemath/constants.h"

namespace cli {
namespace {

std::vector<std::string> DescribeOddities(const voicemath::RecordingReview& review) {
  std::vector<std::string> sentences;
  if (review.hasOtherRate) {
    sentences.push_back(fmt::format(
        "it has {} samples a second, which are taken for 11025; its template fits no speech",
        review.rate));
  }
  if (review.isSilent && !review.isEmpty) {
    sentences.emplace_back("it is silent: all its samples are alike");
  }
  if (review.isLong) {
    sentences.push_back(
        fmt::format("it is longer than 60 s ({:.1f} s)",
                    static_cast<double>(review.samples) / voicemath::kSamplesPerSecond));
  }
  if (review.isSpeechTooLate) {
    sentences.emplace_back(
        "its speech ends after 163 s, which is too late to find it; another part is used");
  }
  if (review.hasNoFrame) {
    sentences.emplace_back(
        "the part that is used is shorter than a frame of 1024 samples, so its template is empty");
  }
  return sentences;
}

}  // namespace

std::vector<std::string> WarnOfOddities(const std::optional<voicemath::RecordingReview>& review,
                                        const std::string& name) {
  std::vector<std::string> warnings =
      review ? DescribeOddities(*review) : std::vector<std::string>();
  for (const std::string& warning : warnings) {
    PrintErrorLine(fmt::format("voxtrel: warning: {}: {}", name, warning));
  }
  return warnings;
}

}  // namespace cli
