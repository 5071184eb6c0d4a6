#include "host/connection/arguments.h"

#include <CLI/CLI.hpp>

#include "host/machine/usage.h"

namespace connection {

std::variant<std::string, int> ParseArguments(int argc, const char* const* argv) {
  CLI::App app("The settings of the dialer's serial port, in a window.", "voxtrel-connection");
  app.footer(
      "Examples:\n  voxtrel-connection ~/.local/share/voxtrel    as `voxtrel connection` does");
  app.set_version_flag("--version", "voxtrel-connection " VOXTREL_VERSION);
  std::string root;
  app.add_option("ROOT", root, "The folder of the voice tags and settings")->required();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return machine::ExplainUsage(app, error);
  }
  return root;
}

}  // namespace connection
