#pragma once

#include <span>
#include <string>

#include "voicemath/template_file.h"

namespace cli {

/// Why a template file was not read, in words.
[[nodiscard]] std::string ExplainTemplateFile(voicemath::TemplateFileError error);

/// The bands of a template as a picture, line by line.
void PrintPicture(std::span<const float> values);

}  // namespace cli
