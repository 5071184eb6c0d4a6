#include "tests/voicemath/signal_catalogue.h"

#include <cstdint>
#include <utility>

namespace voicemath {
namespace {

using support::Samples;

constexpr std::size_t kThreeSeconds = 33075;
constexpr std::size_t kFrame = 1024;

template <typename Number>
std::string Named(std::string what, Number number) {
  return what.append(std::to_string(number));
}

class Catalogue {
 public:
  void Add(std::string name, Samples samples) {
    m_signals.push_back({std::move(name), std::move(samples)});
  }
  [[nodiscard]] std::vector<NamedSignal> Take() { return std::move(m_signals); }

 private:
  std::vector<NamedSignal> m_signals;
};

void AddSteadySignals(Catalogue& catalogue, std::size_t count) {
  for (const int value : {0, 1, -1, 1000, 32767, -32768}) {
    catalogue.Add(Named("constant ", value),
                  support::Constant(count, static_cast<std::int16_t>(value)));
  }
  for (const std::size_t half : {1U, 7U, 55U, 110U, 256U}) {
    catalogue.Add(Named("square of full scale, half period ", half),
                  support::Square(count, half, 32767, -32768));
    catalogue.Add(Named("square of 1, half period ", half), support::Square(count, half, 1, 0));
  }
  for (const std::size_t period : {1U, 54U, 110U, 800U, 20000U}) {
    for (const int height : {32767, -32768, 31, 32, 33}) {
      catalogue.Add(Named("impulses of ", height) + Named(" every ", period),
                    support::Impulses(count, 17, period, static_cast<std::int16_t>(height)));
    }
  }
}

void AddNoises(Catalogue& catalogue, std::size_t count) {
  for (const int amplitude : {1, 15, 31, 32, 33, 64, 500, 5000, 32767}) {
    catalogue.Add(Named("noise of ", amplitude),
                  support::Noise(count, amplitude, static_cast<std::uint32_t>(amplitude)));
  }
  for (std::uint32_t seed = 1; seed <= 5; ++seed) {
    catalogue.Add(Named("extremes ", seed), support::Extremes(count, seed));
    catalogue.Add(Named("speech-like ", seed), support::SpeechLike(count, 3000.0 * seed, seed));
  }
}

void AddBursts(Catalogue& catalogue) {
  const Samples quiet = support::Noise(kThreeSeconds, 90, 77);
  for (const std::size_t at : {0U, 54U, 3000U, 16000U, 30000U, 33000U}) {
    for (const std::size_t length : {60U, 600U, 4000U, 12000U, 25000U}) {
      const Samples burst =
          support::Mixed(support::Tone(length, 57.5, 9000.0), 0, support::Noise(length, 900, 5));
      catalogue.Add(Named("burst of ", length) + Named(" at ", at),
                    support::Mixed(quiet, at, burst));
    }
  }
  const Samples short1 = support::Tone(3000, 40.0, 12000.0);
  for (const double loudness : {6000.0, 12000.0, 24000.0}) {
    catalogue.Add(Named("two bursts, the second of ", loudness),
                  support::Mixed(support::Mixed(quiet, 2000, short1), 24000,
                                 support::Tone(5000, 90.0, loudness)));
  }
}

}  // namespace

std::vector<NamedSignal> CatalogueOfRecordings() {
  Catalogue catalogue;
  AddSteadySignals(catalogue, kThreeSeconds);
  AddNoises(catalogue, kThreeSeconds);
  AddBursts(catalogue);
  for (const double bin : {3.0, 20.0, 100.25, 300.0}) {
    catalogue.Add(Named("tone at ", bin), support::Tone(kThreeSeconds, bin, 15000.0));
  }
  catalogue.Add("sweep", support::Sweep(kThreeSeconds, 1.0, 500.0, 20000.0));
  for (const std::size_t count : {1U, 54U, 55U, 56U, 110U, 111U, 511U, 512U, 1023U, 1024U, 1025U}) {
    catalogue.Add(Named("noise of ", count) + " samples",
                  support::Noise(count, 4000, static_cast<std::uint32_t>(count)));
  }
  return catalogue.Take();
}

std::vector<NamedSignal> CatalogueOfFrames() {
  Catalogue catalogue;
  AddSteadySignals(catalogue, kFrame);
  AddNoises(catalogue, kFrame);
  for (int quarter = 0; quarter <= 4 * 240; ++quarter) {
    const double bin = quarter / 4.0;
    catalogue.Add(Named("tone at ", bin), support::Tone(kFrame, bin, 32767.0));
  }
  for (const double bin : {300.0, 511.0, 511.5, 512.0}) {
    catalogue.Add(Named("tone at ", bin), support::Tone(kFrame, bin, 700.0));
  }
  for (std::size_t at = 0; at < kFrame; at += 31) {
    catalogue.Add(Named("impulse at ", at),
                  support::Impulses(kFrame, at, kFrame, static_cast<std::int16_t>(at + 1)));
  }
  catalogue.Add("sweep up", support::Sweep(kFrame, 1.0, 500.0, 20000.0));
  catalogue.Add("sweep down", support::Sweep(kFrame, 240.0, 0.0, 5.0));
  return catalogue.Take();
}

}  // namespace voicemath
