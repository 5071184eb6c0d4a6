#include "host/cli/header_code.h"

#include <fmt/format.h>

namespace cli {
namespace {

const char* Explain(int code) {
  switch (code) {
    case voicemath::kTooShort:
      return "shorter than the header of a wave file";
    case voicemath::kNoRiff:
    case voicemath::kNoWave:
      return "not a wave file";
    case voicemath::kNotPcm:
      return "not in the PCM format";
    case voicemath::kNotMono:
      return "not mono";
    case voicemath::kNot16Bit:
      return "not 16 bits a sample";
    case voicemath::kNoData:
      return "its samples are not found near its beginning, or it is shorter than it says";
    default:
      return "accepted";
  }
}

}  // namespace

int CheckHeader(voicemath::CVoiceMathematics& mathematics, const std::u16string& path) {
  if (!mathematics.m_file.Open(path, framework::CFile::modeRead)) {
    return kFileNotOpened;
  }
  const int code = mathematics.OpenWaveData();
  mathematics.m_file.Close();
  return code;
}

std::string ExplainHeaderCode(int code) {
  return code == kFileNotOpened ? "it cannot be opened"
                                : fmt::format("{} (code {})", Explain(code), code);
}

}  // namespace cli
