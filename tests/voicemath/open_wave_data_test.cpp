#include <algorithm>
#include <string_view>

#include "tests/voicemath/mathematics_fixture.h"

namespace {

using framework::CFile;

constexpr std::size_t kDataSizeAt = 40;

class OpenWaveData : public MathematicsFixture {
 protected:
  int CodeOf(const support::Bytes& bytes) {
    PutWaveBytes(bytes);
    EXPECT_TRUE(m_mathematics.m_file.Open(kWave, CFile::modeReadWrite));
    return m_mathematics.OpenWaveData();
  }

  static support::Bytes Good() { return support::WaveFile(support::Constant(100, 5)); }

  static support::Bytes With(std::size_t at, std::initializer_list<int> values) {
    support::Bytes bytes = Good();
    std::ranges::transform(values, bytes.begin() + static_cast<std::ptrdiff_t>(at),
                           [](int value) { return static_cast<std::byte>(value); });
    return bytes;
  }
};

TEST_F(OpenWaveData, AcceptsTheRecordersOwnFileAndSelectsAllOfIt) {
  EXPECT_EQ(CodeOf(Good()), voicemath::kHeaderAccepted);
  EXPECT_EQ(m_mathematics.m_dataOffset, 44);
  EXPECT_EQ(m_mathematics.m_dataBytes, 200U);
  EXPECT_EQ(m_mathematics.m_firstSample, 0U);
  EXPECT_EQ(m_mathematics.m_lastSample, 99U);
  EXPECT_TRUE(m_mathematics.m_file.IsOpen());
}

TEST_F(OpenWaveData, EachFaultHasItsCodeAndClosesTheFile) {
  const struct {
    support::Bytes bytes;
    int code;
  } cases[] = {
      {support::Bytes(43), voicemath::kTooShort},
      {With(3, {'X'}), voicemath::kNoRiff},
      {With(8, {'w'}), voicemath::kNoWave},
      {With(20, {2, 0}), voicemath::kNotPcm},
      {With(20, {1, 1}), voicemath::kNotPcm},
      {With(22, {2, 0}), voicemath::kNotMono},
      {With(34, {8, 0}), voicemath::kNot16Bit},
      {With(36, {'D', 'A', 'T', 'A'}), voicemath::kNoData},
  };
  for (const auto& item : cases) {
    EXPECT_EQ(CodeOf(item.bytes), item.code);
    EXPECT_FALSE(m_mathematics.m_file.IsOpen()) << item.code;
  }
}

TEST_F(OpenWaveData, TheFirstFaultInTheOrderOfTheChecksCounts) {
  const support::Bytes good = Good();
  support::Bytes bytes(good.size());
  EXPECT_EQ(CodeOf(support::Bytes(43)), voicemath::kTooShort);
  const struct {
    std::size_t at;
    std::size_t size;
  } fields[] = {{0, 4}, {8, 4}, {20, 2}, {22, 2}, {34, 2}, {36, 8}};
  int code = voicemath::kNoRiff;
  for (const auto& [at, size] : fields) {
    EXPECT_EQ(CodeOf(bytes), code) << "All from there on are wrong.";
    std::copy_n(good.begin() + static_cast<std::ptrdiff_t>(at), size,
                bytes.begin() + static_cast<std::ptrdiff_t>(at));
    ++code;
  }
  EXPECT_EQ(code, 8);
  EXPECT_EQ(CodeOf(bytes), voicemath::kHeaderAccepted);
}

TEST_F(OpenWaveData, OfTheTwentySmallestFilesAllIsSelectedAndNothingTrimmed) {
  for (std::uint32_t data = 0; data < 20; ++data) {
    support::Bytes bytes = support::WaveFileWithDataAt(36, data, support::Bytes(data));
    ASSERT_EQ(CodeOf(bytes), voicemath::kHeaderAccepted);
    ASSERT_TRUE(m_mathematics.DetectSpeechBounds());
    ASSERT_TRUE(m_mathematics.TrimWaveFile());
    EXPECT_EQ(m_mathematics.m_dataBytes, data);
    EXPECT_EQ(m_mathematics.m_firstSample, 0U);
    EXPECT_EQ(m_mathematics.m_lastSample, data / 2 - 1U) << "None is the largest number.";
    EXPECT_EQ(GetWave(), bytes);
  }
}

TEST_F(OpenWaveData, ExactlyFortyFourBytesAreEnough) {
  const support::Bytes bytes = support::WaveFile({});
  ASSERT_EQ(bytes.size(), 44U);
  EXPECT_EQ(CodeOf(bytes), voicemath::kHeaderAccepted);
  EXPECT_EQ(m_mathematics.m_dataBytes, 0U);
  EXPECT_EQ(m_mathematics.m_lastSample, 0xFFFFFFFFU);
}

TEST_F(OpenWaveData, TheSampleRateIsNotExamined) {
  EXPECT_EQ(CodeOf(With(24, {0x44, 0xAC, 0, 0})), voicemath::kHeaderAccepted);
}

TEST_F(OpenWaveData, FindsTheDataAtEveryMultipleOfFourBelowAHundred) {
  for (std::size_t at = 36; at <= 96; at += 4) {
    EXPECT_EQ(CodeOf(support::WaveFileWithDataAt(at, 8, support::Bytes(8))),
              voicemath::kHeaderAccepted)
        << at;
    EXPECT_EQ(m_mathematics.m_dataOffset, at + 8);
    EXPECT_EQ(m_mathematics.m_dataBytes, 8U);
  }
}

TEST_F(OpenWaveData, AnIdAfterTheHundredthByteIsNotFound) {
  support::Bytes bytes = support::WaveFileWithDataAt(96, 8, support::Bytes(8));
  bytes.insert(bytes.begin() + 96, 4, std::byte{});
  EXPECT_EQ(CodeOf(bytes), voicemath::kNoData);
}

TEST_F(OpenWaveData, AnIdNextToTheMultiplesOfFourIsNotFound) {
  for (std::size_t shift = 1; shift < 4; ++shift) {
    support::Bytes bytes = Good();
    bytes.insert(bytes.begin() + 36, shift, std::byte{});
    EXPECT_EQ(CodeOf(bytes), voicemath::kNoData) << shift;
  }
}

TEST_F(OpenWaveData, TheFirstOfTwoIdsCounts) {
  support::Bytes bytes = support::WaveFileWithDataAt(48, 8, support::Bytes(8));
  for (std::size_t i = 0; i < 4; ++i) {
    bytes[36 + i] = bytes[48 + i];
  }
  bytes[40] = std::byte{2};
  EXPECT_EQ(CodeOf(bytes), voicemath::kHeaderAccepted);
  EXPECT_EQ(m_mathematics.m_dataOffset, 44);
  EXPECT_EQ(m_mathematics.m_dataBytes, 2U);
}

TEST_F(OpenWaveData, DataMayClaimTheWholeFileLengthButNotMore) {
  support::Bytes bytes = Good();
  bytes[kDataSizeAt] = static_cast<std::byte>(bytes.size());
  EXPECT_EQ(CodeOf(bytes), voicemath::kHeaderAccepted);
  EXPECT_EQ(m_mathematics.m_dataBytes, 244U);
  bytes[kDataSizeAt] = static_cast<std::byte>(bytes.size() + 1);
  EXPECT_EQ(CodeOf(bytes), voicemath::kNoData);
  bytes[kDataSizeAt + 3] = std::byte{0xFF};
  EXPECT_EQ(CodeOf(bytes), voicemath::kNoData);
}

TEST_F(OpenWaveData, AFileBelowAHundredBytesIsReadAsFarAsItGoesAndTheRestIsZero) {
  support::Bytes bytes = support::WaveFileWithDataAt(92, 0, {});
  ASSERT_EQ(bytes.size(), 100U);
  bytes.resize(97);  // Only the id and one byte of the size are there.
  bytes[96] = std::byte{3};
  EXPECT_EQ(CodeOf(bytes), voicemath::kHeaderAccepted);
  EXPECT_EQ(m_mathematics.m_dataBytes, 3U);
}

TEST_F(OpenWaveData, AHeaderThatIsRefusedLeavesTheFieldsAsTheyWere) {
  ASSERT_EQ(CodeOf(Good()), voicemath::kHeaderAccepted);
  ASSERT_EQ(CodeOf(With(36, {'D'})), voicemath::kNoData);
  EXPECT_EQ(m_mathematics.m_dataOffset, 44);
  EXPECT_EQ(m_mathematics.m_dataBytes, 200U);
}

TEST_F(OpenWaveData, AfterTheEndOfAShortFileNothingOfAnEarlierFileIsFound) {
  ASSERT_EQ(CodeOf(support::WaveFileWithDataAt(60, 8, support::Bytes(200))),
            voicemath::kHeaderAccepted);
  m_mathematics.m_file.Close();
  support::Bytes cut = support::WaveFileWithDataAt(60, 8, {});
  cut.resize(60);  // The id would be next.
  EXPECT_EQ(CodeOf(cut), voicemath::kNoData);
}

}  // namespace
