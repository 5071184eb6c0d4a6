// Compares names as the dialer would. Reads lines "FILE<tab>SPEAKER<tab>NAME" on standard input,
// the lines of a speaker and a name together; the first recording of each name is its template, and
// the others are utterances of it. Prints how near repetitions and other names are.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "audio/wave_header.h"
#include "voicemath/band_features.h"
#include "voicemath/endpoint_detector.h"
#include "voicemath/nearest_neighbours.h"

namespace {

using voicemath::PreparedTemplate;

/// The template that LearnFile makes of a recording.
PreparedTemplate Learn(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
  std::vector<std::int16_t> samples((bytes.size() - audio::kWaveHeaderBytes) / 2);
  std::memcpy(samples.data(), bytes.data() + audio::kWaveHeaderBytes, samples.size() * 2);
  const auto total = static_cast<std::uint32_t>(samples.size());
  std::vector<std::int16_t> envelope(total / voicemath::kBlockStep);
  // Frames and blocks are read beyond the end.
  samples.resize(total + voicemath::kFrameLanes * voicemath::kFrameSamples);
  voicemath::MeasureEnvelope(samples, envelope);
  const auto segment =
      voicemath::LocateSpeech(envelope, total).value_or(voicemath::Segment{0, total - 1});
  const std::size_t frames = (segment.last - segment.first + 1) / voicemath::kFrameHop - 1;
  std::vector<float> features(frames * voicemath::kBandCount);
  voicemath::BandFeatures(std::span(samples).subspan(segment.first), voicemath::kFrameHop,
                          features);
  voicemath::SubtractBandMinima(features);
  PreparedTemplate prepared;
  static_cast<void>(prepared.Prepare(features));
  return prepared;
}

void PrintShares(const char* what, std::vector<float> distances) {
  std::ranges::sort(distances);
  const auto count = static_cast<double>(distances.size());
  const auto near = std::ranges::lower_bound(distances, voicemath::kRepetitionDistance);
  std::printf("%s: %zu, %.1f %% nearer than %.2f; half nearer than %.2f\n", what, distances.size(),
              100 * static_cast<double>(near - distances.begin()) / count,
              double{voicemath::kRepetitionDistance}, double{distances[distances.size() / 2]});
}

}  // namespace

int main(int count, char** arguments) {
  const std::string folder = count > 1 ? arguments[1] : ".";
  std::map<std::string, std::map<std::string, std::vector<PreparedTemplate>>> speakers;
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream fields(line);
    std::string file;
    std::string speaker;
    std::string name;
    std::getline(std::getline(std::getline(fields, file, '\t'), speaker, '\t'), name);
    speakers[speaker][name].push_back(Learn(folder + "/" + file));
  }
  std::vector<float> repetitions;
  std::vector<float> others;
  int wrongNear = 0;
  int near = 0;
  for (const auto& [speaker, names] : speakers) {
    for (const auto& [name, said] : names) {
      for (std::size_t i = 1; i < said.size(); ++i) {
        repetitions.push_back(TemplateDistance(said[i], said[0]));
      }
      for (const auto& [other, otherSaid] : names) {
        if (other == name) {
          continue;
        }
        others.push_back(TemplateDistance(said[0], otherSaid[0]));
        for (std::size_t i = 1; i < said.size() && others.back() < voicemath::kRepetitionDistance;
             ++i) {
          ++near;
          wrongNear +=
              TemplateDistance(said[i], otherSaid[0]) < TemplateDistance(said[i], said[0]) ? 1 : 0;
        }
      }
    }
  }
  PrintShares("repetitions", std::move(repetitions));
  PrintShares("other names", std::move(others));
  std::printf("repetitions of names with another one so near: %d, taken for it: %d\n", near,
              wrongNear);
}
