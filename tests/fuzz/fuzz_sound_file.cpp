// Takes a wave file of arbitrary bytes for the microphone and for a sound to play: what is heard
// and played are bytes of the file and silence after them.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "audio/wave_device.h"
#include "backends/wave_file/file_sound.h"
#include "backends/wave_file/riff_file.h"
#include "tests/fuzz/require.h"
#include "tests/support/headless_platform.h"

namespace {

using Bytes = std::span<const std::byte>;

constexpr std::u16string_view kSound = u"\\sound.wav";
constexpr std::u16string_view kRecording = u"\\recording.wav";
constexpr std::size_t kHeader = 44;
constexpr std::uint32_t kMilliseconds = 100;
constexpr platform::WaveFormat kRecorded{.formatTag = 1,
                                         .channels = 1,
                                         .samplesPerSecond = 11025,
                                         .averageBytesPerSecond = 22050,
                                         .blockAlign = 2,
                                         .bitsPerSample = 16,
                                         .extraSize = 0};

platform::Result<wave_file::WaveFileLayout, platform::WaveResult> ReadLayout(
    platform::FileSystem& files, Bytes file) {
  const auto opened = files.Open(kSound, {.access = platform::FileAccess::kRead,
                                          .share = platform::FileShare::kRead,
                                          .creation = platform::FileCreation::kOpenExisting});
  const auto layout = wave_file::ReadWaveFileLayout(**opened);
  if (layout) {
    Require(
        layout->dataOffset <= file.size() && layout->dataBytes <= file.size() - layout->dataOffset,
        "the samples lie within the file");
    Require(layout->format.blockAlign > 0 && layout->dataBytes % layout->format.blockAlign == 0,
            "no sample is cut");
  }
  return layout;
}

/// `heard` from the sample bytes `from` on.
void RequireHeard(Bytes heard, Bytes sound, std::size_t from) {
  const Bytes rest = sound.subspan(std::min(from, sound.size()));
  const std::size_t count = std::min(rest.size(), heard.size());
  Require(std::ranges::equal(heard.first(count), rest.first(count)), "what is heard is the sound");
  Require(std::ranges::all_of(heard.subspan(count), [](std::byte b) { return b == std::byte{0}; }),
          "and then silence");
}

void Listen(wave_file::FileWaveIn& microphone, const wave_file::WaveFileLayout& layout,
            Bytes sound) {
  const auto opened = microphone.Open(layout.format);
  Require(opened.has_value(), "a sound can be heard in its own format");
  std::vector<std::byte> memory(1000);
  for (int round = 0; round < 3; ++round) {
    platform::WaveHeader header{.data = memory.data(),
                                .bufferLength = static_cast<std::uint32_t>(memory.size())};
    Require((*opened)->Prepare(header) == platform::WaveResult::kOk &&
                (*opened)->AddBuffer(header) == platform::WaveResult::kOk &&
                (*opened)->Start() == platform::WaveResult::kOk &&
                (*opened)->Unprepare(header) == platform::WaveResult::kOk &&
                header.bytesRecorded == memory.size(),
            "a buffer is filled at once");
    RequireHeard(memory, sound, static_cast<std::size_t>(round) * memory.size());
  }
}

void Record(support::HeadlessPlatform& machine, wave_file::FileWaveIn& microphone, Bytes sound,
            bool isHeard) {
  const platform::Platform all = machine.Get();
  audio::WaveDevice device({all.files, microphone, all.clock, all.threads, all.process, all.ui,
                            all.registry, all.contacts, all.waveOut, all.shell});
  device.SetFormat(kRecorded.bitsPerSample, kRecorded.samplesPerSecond);
  const int code = device.Record(kRecording, kMilliseconds);
  Require((code == audio::kRecorded) == isHeard, "the recorder takes its own format alone");
  const auto recording = machine.files.GetFile(kRecording);
  if (isHeard) {
    Require(recording && recording->size() >= kHeader, "a recording has a header");
    RequireHeard(Bytes(*recording).subspan(kHeader), sound, 0);
  }
}

void Play(support::HeadlessPlatform& machine, Bytes file) {
  audio::WaveDevice device(machine.Get());
  const int code = device.Play(kSound);
  const auto played = machine.waveOut.GetPlayed();
  // No output takes some formats, and none is prepared for a sound of no bytes.
  Require(
      (code >= audio::kPlayed && code <= audio::kOutputNotOpened) || code == audio::kNotPrepared,
      "a code that tells of the file");
  Require(played.size() == (code == audio::kPlayed ? 1U : 0U), "a refused sound is not played");
  Require((code == audio::kSoundTooShort) == (file.size() < kHeader), "a header has its length");
  if (code == audio::kPlayed) {
    Require(played[0].format.channels > 0 && played[0].format.samplesPerSecond > 0 &&
                played[0].format.blockAlign > 0,
            "what is played has an end");
    const std::vector<std::byte>& bytes = played[0].bytes;
    Require(bytes.empty() ||
                std::search(file.begin(), file.end(), bytes.begin(), bytes.end()) != file.end(),
            "what is played are bytes of the file");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Bytes file = std::as_bytes(std::span(data, size));
  support::HeadlessPlatform machine;
  Require(machine.files.PutFile(kSound, file), "the file can be made");
  const auto layout = ReadLayout(machine.files, file);
  const Bytes sound = layout ? file.subspan(static_cast<std::size_t>(layout->dataOffset),
                                            static_cast<std::size_t>(layout->dataBytes))
                             : Bytes();
  wave_file::FileWaveIn microphone(machine.files, std::u16string(kSound));
  if (layout) {
    Listen(microphone, *layout, sound);
  }
  Record(machine, microphone, sound, layout && layout->format == kRecorded);
  Play(machine, file);
  Require(machine.files.CountOpenHandles() == 0 && machine.waveOut.CountOpenDevices() == 0,
          "nothing stays open");
  Require(std::ranges::equal(*machine.files.GetFile(kSound), file), "the sound is left alone");
  return 0;
}
