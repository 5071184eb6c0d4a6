#pragma once

#include <CLI/App.hpp>
#include <span>
#include <string>

#include "host/cli/session.h"
#include "voicemath/template_file.h"

namespace cli {

/// voxtrel template learn|process
void AddTemplateMakers(CLI::App& group, Session& session);

/// Why a template file was not read, in words.
[[nodiscard]] std::string ExplainTemplateFile(voicemath::TemplateFileResult result);

/// The bands of a template as a picture, line by line.
void PrintPicture(std::span<const float> values);

}  // namespace cli
