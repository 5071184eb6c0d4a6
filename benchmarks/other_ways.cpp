// What other libraries and methods take for something comparable.

#include <aubio/aubio.h>
#include <fftw3.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>

#include "benchmarks/voicemath_jobs.h"
#include "benchmarks/voicemath_material.h"

namespace benchmarks {
namespace {

constexpr std::size_t kPoints = 1024;
constexpr std::size_t kHop = 512;

struct MeasuredPlan {
  MeasuredPlan()
      : plan(fftwf_plan_dft_r2c_1d(kPoints, in.data(), reinterpret_cast<fftwf_complex*>(out.data()),
                                   FFTW_MEASURE)) {}
  MeasuredPlan(const MeasuredPlan&) = delete;
  MeasuredPlan& operator=(const MeasuredPlan&) = delete;
  ~MeasuredPlan() { fftwf_destroy_plan(plan); }

  alignas(64) std::array<float, kPoints> in{};
  alignas(64) std::array<std::array<float, 2>, kPoints / 2 + 1> out{};
  fftwf_plan plan;
};

/// From samples to the same magnitudes, with the library's rounding.
void TransformWithMagnitudes(MeasuredPlan& plan, const std::int16_t* samples) {
  std::copy_n(samples, kPoints, plan.in.begin());
  fftwf_execute(plan.plan);
  std::array<float, 220> magnitudes;
  for (std::size_t i = 0; i < magnitudes.size(); ++i) {
    const std::size_t bin = i + 10;
    const double re = plan.out[bin][0];
    const double im = plan.out[bin][1];
    magnitudes[i] = static_cast<float>(std::sqrt(re * re + im * im) * static_cast<double>(bin));
  }
  Keep(magnitudes);
}

void AddTransform(std::vector<Way>& ways) {
  auto plan = std::make_shared<MeasuredPlan>();
  auto samples = std::make_shared<support::Samples>(Utterance());
  ways.push_back({"FFTW, measured, with magnitudes", [plan, samples] {
                    for (std::size_t frame = 0; frame < kFramesTogether; ++frame) {
                      TransformWithMagnitudes(*plan, &(*samples)[kLoudSample + frame * kHop]);
                    }
                  }});
  ways.push_back({"FFTW, measured, transform alone", [plan] {
                    for (std::size_t frame = 0; frame < kFramesTogether; ++frame) {
                      fftwf_execute(plan->plan);
                      Keep(plan->out);
                    }
                  }});
}

/// Mel-frequency coefficients of every frame of three seconds.
void AddUtterance(std::vector<Way>& ways) {
  auto samples = std::make_shared<support::Samples>(Utterance());
  std::shared_ptr<aubio_pvoc_t> vocoder(new_aubio_pvoc(kPoints, kHop), del_aubio_pvoc);
  std::shared_ptr<aubio_mfcc_t> mel(new_aubio_mfcc(kPoints, 40, 13, 11025), del_aubio_mfcc);
  std::shared_ptr<fvec_t> in(new_fvec(kHop), del_fvec);
  std::shared_ptr<cvec_t> grain(new_cvec(kPoints), del_cvec);
  std::shared_ptr<fvec_t> out(new_fvec(13), del_fvec);
  ways.push_back({"aubio, 13 mel coefficients", [=] {
                    for (std::size_t frame = 0; frame < kFrames; ++frame) {
                      for (std::size_t i = 0; i < kHop; ++i) {
                        in->data[i] = static_cast<float>((*samples)[frame * kHop + i]) / 32768.0F;
                      }
                      aubio_pvoc_do(vocoder.get(), in.get(), grain.get());
                      aubio_mfcc_do(mel.get(), grain.get(), out.get());
                    }
                    Keep(*out);
                  }});
}

/// Full dynamic time warping of two templates with Euclidean distances between frames.
float Warped(const twins::Template& a, const twins::Template& b) {
  constexpr std::size_t kMostFrames = 64;
  std::array<float, kMostFrames + 1> above;
  above.fill(std::numeric_limits<float>::infinity());
  above[0] = 0.0F;
  for (std::size_t i = 0; i < a.frameCount; ++i) {
    float corner = above[0];
    above[0] = std::numeric_limits<float>::infinity();
    for (std::size_t j = 0; j < b.frameCount; ++j) {
      float sum = 0.0F;
      for (std::size_t band = 0; band < 5; ++band) {
        const float difference = a.values[i * 5 + band] - b.values[j * 5 + band];
        sum += difference * difference;
      }
      const float before = std::min({corner, above[j], above[j + 1]});
      corner = above[j + 1];
      above[j + 1] = before + std::sqrt(sum);
    }
  }
  return above[b.frameCount];
}

void AddComparison(std::vector<Way>& ways) {
  const std::array words{Word(42, 1), Word(52, 2)};
  ways.push_back({"dynamic time warping", [words] { Keep(Warped(words[0], words[1])); }});
}

void AddComparisonOf(const std::vector<twins::Template>& names, std::vector<Way>& ways) {
  ways.push_back({"dynamic time warping", [&names] {
                    for (std::size_t i = 0; i < kTags; ++i) {
                      Keep(Warped(names[i], names[(i + 1) % kTags]));
                    }
                  }});
}

void WarpEachWithEach(const std::vector<twins::Template>& words, bool inBothOrders) {
  for (std::size_t i = 0; i < words.size(); ++i) {
    for (std::size_t j = 0; j < (inBothOrders ? words.size() : i); ++j) {
      if (j != i) {
        Keep(Warped(words[i], words[j]));
      }
    }
  }
}

/// The dialog asks for each two in both orders, since equal lengths are not symmetric. Warping is
/// symmetric, so half of that would be enough for it: "once each".
void AddTestDialog(const std::vector<twins::Template>& words, std::vector<Way>& ways) {
  ways.push_back({"dynamic time warping, as asked", [words] { WarpEachWithEach(words, true); }});
  ways.push_back({"dynamic time warping, once each", [words] { WarpEachWithEach(words, false); }});
}

}  // namespace

void AddOtherWays(const std::string& job, std::vector<Way>& ways) {
  if (job == "transform") {
    AddTransform(ways);
  } else if (job == "utterance") {
    AddUtterance(ways);
  } else if (job == "comparison") {
    AddComparison(ways);
  } else if (job == "comparison, full names") {
    AddComparisonOf(FullNames(), ways);
  } else if (job == "comparison, first names") {
    AddComparisonOf(FirstNames(), ways);
  } else if (job == "test dialog") {
    AddTestDialog(Vocabulary(), ways);
  } else if (job == "test dialog, full names") {
    AddTestDialog(FullNames(), ways);
  }
}

}  // namespace benchmarks
