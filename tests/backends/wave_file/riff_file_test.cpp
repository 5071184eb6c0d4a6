#include "backends/wave_file/riff_file.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "tests/machine/memory_file_system.h"
#include "tests/support/riff.h"

namespace {

using support::Chunk;
using support::FormatBody;
using support::RiffBytes;
using support::RiffWave;
using wave_file::WaveFileLayout;

constexpr platform::WaveFormat kRiffMono{platform::kFormatTagPcm, 1, 11025, 22050, 2, 16, 0};
constexpr std::uint32_t kHugeSize = 0xFFFFFFFF;
constexpr std::size_t kPlainHeader = 44;

RiffBytes Samples(std::size_t count) { return RiffBytes(count, std::byte{7}); }

using Layout = platform::Result<WaveFileLayout, platform::WaveResult>;

Layout Read(const RiffBytes& bytes) {
  machine::MemoryFileSystem files;
  EXPECT_TRUE(files.PutFile(u"/a.wav", bytes));
  const auto opened = files.Open(u"/a.wav", {});
  if (!opened) {
    ADD_FAILURE() << "The file of the test does not open.";
    return platform::Failure(platform::WaveResult::kNoDevice);
  }
  return wave_file::ReadWaveFileLayout(**opened);
}

void ExpectData(const Layout& layout, std::uint64_t offset, std::uint64_t bytes) {
  ASSERT_TRUE(layout);
  EXPECT_EQ(layout->format, kRiffMono);
  EXPECT_EQ(layout->dataOffset, offset);
  EXPECT_EQ(layout->dataBytes, bytes);
}

TEST(WaveFileLayout, PlainFileHasItsDataAfterFortyFourBytes) {
  ExpectData(Read(RiffWave(kRiffMono, Samples(100))), kPlainHeader, 100);
}

TEST(WaveFileLayout, RiffLengthIsNotLookedAt) {
  auto bytes = RiffWave(kRiffMono, Samples(100));
  for (std::size_t i = 4; i < 8; ++i) bytes[i] = std::byte{0xFF};
  ExpectData(Read(bytes), kPlainHeader, 100);
}

TEST(WaveFileLayout, OtherChunksAreSkipped) {
  const auto bytes = RiffWave({Chunk("LIST", Samples(10)), Chunk("fmt ", FormatBody(kRiffMono)),
                               Chunk("fact", Samples(4)), Chunk("data", Samples(8))});
  ExpectData(Read(bytes), 12 + 18 + 24 + 12 + 8, 8);
}

TEST(WaveFileLayout, ByteAfterAnOddChunkIsSkipped) {
  const auto bytes = RiffWave(
      {Chunk("LIST", Samples(3)), Chunk("fmt ", FormatBody(kRiffMono)), Chunk("data", Samples(8))});
  ExpectData(Read(bytes), 12 + 12 + 24 + 8, 8);
}

TEST(WaveFileLayout, EmptyChunksAreSkipped) {
  const auto bytes = RiffWave(
      {Chunk("JUNK", {}), Chunk("fmt ", FormatBody(kRiffMono)), Chunk("data", Samples(8))});
  ExpectData(Read(bytes), 12 + 8 + 24 + 8, 8);
}

TEST(WaveFileLayout, DataMayComeBeforeTheFormat) {
  const auto bytes = RiffWave({Chunk("data", Samples(7)), Chunk("fmt ", FormatBody(kRiffMono))});
  ExpectData(Read(bytes), 20, 6);
}

TEST(WaveFileLayout, LongerFormatChunkIsReadByItsFirstSixteenBytes) {
  auto body = FormatBody(kRiffMono);
  body.resize(40, std::byte{9});
  ExpectData(Read(RiffWave({Chunk("fmt ", body), Chunk("data", Samples(8))})), 12 + 48 + 8, 8);
}

TEST(WaveFileLayout, FirstFormatAndFirstDataCount) {
  auto other = kRiffMono;
  other.samplesPerSecond = 8000;
  const auto bytes =
      RiffWave({Chunk("fmt ", FormatBody(kRiffMono)), Chunk("fmt ", FormatBody(other)),
                Chunk("data", Samples(8)), Chunk("data", Samples(20))});
  ExpectData(Read(bytes), 12 + 24 + 24 + 8, 8);
}

TEST(WaveFileLayout, DataThatClaimsMoreThanTheFileHasEndsWithTheFile) {
  for (const std::uint32_t claimed : {101U, 1000000U, kHugeSize}) {
    ExpectData(Read(RiffWave(
                   {Chunk("fmt ", FormatBody(kRiffMono)), Chunk("data", Samples(100), claimed)})),
               kPlainHeader, 100);
  }
}

TEST(WaveFileLayout, SampleCutInTwoIsLeftOut) {
  ExpectData(Read(RiffWave(kRiffMono, Samples(101))), kPlainHeader, 100);
  auto cut = RiffWave(kRiffMono, Samples(100));
  cut.pop_back();
  ExpectData(Read(cut), kPlainHeader, 98);
}

TEST(WaveFileLayout, DataMayBeEmpty) { ExpectData(Read(RiffWave(kRiffMono, {})), kPlainHeader, 0); }

TEST(WaveFileLayout, FileCutAnywhereInItsHeaderIsRefused) {
  const auto whole = RiffWave(kRiffMono, Samples(8));
  for (std::size_t length = 0; length < kPlainHeader; ++length) {
    EXPECT_FALSE(
        Read(RiffBytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length))))
        << length;
  }
}

TEST(WaveFileLayout, OtherNamesAreRefused) {
  for (const std::size_t at : {std::size_t{0}, std::size_t{8}, std::size_t{12}, std::size_t{36}}) {
    auto bytes = RiffWave(kRiffMono, Samples(8));
    bytes[at] = std::byte{'?'};
    EXPECT_FALSE(Read(bytes)) << at;
  }
}

TEST(WaveFileLayout, ChunkThatReachesBeyondTheFileIsRefused) {
  for (const std::uint32_t claimed : {60U, 0x7FFFFFFFU, 0xFFFFFFF0U, kHugeSize}) {
    EXPECT_FALSE(Read(RiffWave({Chunk("LIST", Samples(10), claimed),
                                Chunk("fmt ", FormatBody(kRiffMono)), Chunk("data", Samples(8))})))
        << claimed;
    EXPECT_FALSE(Read(
        RiffWave({Chunk("fmt ", FormatBody(kRiffMono), claimed + 20), Chunk("data", Samples(8))})))
        << claimed;
  }
}

TEST(WaveFileLayout, FormatChunkBelowSixteenBytesIsRefused) {
  auto body = FormatBody(kRiffMono);
  body.resize(14);
  EXPECT_FALSE(Read(RiffWave({Chunk("fmt ", body), Chunk("data", Samples(8))})));
}

TEST(WaveFileLayout, SamplesOtherThanPcmAreRefused) {
  auto format = kRiffMono;
  format.formatTag = 3;
  EXPECT_FALSE(Read(RiffWave(format, Samples(8))));
}

TEST(WaveFileLayout, SamplesWithoutSizeAreRefused) {
  auto format = kRiffMono;
  format.blockAlign = 0;
  EXPECT_FALSE(Read(RiffWave(format, Samples(8))));
}

TEST(WaveFileLayout, FileOfEndlessEmptyChunksIsRefused) {
  RiffBytes chunks;
  for (int i = 0; i < 2000; ++i) {
    const auto chunk = Chunk("JUNK", {});
    chunks.insert(chunks.end(), chunk.begin(), chunk.end());
  }
  EXPECT_FALSE(
      Read(RiffWave({chunks, Chunk("fmt ", FormatBody(kRiffMono)), Chunk("data", Samples(8))})));
}

}  // namespace
