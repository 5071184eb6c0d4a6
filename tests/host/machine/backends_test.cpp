#include "host/machine/backends.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>

#include "storage/device_paths.h"
#include "storage/folders.h"
#include "storage/registry_keys.h"
#include "tests/support/temp_folder.h"

namespace {

using machine::Options;

/// Sets variables of this process, and puts back what they were.
class Environment {
 public:
  ~Environment() {
    for (const auto& [name, value] : m_old) {
      Put(name, value);
    }
  }

  void Set(const std::string& name, const std::optional<std::string>& value) {
    const char* old = std::getenv(name.c_str());
    m_old.try_emplace(name, old == nullptr ? std::nullopt : std::optional<std::string>(old));
    Put(name, value);
  }

 private:
  static void Put(const std::string& name, const std::optional<std::string>& value) {
    value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
  }

  std::map<std::string, std::optional<std::string>> m_old;
};

class Backends : public testing::Test {
 protected:
  Backends() {
    m_environment.Set("XDG_DATA_HOME", std::nullopt);
    m_environment.Set("HOME", m_folder.Path().string());
  }

  support::TempFolder m_folder;
  Environment m_environment;
  Options m_options;
};

TEST_F(Backends, TheRootLiesInTheUsersDataFolder) {
  EXPECT_EQ(machine::Backends(m_options).GetRoot(), m_folder.Path() / ".local/share/voxtrel");
  m_environment.Set("XDG_DATA_HOME", "/data");
  EXPECT_EQ(machine::Backends(m_options).GetRoot(), "/data/voxtrel");
}

TEST_F(Backends, ARelativeDataFolderDoesNotCount) {
  m_environment.Set("XDG_DATA_HOME", "data");
  EXPECT_EQ(machine::Backends(m_options).GetRoot(), m_folder.Path() / ".local/share/voxtrel");
}

TEST_F(Backends, AUserWithoutAHomeHasNoRoot) {
  for (const auto& home : {std::optional<std::string>(), std::optional<std::string>(""),
                           std::optional<std::string>("home")}) {
    m_environment.Set("HOME", home);
    machine::Backends backends(m_options);
    EXPECT_FALSE(backends.HasRoot()) << home.value_or("unset");
    backends.MakeRoot();
    EXPECT_FALSE(backends.GetFiles().CreateFolder(storage::kProgramFilesFolder));
    EXPECT_FALSE(backends.GetRegistry().CreateKey(u"Software\\Zedra\\Zedra Voxtrel"));
  }
}

TEST_F(Backends, ARootThatIsNamedCountsFirst) {
  m_environment.Set("HOME", std::nullopt);
  m_options.root = (m_folder.Path() / "root").string();
  const machine::Backends backends(m_options);
  EXPECT_TRUE(backends.HasRoot());
  EXPECT_EQ(backends.GetRoot(), m_folder.Path() / "root");
  EXPECT_EQ(std::filesystem::path(backends.GetRegistryName()).parent_path(), backends.GetRoot());
}

TEST_F(Backends, ARelativeRootIsMeantFromTheCurrentFolder) {
  m_options.root = "root";
  EXPECT_EQ(machine::Backends(m_options).GetRoot(), std::filesystem::current_path() / "root");
}

TEST_F(Backends, KeepTheRootThatWasFoundFirst) {
  const machine::Backends backends(m_options);
  const std::filesystem::path root = backends.GetRoot();
  m_environment.Set("HOME", "/elsewhere");
  EXPECT_EQ(backends.GetRoot(), root);
}

TEST_F(Backends, FilesAndSettingsLieBelowTheRoot) {
  m_options.root = (m_folder.Path() / "root").string();
  machine::Backends backends(m_options);
  backends.MakeRoot();
  ASSERT_TRUE(backends.GetFiles().CreateFolder(storage::kProgramFilesFolder));
  EXPECT_TRUE(std::filesystem::is_directory(m_folder.Path() / "root/Program Files"));
  EXPECT_EQ(backends.ToHostPath(storage::kProgramFilesFolder), m_options.root + "/Program Files");
  ASSERT_TRUE(backends.GetRegistry().OpenKey(storage::kSetupKey));
  EXPECT_TRUE(std::filesystem::exists(backends.GetRegistryName()));
}

TEST_F(Backends, EverythingInTheRootBelongsToTheUserAlone) {
  namespace fs = std::filesystem;
  const mode_t before = ::umask(0);
  m_options.root = (m_folder.Path() / "data/root").string();
  machine::Backends backends(m_options);
  backends.MakeRoot();
  storage::CreateInstallFolders(backends.GetFiles());
  const auto made = backends.GetRegistry().CreateKey(u"Software\\Test");
  const auto mutex = backends.GetThreads().CreateNamedMutex(u"Test");
  ::umask(before);
  EXPECT_TRUE(made);
  std::size_t found = 0;
  for (const auto& entry : fs::recursive_directory_iterator(m_folder.Path())) {
    const auto rights = entry.status().permissions();
    EXPECT_EQ(rights, entry.is_directory() ? fs::perms(0700) : fs::perms(0600)) << entry.path();
    ++found;
  }
  EXPECT_GE(found, 6U) << "data, root, the database with its two files, the lock";
}

TEST_F(Backends, WhatAnEarlierVersionLeftToTheUmaskIsTightened) {
  namespace fs = std::filesystem;
  m_options.root = (m_folder.Path() / "root").string();
  const fs::path voices = m_options.root + "/Program Files/Zedra Tech./Zedra Voxtrel/Voxtrel_wav";
  const mode_t before = ::umask(0);
  fs::create_directories(voices);
  std::ofstream(voices / "1.wav") << "voice";
  for (const char* name : {"registry.db", "registry.db-journal", ".ZedraD.lock"}) {
    std::ofstream(fs::path(m_options.root) / name);
  }
  std::ofstream(m_options.root + "/notes.txt") << "of the user";
  ::umask(before);
  const machine::Backends backends(m_options);
  backends.MakeRoot();
  for (fs::path path = voices; path != m_folder.Path(); path = path.parent_path()) {
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0700)) << path;
  }
  EXPECT_EQ(fs::status(voices / "1.wav").permissions(), fs::perms(0600));
  for (const char* name : {"registry.db", "registry.db-journal", ".ZedraD.lock"}) {
    EXPECT_EQ(fs::status(fs::path(m_options.root) / name).permissions(), fs::perms(0600)) << name;
  }
  EXPECT_EQ(fs::status(m_options.root + "/notes.txt").permissions(), fs::perms(0666));
}

TEST_F(Backends, AReaderTightensNothing) {
  m_options.root = (m_folder.Path() / "root").string();
  std::filesystem::create_directory(m_options.root);
  std::filesystem::permissions(m_options.root, std::filesystem::perms(0755));
  machine::Backends backends(m_options);
  backends.ChangeNothing();
  backends.MakeRoot();
  EXPECT_EQ(std::filesystem::status(m_options.root).permissions(), std::filesystem::perms(0755));
}

TEST_F(Backends, TakeTheirOptionsFromTheEnvironment) {
  m_environment.Set("VOXTREL_ROOT", "/r");
  m_environment.Set("VOXTREL_MICROPHONE", "m.wav");
  m_environment.Set("VOXTREL_SPEAKER", "s.wav");
  m_environment.Set("VOXTREL_CONTACTS", std::nullopt);
  const Options options = machine::ReadOptions();
  EXPECT_EQ(options.root, "/r");
  EXPECT_EQ(options.microphone, "m.wav");
  EXPECT_EQ(options.speaker, "s.wav");
  EXPECT_EQ(options.contacts, "");
}

TEST_F(Backends, AMicrophoneFileTakesThePlaceOfTheMicrophone) {
  m_options.microphone = std::string(VOXTREL_SAMPLES_DIR) + "/anna_1.wav";
  machine::Backends backends(m_options);
  EXPECT_EQ(backends.GetWaveIn().GetDeviceCount(), 1U);
}

}  // namespace
