#include "tests/e2e/speech.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <span>

#include "tests/e2e/text_file.h"

namespace e2e {
namespace {

double Correlate(std::span<const std::int16_t> a, std::span<const std::int16_t> b) {
  double products = 0;
  double squaresOfA = 0;
  double squaresOfB = 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    const double x = a[i];
    const double y = b[i];
    products += x * y;
    squaresOfA += x * x;
    squaresOfB += y * y;
  }
  const double scale = std::sqrt(squaresOfA * squaresOfB);
  return scale > 0 ? products / scale : 0;
}

}  // namespace

std::vector<std::byte> Speak(const std::filesystem::path& folder, const std::string& words,
                             std::uint32_t rate, std::uint16_t channels) {
  const std::string spoken = (folder / "spoken.wav").string();
  const std::string raw = (folder / "spoken.raw").string();
  const std::string command = "espeak-ng -v en -w '" + spoken + "' '" + words + "' && sox '" +
                              spoken + "' -t raw -e signed -b 16 -L -r " + std::to_string(rate) +
                              " -c " + std::to_string(channels) + " '" + raw + "'";
  if (std::system(command.c_str()) != 0) {
    ADD_FAILURE() << "The machine cannot speak: " << command;
    return {};
  }
  const std::string bytes = ReadText(raw);
  const auto view = std::as_bytes(std::span(bytes));
  return {view.begin(), view.end()};
}

std::vector<std::int16_t> ToSamples(std::span<const std::byte> sound) {
  std::vector<std::int16_t> samples(sound.size() / sizeof(std::int16_t));
  std::memcpy(samples.data(), sound.data(), samples.size() * sizeof(std::int16_t));
  return samples;
}

bool IsPartOfLoop(std::span<const std::byte> sound, std::span<const std::byte> loop) {
  for (std::size_t begin = 0; begin < loop.size(); begin += sizeof(std::int16_t)) {
    std::size_t at = begin;
    const auto differs = [&](std::byte byte) { return byte != loop[at++ % loop.size()]; };
    if (std::ranges::none_of(sound, differs)) return true;
  }
  return false;
}

Match FindSound(std::span<const std::int16_t> recording, std::span<const std::int16_t> said,
                std::size_t lastOffset) {
  Match best;
  for (std::size_t at = 0; at <= lastOffset && at + said.size() <= recording.size(); ++at) {
    const double correlation = Correlate(recording.subspan(at, said.size()), said);
    if (correlation > best.correlation) best = {correlation, at};
  }
  return best;
}

}  // namespace e2e
