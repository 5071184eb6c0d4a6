// A program of its own, since it replaces the allocation of the whole program.

#include <cstdlib>
#include <new>
#include <set>

#include "tests/applet/applet_fixture.h"

namespace {

/// Allocations left until one fails; below zero none does.
thread_local int allocationsLeft = -1;
thread_local bool hasFailed = false;

void* Allocate(std::size_t size) {
  if (allocationsLeft == 0) {
    allocationsLeft = -1;
    hasFailed = true;
    throw std::bad_alloc();
  }
  if (allocationsLeft > 0) {
    --allocationsLeft;
  }
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

class ScarceMemory : public AppletFixture {};

TEST_F(ScarceMemory, StartUpGoesOnWithoutWhatThereIsNoMemoryFor) {
  std::set<Texts> shownTabs;
  bool isEverWithoutSheet = false;
  bool hasCompleted = false;
  for (int number = 0; !hasCompleted; ++number) {
    applet::VoxtrelApp app(m_machine.Get(), m_module, applet::WriteRecord<applet::NewCplInfo>);
    hasFailed = false;
    allocationsLeft = number;
    EXPECT_TRUE(app.InitInstance());
    allocationsLeft = -1;
    hasCompleted = !hasFailed;

    Texts tabs;
    m_machine.ui.SetSheetStory([&](headless::HeadlessSheet& sheet) { tabs = sheet.GetTabTexts(); });
    EXPECT_EQ(Open(app), 0);
    isEverWithoutSheet = isEverWithoutSheet || tabs.empty();
    shownTabs.insert(tabs);
  }
  EXPECT_TRUE(isEverWithoutSheet);
  EXPECT_EQ(shownTabs, (std::set<Texts>{{}, {u"About"}, {u"Learning"}, {u"Learning", u"About"}}));
  EXPECT_TRUE(m_machine.ui.GetMessages().empty());
}

}  // namespace
