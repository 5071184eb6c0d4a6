#include "backends/posix/posix_process.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "tests/backends/posix/child_process.h"
#include "tests/support/temp_folder.h"

namespace {

using posix_test::ChildProcess;
using posix_test::ToTest;

TEST(PosixProcess, EndsWithItsExitCode) {
  ChildProcess child([](const ToTest&) {
    posix::PosixProcess().End(7);
    return 1;
  });
  EXPECT_EQ(child.Wait(), 7);
}

TEST(PosixProcess, EndsFromAnyThreadWhileOthersRun) {
  ChildProcess child([](const ToTest&) {
    std::thread([] { posix::PosixProcess().End(7); }).detach();
    for (;;) {
      ::pause();
    }
    return 1;
  });
  EXPECT_EQ(child.Wait(), 7);
}

TEST(PosixProcess, WhatWasPrintedIsNotLost) {
  const support::TempFolder folder;
  const std::string path = folder.Path() / "out";
  ChildProcess child([&](const ToTest&) {
    if (std::freopen(path.c_str(), "w", stdout) == nullptr) {
      return 1;
    }
    std::fputs("last words", stdout);
    posix::PosixProcess().End(0);
    return 2;
  });
  ASSERT_EQ(child.Wait(), 0);
  std::string words;
  std::getline(std::ifstream(path), words);
  EXPECT_EQ(words, "last words");
}

TEST(PosixProcess, AThreadThatWaitsForInputDoesNotKeepItFromEnding) {
  ChildProcess child([](const ToTest&) {
    int ends[2] = {};
    if (::pipe(ends) != 0 || ::dup2(ends[0], STDIN_FILENO) < 0) {
      return 1;
    }
    std::thread([] { std::getchar(); }).detach();
    std::thread([] { posix::PosixProcess().End(7); }).join();
    return 2;
  });
  EXPECT_EQ(child.Wait(), 7);
}

TEST(PosixProcess, RunsNoExitHandlers) {
  ChildProcess child([](const ToTest&) {
    std::atexit([] { ::_exit(3); });
    posix::PosixProcess().End(7);
    return 1;
  });
  EXPECT_EQ(child.Wait(), 7);
}

}  // namespace
