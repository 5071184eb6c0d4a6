#pragma once

#include "tests/tags/page_fixture.h"
#include "tests/tags/watched_machine.h"

/// The Learning page on a machine that reports what it is asked for.
class WatchedPage : public PageFixture {
 protected:
  // What the page refers to goes before the page's own fixture does.
  ~WatchedPage() override { Close(); }

  headless::HeadlessDialog& OpenWatched() {
    return OpenOn({m_files, m_machine.waveIn, m_clock, m_machine.simulation, m_machine.process,
                   m_ui, m_machine.registry, m_contacts, m_waveOut, m_machine.shell});
  }
  void Close() {
    m_dialog.reset();
    m_page.reset();
  }

  WatchedFiles m_files{m_machine.files};
  WatchedContacts m_contacts{m_machine.contacts};
  support::WatchedClock m_clock{m_machine.simulation};
  WatchedUi m_ui{m_machine.ui};
  WatchedWaveOut m_waveOut{m_machine.waveOut};
};
