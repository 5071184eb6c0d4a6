#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/host/cli/command_fixture.h"

/// A store with names that were taught from the samples, and the contacts that they belong to.
class DialFixture : public CommandFixture {
 protected:
  DialFixture() {
    std::ofstream(Contacts()) << Card("Berg;Anna", "CELL", "+1 202 555 0101")
                              << Card("Ross;Bob", "CELL", "+1 202 555 0102")
                              << Card("Diaz;Carla", "HOME", "+1 202 555 0103");
  }

  [[nodiscard]] static std::string Card(const std::string& name, const std::string& kind,
                                        const std::string& number) {
    return "BEGIN:VCARD\r\nVERSION:3.0\r\nN:" + name + ";;;\r\nTEL;TYPE=" + kind + ":" + number +
           "\r\nEND:VCARD\r\n";
  }
  [[nodiscard]] std::string Contacts() const { return Path("contacts.vcf"); }
  [[nodiscard]] static std::string Sample(const std::string& name) {
    return std::string(VOXTREL_SAMPLES_DIR) + "/" + name + ".wav";
  }

  void Teach(const std::string& contact, const std::string& sample) const {
    const auto run = Run({"--contacts", Contacts(), "--microphone", CopySample(sample + ".wav"),
                          "--speaker", Path("heard.wav"), "tags", "learn", "--contact", contact});
    ASSERT_EQ(run.exitCode, 0) << run.err;
  }

  /// Returns the words of `voxtrel dial`, which hears a sample, and what follows them.
  [[nodiscard]] std::vector<std::string> DialWords(const std::string& sample,
                                                   std::vector<std::string> rest = {}) const {
    rest.insert(rest.begin(),
                {VOXTREL_PROGRAM, "--root", Path("root"), "--contacts", Contacts(), "--microphone",
                 Sample(sample), "--speaker", Path("heard.wav"), "dial", "--way", "print"});
    return rest;
  }
  [[nodiscard]] support::ProgramRun Dial(const std::string& sample,
                                         std::vector<std::string> rest = {}) const {
    return support::RunProgram(DialWords(sample, std::move(rest)), Environment());
  }
  /// Returns the recording of the tag that was taught first.
  [[nodiscard]] std::filesystem::path FirstRecording() const {
    std::vector<std::filesystem::path> files;
    for (const auto& entry :
         std::filesystem::directory_iterator(std::filesystem::path(Path("root")) / "Program Files" /
                                             "Zedra Tech." / "Zedra Voxtrel" / "Voxtrel_wav")) {
      files.push_back(entry.path());
    }
    std::ranges::sort(files, {}, [](const auto& path) { return std::stol(path.stem()); });
    return files.at(0);
  }
  [[nodiscard]] std::size_t CountTags() const {
    const auto run = Run({"--contacts", Contacts(), "--json", "tags", "list"});
    return nlohmann::json::parse(run.out, nullptr, false).size();
  }
};
