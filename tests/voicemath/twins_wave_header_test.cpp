#include <algorithm>
#include <cstdint>

#include "gtest/gtest.h"
#include "tests/support/signals.h"
#include "tests/voicemath/twins/wave_header.h"

namespace {

using support::Bytes;

twins::Wave Check(const Bytes& bytes) {
  twins::ByteFile file(bytes);
  return twins::CheckHeader(file);
}

Bytes Recording() { return support::WaveFile(support::Constant(100, 5)); }

Bytes Changed(Bytes bytes, std::size_t at, int value) {
  bytes[at] = static_cast<std::byte>(value);
  return bytes;
}

TEST(WaveHeaderTwin, RecordingIsAccepted) {
  const twins::Wave wave = Check(Recording());
  EXPECT_EQ(wave.code, 0);
  EXPECT_EQ(wave.dataOffset, 44);
  EXPECT_EQ(wave.dataBytes, 200U);
  EXPECT_EQ(wave.firstSample, 0U);
  EXPECT_EQ(wave.lastSample, 99U);
}

TEST(WaveHeaderTwin, EveryFaultHasItsCode) {
  Bytes tooShort = Recording();
  tooShort.resize(43);
  EXPECT_EQ(Check(tooShort).code, 1);
  EXPECT_EQ(Check({}).code, 1);
  EXPECT_EQ(Check(Changed(Recording(), 3, 'X')).code, 2);
  EXPECT_EQ(Check(Changed(Recording(), 8, 'X')).code, 3);
  EXPECT_EQ(Check(Changed(Recording(), 20, 2)).code, 4);
  EXPECT_EQ(Check(Changed(Recording(), 21, 1)).code, 4);
  EXPECT_EQ(Check(Changed(Recording(), 22, 2)).code, 5);
  EXPECT_EQ(Check(Changed(Recording(), 34, 8)).code, 6);
  EXPECT_EQ(Check(Changed(Recording(), 39, 'X')).code, 7);
}

TEST(WaveHeaderTwin, FirstFaultCounts) {
  EXPECT_EQ(Check(Changed(Changed(Recording(), 0, 'X'), 20, 2)).code, 2);
  EXPECT_EQ(Check(Changed(Changed(Recording(), 34, 8), 36, 'X')).code, 6);
}

TEST(WaveHeaderTwin, SampleRateIsNotLookedAt) {
  EXPECT_EQ(Check(Changed(Recording(), 25, 0)).code, 0);
}

TEST(WaveHeaderTwin, DataMayBeAtAnyMultipleOfFourUpTo96) {
  for (std::size_t at = 36; at <= 96; at += 4) {
    const twins::Wave wave = Check(support::WaveFileWithDataAt(at, 60, Bytes(60)));
    EXPECT_EQ(wave.code, 0) << at;
    EXPECT_EQ(wave.dataOffset, at + 8) << at;
    EXPECT_EQ(wave.dataBytes, 60U) << at;
  }
  EXPECT_EQ(Check(support::WaveFileWithDataAt(100, 60, Bytes(60))).code, 7);
  for (const std::size_t at : {37U, 38U, 39U, 41U, 94U}) {
    EXPECT_EQ(Check(support::WaveFileWithDataAt(at, 60, Bytes(60))).code, 7) << at;
  }
}

TEST(WaveHeaderTwin, SizeAfterAnIdAt96IsReadAsFarAsTheFileGoes) {
  Bytes bytes = support::WaveFileWithDataAt(96, 0x04030201U, {});
  EXPECT_EQ(Check(bytes).code, 7);
  bytes.resize(101);
  EXPECT_EQ(Check(bytes).dataBytes, 1U);
  bytes.resize(100);
  EXPECT_EQ(Check(bytes).code, 0);
  EXPECT_EQ(Check(bytes).dataBytes, 0U);
}

TEST(WaveHeaderTwin, FirstDataIdCounts) {
  Bytes content = support::BytesOf(support::Constant(40, 0));
  const Bytes second = support::WaveFileWithDataAt(36, 7, {});
  std::copy(second.begin() + 36, second.end(), content.begin());
  const twins::Wave wave = Check(support::WaveFileWithDataAt(36, 80, content));
  EXPECT_EQ(wave.dataOffset, 44);
  EXPECT_EQ(wave.dataBytes, 80U);
}

TEST(WaveHeaderTwin, DataMayBeAsLargeAsTheWholeFileButNotLarger) {
  EXPECT_EQ(Check(support::WaveFileWithDataAt(36, 144, Bytes(100))).code, 0);
  EXPECT_EQ(Check(support::WaveFileWithDataAt(36, 145, Bytes(100))).code, 7);
  EXPECT_EQ(Check(support::WaveFileWithDataAt(36, 0xFFFFFFFFU, Bytes(100))).code, 7);
}

TEST(WaveHeaderTwin, LastSampleOfNoDataWraps) {
  EXPECT_EQ(Check(support::WaveFileWithDataAt(36, 0, {})).lastSample, 0xFFFFFFFFU);
  EXPECT_EQ(Check(support::WaveFileWithDataAt(36, 1, Bytes(1))).lastSample, 0xFFFFFFFFU);
  EXPECT_EQ(Check(support::WaveFileWithDataAt(36, 3, Bytes(3))).lastSample, 0U);
}

TEST(WaveHeaderTwin, WrittenHeaderIsTheRecordersAndHoldsTheFileLength) {
  const Bytes recording = Recording();
  EXPECT_EQ(twins::HeaderFor(200), Bytes(recording.begin(), recording.begin() + 44));
  EXPECT_EQ(twins::Unsigned32At(twins::HeaderFor(200), 4), 244U);
}

}  // namespace
