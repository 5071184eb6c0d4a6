#pragma once

#include "platform/clock.h"
#include "platform/contacts_store.h"
#include "platform/file_system.h"
#include "platform/process.h"
#include "platform/registry.h"
#include "platform/shell.h"
#include "platform/threads.h"
#include "platform/ui.h"
#include "platform/wave_devices.h"

namespace platform {

/// Everything that the system needs of the machine. A host or a test chooses the back ends, owns
/// them and hands this on. They outlive everything that gets it.
struct Platform {
  FileSystem& files;
  WaveIn& waveIn;
  Clock& clock;
  Threads& threads;
  Process& process;
  Ui& ui;
  Registry& registry;
  ContactsStore& contacts;
  WaveOut& waveOut;
  Shell& shell;
};

}  // namespace platform
