#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace cli {

/// What stands after `voxtrel dial`.
struct DialOptions {
  std::string to;      ///< A contact, as `tags learn --contact` takes it. Empty: hear a name.
  std::string number;  ///< The kind of number, such as "Mobile". Empty: the first one.
  std::string way;     ///< The word of a way. Empty: the stored one.
  std::string modem;   ///< The serial device. Empty: that of the stored port.
  bool hangUp = false;
  bool quick = false;
  std::vector<std::string> recognize;  ///< Wave files.
  std::string evaluate;                ///< A folder.
  int takes = 1;
  std::string chosenWay;  ///< Of `way use`.
};

/// The commands below `voxtrel dial`.
struct DialCommands {
  CLI::App* listWays;
  CLI::App* useWay;
};

/// Gives `voxtrel dial`, or the program that it starts, its options and commands. So both take the
/// same line. `options` outlive the command.
DialCommands AddDialOptions(CLI::App& command, DialOptions& options);

}  // namespace cli
