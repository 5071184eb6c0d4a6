#include "host/applet/late_presentation.h"

#include <utility>

namespace applet {

LatePresentation::LatePresentation(PresentationMaker make, platform::Clock& clock,
                                   platform::Threads& threads)
    : m_make(std::move(make)), m_plainClock(clock), m_plainThreads(threads) {}

Presentation& LatePresentation::Get() {
  if (!m_presentation) {
    m_presentation = m_make(m_plainClock, m_plainThreads);
  }
  return *m_presentation;
}

platform::MessageAnswer LatePresentation::ShowMessage(const platform::MessageBox& box) {
  return Get().GetUi().ShowMessage(box);
}

void LatePresentation::Beep(platform::Sound sound) { Get().GetUi().Beep(sound); }

void LatePresentation::SetCursor(platform::Cursor cursor) { Get().GetUi().SetCursor(cursor); }

int LatePresentation::RunDialog(const resources::DialogTemplate& dialog,
                                platform::DialogHandler& handler) {
  return Get().GetUi().RunDialog(dialog, handler);
}

bool LatePresentation::RunSheet(std::u16string_view caption,
                                std::span<const platform::SheetPage> pages,
                                platform::SheetHandler& handler) {
  return Get().GetUi().RunSheet(caption, pages, handler);
}

std::uint32_t LatePresentation::GetTickCount() { return m_plainClock.GetTickCount(); }

std::int64_t LatePresentation::GetUnixTime() { return m_plainClock.GetUnixTime(); }

void LatePresentation::Sleep(std::uint32_t milliseconds) {
  (m_presentation ? m_presentation->GetClock() : m_plainClock).Sleep(milliseconds);
}

platform::Threads& LatePresentation::GetThreads() {
  return m_presentation ? m_presentation->GetThreads() : m_plainThreads;
}

std::unique_ptr<platform::Thread> LatePresentation::Start(std::function<void()> body,
                                                          platform::ThreadStart start) {
  return GetThreads().Start(std::move(body), start);
}

std::unique_ptr<platform::Event> LatePresentation::CreateManualResetEvent() {
  return GetThreads().CreateManualResetEvent();
}

platform::CreatedMutex LatePresentation::CreateNamedMutex(std::u16string_view name) {
  return GetThreads().CreateNamedMutex(name);
}

}  // namespace applet
