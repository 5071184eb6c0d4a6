#include "dialer/evaluation.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace dialer {

bool IsWaveName(std::string_view file) { return file.ends_with(".wav") || file.ends_with(".WAV"); }

std::optional<TakeName> ParseTakeName(std::string_view file) {
  if (!IsWaveName(file)) {
    return std::nullopt;
  }
  file.remove_suffix(4);
  const std::size_t second = file.rfind('_');
  if (second == std::string_view::npos || second == 0) {
    return std::nullopt;
  }
  const std::size_t first = file.rfind('_', second - 1);
  if (first == std::string_view::npos || first == 0 || first + 1 == second) {
    return std::nullopt;
  }
  const std::string_view number = file.substr(second + 1);
  TakeName name{std::string(file.substr(0, first)),
                std::string(file.substr(first + 1, second - first - 1))};
  const auto [end, error] = std::from_chars(number.begin(), number.end(), name.take);
  return error == std::errc() && end == number.end() ? std::optional(std::move(name))
                                                     : std::nullopt;
}

Count& Count::operator+=(const Count& other) {
  part += other.part;
  whole += other.whole;
  return *this;
}

Share ToShare(const Count& count) {
  constexpr double kDeviations = 1.959964;  // Of the normal distribution, for 95 %.
  if (count.whole == 0) {
    return {std::numeric_limits<double>::quiet_NaN(), 0, 1};
  }
  const auto n = static_cast<double>(count.whole);
  const double rate = static_cast<double>(count.part) / n;
  const double square = kDeviations * kDeviations / n;
  const double middle = rate + square / 2;
  const double reach = kDeviations * std::sqrt((rate * (1 - rate) + square / 4) / n);
  return {rate, std::max(0.0, (middle - reach) / (1 + square)),
          std::min(1.0, (middle + reach) / (1 + square))};
}

EvaluationFigures& EvaluationFigures::operator+=(const EvaluationFigures& other) {
  forced += other.forced;
  sure += other.sure;
  wrong += other.wrong;
  unknownSure += other.unknownSure;
  return *this;
}

Evaluation::Evaluation(SpokenLabels labels, std::size_t taught, Steps steps)
    : m_taught(taught), m_steps(steps) {
  for (auto& [label, takes] : labels) {
    if (takes.size() > taught) {
      Takes& kept = m_labels.emplace_back();
      for (auto& [number, take] : takes) {
        kept.push_back(std::move(take));
      }
    }
  }
}

std::size_t Evaluation::CountRounds() const {
  std::size_t rounds = 0;
  for (const Takes& takes : m_labels) {
    rounds = std::max(rounds, takes.size());
  }
  return rounds;
}

/// Teaches every label but `leftOut` of them, from `firstLeftOut` on; after the last label comes
/// the first one.
Recognizer Evaluation::Teach(std::size_t round, std::size_t firstLeftOut,
                             std::size_t leftOut) const {
  std::vector<KnownTag> tags;
  for (std::size_t i = leftOut; i < m_labels.size(); ++i) {
    const std::size_t label = (firstLeftOut + i) % m_labels.size();
    for (std::size_t k = 0; k < m_taught; ++k) {
      const Takes& takes = m_labels[label];
      // The identifier of the contact says which label it is.
      tags.push_back({{.tag = {}, .oid = static_cast<std::int32_t>(label), .phoneKind = {}},
                      takes[(round + k) % takes.size()]});
    }
  }
  return Recognizer(std::move(tags), m_steps);
}

const Utterance& Evaluation::Asked(std::size_t label, std::size_t round) const {
  const Takes& takes = m_labels[label];
  // Half of the way round from the middle of those that teach.
  return *takes[(round + (takes.size() + m_taught) / 2) % takes.size()];
}

EvaluationFigures Evaluation::RunRound(std::size_t round) const {
  constexpr double kLeftOutShare = 0.3;
  const std::size_t count = m_labels.size();
  const auto leftOut = std::clamp<std::size_t>(
      static_cast<std::size_t>(std::lround(kLeftOutShare * static_cast<double>(count))), 1,
      std::max<std::size_t>(count, 2) - 1);
  EvaluationFigures figures;
  const Recognizer all = Teach(round, 0, 0);
  for (std::size_t label = 0; label < count; ++label) {
    if (round >= m_labels[label].size()) {
      continue;
    }
    const std::span<const Utterance> asked(&Asked(label, round), 1);
    const Answer answer = all.Recognize(asked);
    const bool isRight = answer.candidates.front().oid == static_cast<std::int32_t>(label);
    const bool isSure = answer.certainty == Certainty::kSure;
    figures.forced += {isRight ? 1U : 0U, 1};
    figures.sure += {isSure ? 1U : 0U, 1};
    figures.wrong += {isSure && !isRight ? 1U : 0U, isSure ? 1U : 0U};
    if (count > 1) {
      // Round by round, its own label is the first, the second or the last of those left out.
      const std::size_t first = (label + count - round % leftOut) % count;
      const Answer unknown = Teach(round, first, leftOut).Recognize(asked);
      figures.unknownSure += {unknown.certainty == Certainty::kSure ? 1U : 0U, 1};
    }
  }
  return figures;
}

}  // namespace dialer
