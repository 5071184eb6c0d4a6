#include "tests/backends/sqlite/faulty_file_layer.h"

#include <sqlite3.h>

#include <new>

namespace support {

namespace {

constexpr const char* kName = "faulty";

struct State {
  sqlite3_vfs layer{};
  sqlite3_vfs* system = nullptr;
  std::uint32_t failingCall = 0;  ///< 0: none.
  std::uint32_t calls = 0;
  std::uint32_t syncs = 0;
  int fault = SQLITE_OK;
  bool hasFailed = false;
  bool indexFails = false;
  bool databaseIsReadOnly = false;
  bool mediumIsReadOnly = false;
};

State& GetState() {
  static State state;
  return state;
}

/// Counts one writing call.
int CountCall() {
  State& state = GetState();
  ++state.calls;
  if (state.failingCall == 0 || state.calls < state.failingCall) {
    return SQLITE_OK;
  }
  state.hasFailed = true;
  return state.fault;
}

/// The memory of the system's file follows directly.
struct File {
  sqlite3_file base;
  sqlite3_file* system;
};

sqlite3_file* SystemFile(sqlite3_file* file) { return reinterpret_cast<File*>(file)->system; }

const sqlite3_io_methods* Methods(sqlite3_file* file) { return SystemFile(file)->pMethods; }

int Write(sqlite3_file* file, const void* data, int amount, sqlite3_int64 offset) {
  const int fault = CountCall();
  return fault == SQLITE_OK ? Methods(file)->xWrite(SystemFile(file), data, amount, offset) : fault;
}

int Truncate(sqlite3_file* file, sqlite3_int64 size) {
  const int fault = CountCall();
  return fault == SQLITE_OK ? Methods(file)->xTruncate(SystemFile(file), size)
                            : SQLITE_IOERR_TRUNCATE;
}

int Sync(sqlite3_file*, int) {
  ++GetState().syncs;
  return CountCall() == SQLITE_OK ? SQLITE_OK : SQLITE_IOERR_FSYNC;
}

int MapShared(sqlite3_file* file, int page, int pageSize, int extend, void volatile** memory) {
  if (extend != 0 && GetState().indexFails) {
    return SQLITE_IOERR_SHMSIZE;
  }
  const int fault = extend == 0 ? SQLITE_OK : CountCall();
  if (fault != SQLITE_OK) {
    return fault == SQLITE_FULL ? SQLITE_IOERR_SHMSIZE : SQLITE_IOERR_SHMMAP;
  }
  return Methods(file)->xShmMap(SystemFile(file), page, pageSize, extend, memory);
}

const sqlite3_io_methods kMethods{
    3,
    [](sqlite3_file* file) { return Methods(file)->xClose(SystemFile(file)); },
    [](sqlite3_file* file, void* data, int amount, sqlite3_int64 offset) {
      return Methods(file)->xRead(SystemFile(file), data, amount, offset);
    },
    Write,
    Truncate,
    Sync,
    [](sqlite3_file* file, sqlite3_int64* size) {
      return Methods(file)->xFileSize(SystemFile(file), size);
    },
    [](sqlite3_file* file, int lock) { return Methods(file)->xLock(SystemFile(file), lock); },
    [](sqlite3_file* file, int lock) { return Methods(file)->xUnlock(SystemFile(file), lock); },
    [](sqlite3_file* file, int* result) {
      return Methods(file)->xCheckReservedLock(SystemFile(file), result);
    },
    [](sqlite3_file* file, int operation, void* argument) {
      return Methods(file)->xFileControl(SystemFile(file), operation, argument);
    },
    [](sqlite3_file* file) { return Methods(file)->xSectorSize(SystemFile(file)); },
    [](sqlite3_file* file) { return Methods(file)->xDeviceCharacteristics(SystemFile(file)); },
    MapShared,
    [](sqlite3_file* file, int offset, int count, int flags) {
      return Methods(file)->xShmLock(SystemFile(file), offset, count, flags);
    },
    [](sqlite3_file* file) { Methods(file)->xShmBarrier(SystemFile(file)); },
    [](sqlite3_file* file, int deleteFlag) {
      return Methods(file)->xShmUnmap(SystemFile(file), deleteFlag);
    },
    [](sqlite3_file* file, sqlite3_int64 offset, int amount, void** page) {
      return Methods(file)->xFetch(SystemFile(file), offset, amount, page);
    },
    [](sqlite3_file* file, sqlite3_int64 offset, void* page) {
      return Methods(file)->xUnfetch(SystemFile(file), offset, page);
    },
};

int Open(sqlite3_vfs*, const char* name, sqlite3_file* base, int flags, int* outFlags) {
  const State& state = GetState();
  auto* const file = new (base) File{};
  file->system = reinterpret_cast<sqlite3_file*>(file + 1);
  constexpr int kWriting = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  const bool isDatabase = (flags & SQLITE_OPEN_MAIN_DB) != 0;
  if (state.mediumIsReadOnly || (state.databaseIsReadOnly && isDatabase)) {
    flags = (flags & ~(kWriting | SQLITE_OPEN_EXCLUSIVE)) | SQLITE_OPEN_READONLY;
  }
  const int result = state.system->xOpen(state.system, name, file->system, flags, outFlags);
  file->base.pMethods = file->system->pMethods == nullptr ? nullptr : &kMethods;
  return result;
}

}  // namespace

FaultyFileLayer::FaultyFileLayer() {
  State& state = GetState();
  state = {};
  state.system = sqlite3_vfs_find(nullptr);
  state.layer = *state.system;
  state.layer.zName = kName;
  state.layer.szOsFile = static_cast<int>(sizeof(File)) + state.system->szOsFile;
  state.layer.xOpen = Open;
  sqlite3_vfs_register(&state.layer, 0);
}

FaultyFileLayer::~FaultyFileLayer() { sqlite3_vfs_unregister(&GetState().layer); }

std::string FaultyFileLayer::Name() const { return kName; }

void FaultyFileLayer::FailFrom(std::uint32_t number, Fault fault) {
  State& state = GetState();
  state.calls = 0;
  state.failingCall = number;
  state.fault = fault == Fault::kDiskFull ? SQLITE_FULL : SQLITE_IOERR_WRITE;
  state.hasFailed = false;
}

void FaultyFileLayer::FailIndex() { GetState().indexFails = true; }

void FaultyFileLayer::Heal() {
  GetState().failingCall = 0;
  GetState().indexFails = false;
}

bool FaultyFileLayer::HasFailed() const { return GetState().hasFailed; }

std::uint32_t FaultyFileLayer::CountSyncs() const { return GetState().syncs; }

void FaultyFileLayer::MakeReadOnly(ReadOnly files) {
  GetState().databaseIsReadOnly = true;
  GetState().mediumIsReadOnly = files == ReadOnly::kWholeMedium;
}

}  // namespace support
