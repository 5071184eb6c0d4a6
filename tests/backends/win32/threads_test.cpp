#include <gtest/gtest.h>

#include "backends/win32/win32_process.h"
#include "backends/win32/win32_threads.h"
#include "backends/win32/windows.h"

#include <shellapi.h>

namespace {

using platform::ThreadError;

TEST(Win32Mutex, OfOneRootFolderIsHeldOnceAndThatOfAnotherOneIsFree) {
  win32::Win32Threads here(u"C:/Users/Ann/Voxtrel");
  win32::Win32Threads again(u"c:\\users\\ann\\voxtrel");
  win32::Win32Threads elsewhere(u"C:/Users/Ann/Other");
  auto held = here.CreateNamedMutex(u"instance");
  ASSERT_TRUE(held);
  const auto second = again.CreateNamedMutex(u"instance");
  ASSERT_FALSE(second) << "It is the same folder.";
  EXPECT_EQ(second.error(), ThreadError::kHeld);
  EXPECT_TRUE(elsewhere.CreateNamedMutex(u"instance"));
  EXPECT_TRUE(here.CreateNamedMutex(u"another"));
  held->reset();
  EXPECT_TRUE(again.CreateNamedMutex(u"instance"));
}

TEST(Win32Mutex, HasANameThatTheSystemTakes) {
  const std::u16string name = win32::NameOfObject(std::u16string(1000, u'a'), u"instance");
  EXPECT_LT(name.size(), std::size_t{MAX_PATH});
  EXPECT_EQ(name.find(u'\\', std::u16string(u"Global\\").size()), std::u16string::npos);
}

TEST(CommandLine, IsReadAgainAsItWas) {
  const std::vector<std::u16string> words{u"a",   u"",       u"b c",        u"d\"e",
                                          u"f\\", u"g\\\"h", u"\\\\i j\\\\"};
  int count = 0;
  wchar_t** const read = ::CommandLineToArgvW(
      reinterpret_cast<const wchar_t*>(win32::JoinCommandLine(words).c_str()), &count);
  ASSERT_NE(read, nullptr);
  std::vector<std::u16string> again;
  for (int i = 0; i < count; ++i) {
    again.emplace_back(reinterpret_cast<const char16_t*>(read[i]));
  }
  ::LocalFree(static_cast<void*>(read));
  EXPECT_EQ(again, words);
}

}  // namespace
