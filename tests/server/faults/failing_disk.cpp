#include "tests/server/faults/failing_disk.h"

#include <sqlite3.h>
#include <unistd.h>

#include <deque>
#include <random>
#include <utility>

#include "tests/server/faults/unsynced_writes.h"

namespace qdclgl::server::testing {

namespace {

using Fault = FailingDisk::Fault;

// One disk for all files; the tests that use it have one thread.
struct Disk {
  sqlite3_vfs* real = nullptr;
  int operations = 0;  // since FailAt
  int until_heal = 0;  // of them
  int failing = 0;     // the operation that fails; 0: none
  Fault fault = Fault::kFullOnce;
  bool has_failed = false;
  bool is_done = false;
  std::deque<UnsyncedWrites> files = {};  // whose writes can be lost
};

Disk disk;

struct File {
  sqlite3_file base;
  sqlite3_file* real;
  UnsyncedWrites* writes;  // null: they last
};

UnsyncedWrites* Writes(sqlite3_file* file) { return reinterpret_cast<File*>(file)->writes; }

sqlite3_file* Real(sqlite3_file* file) { return reinterpret_cast<File*>(file)->real; }

bool IsForGood() {
  return disk.fault == Fault::kFullForGood || disk.fault == Fault::kBrokenForGood;
}
bool IsFull() { return disk.fault == Fault::kFullOnce || disk.fault == Fault::kFullForGood; }

bool FailsNow() {
  ++disk.operations;
  if (disk.has_failed) return IsForGood();
  if (disk.operations != disk.failing) return false;
  disk.has_failed = true;
  return true;
}

bool IsPower() { return disk.fault > Fault::kStop; }

void LosePower() {
  const Survivors survivors = disk.fault == Fault::kPowerTakesAll ? Survivors::kNone
                              : disk.fault == Fault::kPowerTakesHalf
                                  ? Survivors::kAllAndHalfOfTheLast
                                  : Survivors::kAny;
  std::mt19937 random(static_cast<unsigned>(disk.failing));
  for (UnsyncedWrites& file : disk.files) file.LosePower(survivors, random);
}

void StopIfWanted() {
  if (!FailingDisk::IsEnd(disk.fault)) return;
  if (IsPower()) LosePower();
  _exit(disk.is_done ? FailingDisk::kStopBehindStatus : FailingDisk::kStopStatus);
}

// The record of the writes to a file, from its first opening on.
UnsyncedWrites* WatchedWrites(const char* name) {
  if (!IsPower() || disk.failing == 0 || name == nullptr) return nullptr;
  for (UnsyncedWrites& file : disk.files) {
    if (file.IsOf(name)) return &file;
  }
  return &disk.files.emplace_back(name);
}

int Close(sqlite3_file* file) { return Real(file)->pMethods->xClose(Real(file)); }
int Read(sqlite3_file* file, void* to, int size, sqlite3_int64 at) {
  return Real(file)->pMethods->xRead(Real(file), to, size, at);
}
int Write(sqlite3_file* file, const void* from, int size, sqlite3_int64 at) {
  const auto write = [&](int bytes) {
    return Real(file)->pMethods->xWrite(Real(file), from, bytes, at);
  };
  if (UnsyncedWrites* writes = Writes(file)) {
    writes->NoteWrite(at, from, static_cast<std::size_t>(size));
  }
  if (!FailsNow()) return write(size);
  if (disk.fault != Fault::kBrokenOnce && disk.fault != Fault::kBrokenForGood) write(size / 2);
  StopIfWanted();
  return IsFull() ? SQLITE_FULL : SQLITE_IOERR_WRITE;
}
int Truncate(sqlite3_file* file, sqlite3_int64 size) {
  if (UnsyncedWrites* writes = Writes(file)) writes->NoteTruncation(size);
  if (!FailsNow()) return Real(file)->pMethods->xTruncate(Real(file), size);
  StopIfWanted();
  return SQLITE_IOERR_TRUNCATE;
}
int Sync(sqlite3_file* file, int) {
  // The machine's own power does not fail, so what is written lasts.
  if (!FailsNow()) {
    if (UnsyncedWrites* writes = Writes(file)) writes->NoteSync();
    return SQLITE_OK;
  }
  StopIfWanted();
  return SQLITE_IOERR_FSYNC;
}
int FileSize(sqlite3_file* file, sqlite3_int64* size) {
  return Real(file)->pMethods->xFileSize(Real(file), size);
}
int Lock(sqlite3_file* file, int kind) { return Real(file)->pMethods->xLock(Real(file), kind); }
int Unlock(sqlite3_file* file, int kind) { return Real(file)->pMethods->xUnlock(Real(file), kind); }
int CheckReservedLock(sqlite3_file* file, int* result) {
  return Real(file)->pMethods->xCheckReservedLock(Real(file), result);
}
int FileControl(sqlite3_file* file, int what, void* argument) {
  return Real(file)->pMethods->xFileControl(Real(file), what, argument);
}
int SectorSize(sqlite3_file* file) { return Real(file)->pMethods->xSectorSize(Real(file)); }
int DeviceCharacteristics(sqlite3_file* file) {
  return Real(file)->pMethods->xDeviceCharacteristics(Real(file));
}
int ShmMap(sqlite3_file* file, int region, int size, int extend, void volatile** memory) {
  return Real(file)->pMethods->xShmMap(Real(file), region, size, extend, memory);
}
int ShmLock(sqlite3_file* file, int offset, int count, int flags) {
  return Real(file)->pMethods->xShmLock(Real(file), offset, count, flags);
}
void ShmBarrier(sqlite3_file* file) { Real(file)->pMethods->xShmBarrier(Real(file)); }
int ShmUnmap(sqlite3_file* file, int remove) {
  return Real(file)->pMethods->xShmUnmap(Real(file), remove);
}

const sqlite3_io_methods kMethods = {2,
                                     Close,
                                     Read,
                                     Write,
                                     Truncate,
                                     Sync,
                                     FileSize,
                                     Lock,
                                     Unlock,
                                     CheckReservedLock,
                                     FileControl,
                                     SectorSize,
                                     DeviceCharacteristics,
                                     ShmMap,
                                     ShmLock,
                                     ShmBarrier,
                                     ShmUnmap,
                                     nullptr,
                                     nullptr};

int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* flags_out) {
  auto* opened = reinterpret_cast<File*>(file);
  opened->base.pMethods = nullptr;
  opened->real = reinterpret_cast<sqlite3_file*>(opened + 1);
  if (FailsNow()) {
    StopIfWanted();
    return SQLITE_CANTOPEN;
  }
  const int result = disk.real->xOpen(disk.real, name, opened->real, flags, flags_out);
  if (opened->real->pMethods != nullptr) opened->base.pMethods = &kMethods;
  opened->writes = result == SQLITE_OK ? WatchedWrites(name) : nullptr;
  return result;
}

sqlite3_vfs failing_vfs;

}  // namespace

FailingDisk::FailingDisk() {
  disk = {};
  disk.real = sqlite3_vfs_find(nullptr);
  failing_vfs = *disk.real;
  failing_vfs.zName = "failing";
  failing_vfs.szOsFile += static_cast<int>(sizeof(File));
  failing_vfs.xOpen = Open;
  sqlite3_vfs_register(&failing_vfs, 1);
}

FailingDisk::~FailingDisk() { sqlite3_vfs_unregister(&failing_vfs); }

void FailingDisk::FailAt(int n, Fault fault) {
  disk.operations = 0;
  disk.failing = n;
  disk.fault = fault;
  disk.has_failed = false;
  disk.is_done = false;
}

void FailingDisk::NoteDone() { disk.is_done = true; }

bool FailingDisk::Heal() {
  disk.failing = 0;
  disk.until_heal = disk.operations;
  return std::exchange(disk.has_failed, false);
}

int FailingDisk::Operations() const { return disk.until_heal; }

}  // namespace qdclgl::server::testing
