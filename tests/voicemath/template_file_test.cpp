#include "voicemath/template_file.h"

#include <algorithm>

#include "tests/support/results.h"
#include "tests/support/watched_file_system.h"
#include "tests/voicemath/mathematics_fixture.h"

namespace {

using voicemath::TemplateFileError;

support::Bytes ToBytes(std::initializer_list<int> values) {
  support::Bytes bytes(values.size());
  std::ranges::transform(values, bytes.begin(),
                         [](int value) { return static_cast<std::byte>(value); });
  return bytes;
}

class TemplateFile : public MathematicsFixture {
 protected:
  platform::Result<void, TemplateFileError> Write() {
    return voicemath::WriteTemplateFile(m_files, kTemplate, m_mathematics);
  }
  platform::Result<void, TemplateFileError> Read(std::int32_t slot) {
    m_mathematics.m_loadSlot = slot;
    return voicemath::ReadTemplateFile(m_files, kTemplate, m_mathematics);
  }
  platform::Result<void, TemplateFileError> ReadBytes(std::int32_t slot,
                                                      const support::Bytes& bytes) {
    EXPECT_TRUE(m_files.PutFile(kTemplate, bytes));
    return Read(slot);
  }
  void SetSlotZero(const std::vector<float>& values) {
    SetTemplate(0, values);
    m_mathematics.m_elementCount = static_cast<std::int32_t>(values.size());
  }
  [[nodiscard]] support::Bytes GetFile() const {
    return m_files.GetFile(kTemplate).value_or(support::Bytes());
  }
};

TEST_F(TemplateFile, WithoutFramesIsSixZeroBytes) {
  SetSlotZero({});
  ASSERT_TRUE(Write());
  EXPECT_EQ(GetFile(), support::Bytes(6));
}

TEST_F(TemplateFile, OfTenFramesIsTwoHundredAndSixBytes) {
  SetSlotZero(std::vector<float>(50, 1.0F));
  ASSERT_TRUE(Write());
  const auto bytes = GetFile();
  ASSERT_EQ(bytes.size(), 206U);
  EXPECT_EQ(support::Bytes(bytes.begin(), bytes.begin() + 10),
            ToBytes({0x32, 0, 0, 0, 0x0A, 0, 0, 0, 0x80, 0x3F}));
}

TEST_F(TemplateFile, IsMadeByOneHandleAndWrittenByAnotherThatIsFlushed) {
  SetSlotZero(std::vector<float>(2000, 1.0F));
  support::Steps steps;
  support::WatchedFileSystem files(m_files, steps);
  ASSERT_TRUE(voicemath::WriteTemplateFile(files, kTemplate, m_mathematics));
  EXPECT_EQ(steps,
            (support::Steps{"open for nothing, alone, always", "open for writing, alone, existing",
                            "write 4096", "write 3910", "flush", "close file"}));
  steps.clear();
  m_mathematics.m_loadSlot = 1;
  ASSERT_TRUE(voicemath::ReadTemplateFile(files, kTemplate, m_mathematics));
  EXPECT_EQ(steps.front(), "open for reading, with readers, existing");
}

TEST_F(TemplateFile, ComesBackBitForBitInAnySlot) {
  PutWave(support::SpeechLike(33075, 8000, 1));
  ASSERT_EQ(m_mathematics.ProcessFile(0), voicemath::kLearned);
  ASSERT_TRUE(Write());
  for (const std::int32_t slot : {0, 7, 100}) {
    ASSERT_TRUE(Read(slot));
    EXPECT_EQ(GetTemplate(static_cast<std::size_t>(slot)), GetTemplate(0));
  }
  EXPECT_EQ(m_mathematics.CompareTemplates(0, 7), 0.0F);
}

TEST_F(TemplateFile, ALoadLeavesTheCountsToTheCaller) {
  SetSlotZero(std::vector<float>(50, 1.0F));
  ASSERT_TRUE(Write());
  m_mathematics.m_elementCount = 3;
  m_mathematics.m_count = 4;
  ASSERT_TRUE(Read(9));
  EXPECT_EQ(m_mathematics.m_elementCount, 3);
  EXPECT_EQ(m_mathematics.m_count, 4);
}

TEST_F(TemplateFile, IsNeverShortenedSoALongerOneKeepsItsEnd) {
  ASSERT_TRUE(m_files.PutFile(kTemplate, support::Bytes(300, std::byte{0xEE})));
  SetSlotZero(std::vector<float>(5, 1.0F));
  ASSERT_TRUE(Write());
  const auto bytes = GetFile();
  ASSERT_EQ(bytes.size(), 300U);
  EXPECT_EQ(bytes[25], std::byte{0x3F});
  EXPECT_EQ(bytes[26], std::byte{0xEE});
  EXPECT_TRUE(Read(1));
  EXPECT_EQ(GetTemplate(1), GetTemplate(0));
}

TEST_F(TemplateFile, EveryLengthBelowTheFullOneIsTorn) {
  SetSlotZero(std::vector<float>(10, 1.0F));
  ASSERT_TRUE(Write());
  const auto whole = GetFile();
  ASSERT_TRUE(Read(1));
  const auto before = GetTemplate(1);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    const auto end = whole.begin() + static_cast<std::ptrdiff_t>(length);
    EXPECT_EQ(support::ErrorOf(ReadBytes(1, support::Bytes(whole.begin(), end))),
              TemplateFileError::kTorn);
  }
  EXPECT_EQ(GetTemplate(1), before);
}

TEST_F(TemplateFile, AnElementCountThatIsNotFiveAFrameIsRefused) {
  EXPECT_EQ(support::ErrorOf(ReadBytes(0, ToBytes({4, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0,
                                                   0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}))),
            TemplateFileError::kBadFormat);
  EXPECT_EQ(m_mathematics.m_templates[0], nullptr);
}

TEST_F(TemplateFile, AHostileElementCountReservesNothing) {
  EXPECT_EQ(support::ErrorOf(ReadBytes(0, ToBytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}))),
            TemplateFileError::kBadFormat);
  // 327,675 elements agree with 65,535 frames, but the file does not hold them.
  EXPECT_EQ(support::ErrorOf(ReadBytes(0, ToBytes({0xFB, 0xFF, 0x04, 0, 0xFF, 0xFF, 0, 0}))),
            TemplateFileError::kTorn);
}

TEST_F(TemplateFile, ASlotThatIsNoneIsRefused) {
  for (const std::int32_t slot : {-1, 101}) {
    EXPECT_EQ(support::ErrorOf(ReadBytes(slot, support::Bytes(6))), TemplateFileError::kBadFormat);
  }
}

TEST_F(TemplateFile, TheLargestTemplateIsWrittenAndReadWhole) {
  std::vector<float> values(327675);
  for (std::size_t i = 0; i < values.size(); ++i) {
    values[i] = static_cast<float>(i);
  }
  SetSlotZero(values);
  ASSERT_TRUE(Write());
  EXPECT_EQ(GetFile().size(), 6U + 4U * 327675U);
  ASSERT_TRUE(Read(1));
  EXPECT_EQ(GetTemplate(1), values);
}

TEST_F(TemplateFile, TheSmallestAndLargestComeBackByteForByteAndAreTornOneByteEarlier) {
  for (std::uint32_t i = 0; i < 23; ++i) {
    const std::uint32_t frames = i < 20 ? i : 65535 - (i - 20);
    SCOPED_TRACE(frames);
    const std::uint32_t elements = frames * 5;
    support::Bytes bytes(6 + 4 * std::size_t{elements}, std::byte{0x3E});
    for (std::size_t at = 0; at < 4; ++at) {
      bytes[at] = static_cast<std::byte>(elements >> (8 * at));
    }
    bytes[4] = static_cast<std::byte>(frames);
    bytes[5] = static_cast<std::byte>(frames >> 8U);
    ASSERT_TRUE(ReadBytes(0, bytes));
    EXPECT_EQ(m_mathematics.m_frameCounts[0], frames);
    m_mathematics.m_elementCount = static_cast<std::int32_t>(elements);
    ASSERT_TRUE(m_files.Delete(kTemplate));
    ASSERT_TRUE(Write());
    EXPECT_TRUE(GetFile() == bytes);
    bytes.pop_back();
    EXPECT_EQ(support::ErrorOf(ReadBytes(1, bytes)), TemplateFileError::kTorn);
  }
}

TEST_F(TemplateFile, SlotZeroIsNotStoredWithTheCountOfAnotherSlot) {
  SetSlotZero(std::vector<float>(5, 1.0F));
  m_mathematics.m_elementCount = 50;
  EXPECT_EQ(support::ErrorOf(Write()), TemplateFileError::kBadFormat);
}

TEST_F(TemplateFile, AFileThatCannotBeMadeOpenedOrHeldHasItsResult) {
  SetSlotZero(std::vector<float>(50, 1.0F));
  EXPECT_EQ(
      support::ErrorOf(voicemath::WriteTemplateFile(m_files, u"/missing/name.st", m_mathematics)),
      TemplateFileError::kNotCreated);
  EXPECT_EQ(support::ErrorOf(Read(0)), TemplateFileError::kNotOpened);
  m_files.SetCapacity(10);
  EXPECT_EQ(support::ErrorOf(Write()), TemplateFileError::kDiskFull);
}

}  // namespace
