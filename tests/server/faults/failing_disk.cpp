#include "tests/server/faults/failing_disk.h"

#include <sqlite3.h>
#include <unistd.h>

#include <utility>

namespace qdclgl::server::testing {

namespace {

using Fault = FailingDisk::Fault;

// One disk for all files; the tests that use it have one thread.
struct Disk {
  sqlite3_vfs* real = nullptr;
  int left = 0;  // operations up to the failure; 0: it never comes
  Fault fault = Fault::kFullOnce;
  bool has_failed = false;
};

Disk disk;

struct File {
  sqlite3_file base;
  sqlite3_file* real;
};

sqlite3_file* Real(sqlite3_file* file) { return reinterpret_cast<File*>(file)->real; }

bool IsForGood() {
  return disk.fault == Fault::kFullForGood || disk.fault == Fault::kBrokenForGood;
}
bool IsFull() { return disk.fault == Fault::kFullOnce || disk.fault == Fault::kFullForGood; }

bool FailsNow() {
  if (disk.has_failed) return IsForGood();
  if (disk.left == 0 || --disk.left > 0) return false;
  disk.has_failed = true;
  return true;
}

void StopIfWanted() {
  if (disk.fault == Fault::kStop) _exit(FailingDisk::kStopStatus);
}

int Close(sqlite3_file* file) { return Real(file)->pMethods->xClose(Real(file)); }
int Read(sqlite3_file* file, void* to, int size, sqlite3_int64 at) {
  return Real(file)->pMethods->xRead(Real(file), to, size, at);
}
int Write(sqlite3_file* file, const void* from, int size, sqlite3_int64 at) {
  const auto write = [&](int bytes) {
    return Real(file)->pMethods->xWrite(Real(file), from, bytes, at);
  };
  if (!FailsNow()) return write(size);
  if (disk.fault != Fault::kBrokenOnce && disk.fault != Fault::kBrokenForGood) write(size / 2);
  StopIfWanted();
  return IsFull() ? SQLITE_FULL : SQLITE_IOERR_WRITE;
}
int Truncate(sqlite3_file* file, sqlite3_int64 size) {
  if (!FailsNow()) return Real(file)->pMethods->xTruncate(Real(file), size);
  StopIfWanted();
  return SQLITE_IOERR_TRUNCATE;
}
int Sync(sqlite3_file*, int) {
  // Here the power does not fail, so what is written lasts.
  if (!FailsNow()) return SQLITE_OK;
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
  return result;
}

sqlite3_vfs failing_vfs;

}  // namespace

FailingDisk::FailingDisk() {
  disk = {.real = sqlite3_vfs_find(nullptr)};
  failing_vfs = *disk.real;
  failing_vfs.zName = "failing";
  failing_vfs.szOsFile += static_cast<int>(sizeof(File));
  failing_vfs.xOpen = Open;
  sqlite3_vfs_register(&failing_vfs, 1);
}

FailingDisk::~FailingDisk() { sqlite3_vfs_unregister(&failing_vfs); }

void FailingDisk::FailAt(int n, Fault fault) {
  disk.left = n;
  disk.fault = fault;
  disk.has_failed = false;
}

bool FailingDisk::Heal() {
  disk.left = 0;
  return std::exchange(disk.has_failed, false);
}

}  // namespace qdclgl::server::testing
