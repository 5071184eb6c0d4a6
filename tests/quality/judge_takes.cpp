// Judges the takes that are named on standard input, one path a line, and prints a line for each:
// its verdicts, parted by commas. The recordings are judged as they are and, in a second column, as
// LearnFile would cut them.

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "audio/wave_header.h"
#include "voicemath/endpoint_detector.h"
#include "voicemath/take_quality.h"

namespace {

struct Recording {
  std::vector<std::int16_t> samples;
  std::uint32_t rate = 0;
};

Recording Read(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
  Recording recording;
  if (bytes.size() >= audio::kWaveHeaderBytes) {
    recording.samples.resize((bytes.size() - audio::kWaveHeaderBytes) / 2);
    std::memcpy(recording.samples.data(), bytes.data() + audio::kWaveHeaderBytes,
                recording.samples.size() * 2);
    std::memcpy(&recording.rate, bytes.data() + 24, sizeof recording.rate);
  }
  return recording;
}

/// What LearnFile keeps of a recording.
std::span<const std::int16_t> Kept(const std::vector<std::int16_t>& samples) {
  std::vector<std::int16_t> padded = samples;
  padded.resize(samples.size() + voicemath::kBlockSamples);
  std::vector<std::int16_t> envelope(samples.size() / voicemath::kBlockStep);
  voicemath::MeasureEnvelope(padded, envelope);
  const auto segment =
      voicemath::LocateSpeech(envelope, static_cast<std::uint32_t>(samples.size()));
  const std::span whole(samples);
  return segment ? whole.subspan(segment->first, segment->last - segment->first + 1) : whole;
}

std::string Judge(std::span<const std::int16_t> samples, std::uint32_t rate) {
  std::string words;
  for (const auto verdict : voicemath::JudgeTake({.samples = samples, .rate = rate}).verdicts) {
    words += (words.empty() ? "" : ",") + std::string(ToWord(verdict));
  }
  return words;
}

}  // namespace

int main() {
  for (std::string path; std::getline(std::cin, path);) {
    const Recording recording = Read(path);
    std::printf("%s\t%s\n", Judge(recording.samples, recording.rate).c_str(),
                Judge(Kept(recording.samples), recording.rate).c_str());
  }
}
