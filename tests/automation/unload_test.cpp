// The server's life: what keeps it loaded, that it unloads cleanly, and that nothing grows.
#include <thread>

#include "qdclgl/automation/identity.h"
#include "tests/automation/client.h"

using namespace qdclgl::automation;
using namespace qdclgl::automation::testing;

namespace {

// The server as the registry names it, or a copy of it, loaded by hand.
class Server {
 public:
  explicit Server(const std::wstring& path = Path()) : module_(LoadLibraryW(path.c_str())) {}
  ~Server() {
    if (module_ != nullptr) FreeLibrary(module_);
  }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  bool loaded() const { return module_ != nullptr; }

  HRESULT CanUnload() const {
    using CanUnloadNow = HRESULT(STDAPICALLTYPE*)();
    return Function<CanUnloadNow>("DllCanUnloadNow")();
  }

  Com<IClassFactory> Factory(const char* class_name) const {
    using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    Com<IClassFactory> factory;
    Function<GetClassObject>("DllGetClassObject")(IdOfName(class_name), IID_IClassFactory,
                                                  factory.PutVoid());
    return factory;
  }

  static std::wstring Path() {
    const std::wstring key =
        L"Software\\Classes\\CLSID\\" + IdText(IdOfName("QDCLGL.Voucher")) + L"\\InprocServer32";
    wchar_t path[MAX_PATH] = {};
    DWORD size = sizeof path;
    RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, path, &size);
    return path;
  }

 private:
  template <class F>
  F Function(const char* name) const {
    return reinterpret_cast<F>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
  }

  HMODULE module_;
};

Com<IDispatch> Make(const Com<IClassFactory>& factory) {
  Com<IDispatch> object;
  factory->CreateInstance(nullptr, IID_IDispatch, object.PutVoid());
  return object;
}

// The memory in use, by all heaps of the process.
std::size_t HeapBytes() {
  HANDLE heaps[64];
  const DWORD count = GetProcessHeaps(64, heaps);
  std::size_t bytes = 0;
  for (DWORD i = 0; i < count; ++i) {
    HeapLock(heaps[i]);
    PROCESS_HEAP_ENTRY entry{};
    while (HeapWalk(heaps[i], &entry)) {
      if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) bytes += entry.cbData;
    }
    HeapUnlock(heaps[i]);
  }
  return bytes;
}

// Rows of several shapes, so that what a thread keeps of them is there.
void Use(const Server& server) {
  const auto row = Make(server.Factory("QDL.Dictionary"));
  for (int i = 0; i < 30; ++i) {
    const std::wstring name = L"key " + std::to_wstring(i);
    Put(row, L"Value", {name.c_str(), i});
    Get(row, L"Clone");
  }
  const auto rows = Make(server.Factory("QDL.Recordset"));
  Get(Get(rows, L"Fields").object(), L"Append", {L"FName"});
  Com<ITypeInfo> info;
  row->GetTypeInfo(0, 0, info.Put());
}

void Counts() {
  TestCase("a client's objects, enumerators and locks keep the server loaded");
  const Server server;
  Check(server.loaded(), "the server was loaded");
  if (!server.loaded()) return;
  Check(CodeText(server.CanUnload()), "00000000");
  {
    const auto factory = server.Factory("QDL.Recordset");
    Check(CodeText(server.CanUnload()), "00000001");
    factory->LockServer(TRUE);
    factory->LockServer(FALSE);
    const auto rows = Make(factory);
    const auto fields = Get(rows, L"Fields").object();
    const Outcome made = Invoke(fields.get(), DISPID_NEWENUM, kRead, {});
    Check(CodeText(server.CanUnload()), "00000001");
  }
  Check(CodeText(server.CanUnload()), "00000000");
  const auto factory = server.Factory("QDL.Recordset");
  factory->LockServer(TRUE);
  const_cast<Com<IClassFactory>&>(factory) = {};
  Check(CodeText(server.CanUnload()), "00000001");
  server.Factory("QDL.Recordset")->LockServer(FALSE);
  Check(CodeText(server.CanUnload()), "00000000");
}

void KeepsSessions() {
  TestCase("a login keeps the server loaded until the logout");
  wchar_t folder[MAX_PATH];
  GetTempPathW(MAX_PATH, folder);
  const std::wstring book = std::wstring(folder) + L"unload-test.db";
  const auto remove = [&] {
    for (const wchar_t* ending : {L"", L"-wal", L"-shm"}) DeleteFileW((book + ending).c_str());
  };
  remove();
  {
    const Server server;
    const auto session = [&] { return Make(server.Factory("QDSVGLSession.SessionUpdate")); };
    Get(Make(server.Factory("QDSVGLBooks.BooksUpdate")), L"Create",
        {book.c_str(), L"EUR", 2024, 12, 1, L"administrator", L"", true});
    Check(CodeText(server.CanUnload()), "00000000");
    const Value props = Get(session(), L"Login", {book.c_str(), L"administrator", L""}).result;
    Check(CodeText(server.CanUnload()), "00000001");
    Get(session(), L"Logout", {props});
    Check(CodeText(server.CanUnload()), "00000000");
  }
  remove();
}

void TwoCopies() {
  TestCase("a copy of the server in one process is a server of others");
  const std::wstring path = Server::Path() + L".copy.dll";
  CopyFileW(Server::Path().c_str(), path.c_str(), FALSE);
  {
    const Server one, other(path);
    Check(one.loaded() && other.loaded(), "both were loaded");
    const auto row = Make(one.Factory("QDL.Dictionary"));
    const auto hold = [&](const wchar_t* key, const char* class_name) {
      const auto held = Make(other.Factory(class_name));
      if (std::string_view(class_name) == "QDL.Vector") Get(held, L"Append", {7});
      Put(row, L"Value", {key, held}, DISPATCH_PROPERTYPUTREF);
      Check(CodeText(other.CanUnload()), "00000001");
      Check(Get(row, L"Value", {key}).object().get() == held.get(), "it comes back as itself");
    };
    hold(L"list", "QDL.Vector");
    hold(L"rows", "QDL.Recordset");
    hold(L"voucher", "QDCLGL.Voucher");
    // Only the other copy's Dictionary holds them by now.
    Check(CodeText(other.CanUnload()), "00000001");
    Check(Text(Get(Get(row, L"Value", {L"list"}).object(), L"Item", {1})), "I4 7");
    for (const wchar_t* key : {L"list", L"rows", L"voucher"}) {
      Check(CodeText(other.CanUnload()), "00000001");
      Get(row, L"Remove", {key});
    }
    Check(CodeText(other.CanUnload()), "00000000");
    Check(CodeText(one.CanUnload()), "00000001");
  }
  DeleteFileW(path.c_str());
}

void Unloading() {
  TestCase("the server unloads and loads again, with threads that end before and behind it");
  std::size_t before = 0;
  bool unloaded = true;
  for (int round = 0; round < 60; ++round) {
    HANDLE go = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HANDLE used = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::thread outlives;
    {
      const Server server;
      Use(server);
      std::thread([&] {
        CoInitialize(nullptr);
        Use(server);
        CoUninitialize();
      }).join();
      outlives = std::thread([&server, go, used] {
        CoInitialize(nullptr);
        Use(server);
        CoUninitialize();
        SetEvent(used);
        WaitForSingleObject(go, INFINITE);
      });
      WaitForSingleObject(used, INFINITE);
      if (server.CanUnload() != S_OK) unloaded = false;
    }
    if (GetModuleHandleW(L"qdclgl.dll") != nullptr) unloaded = false;
    SetEvent(go);
    outlives.join();
    CloseHandle(go);
    CloseHandle(used);
    if (round == 19) before = HeapBytes();
  }
  Check(unloaded, "the module was gone each time");
  const std::size_t grown = HeapBytes() > before ? HeapBytes() - before : 0;
  std::printf("# 40 rounds of loading and unloading: %u kB more\n",
              static_cast<unsigned>(grown / 1024));
  // The thread that outlives the server keeps its copies of the server's plain variables.
  constexpr std::size_t kWords = 512;
  Check(grown < 40 * kWords * sizeof(void*), "less than 512 words of memory a round");

  TestCase("threads that come and go leave nothing behind");
  const Server server;
  const auto run = [&](int threads) {
    for (int i = 0; i < threads; ++i) {
      std::thread([&] {
        CoInitialize(nullptr);
        Use(server);
        CoUninitialize();
      }).join();
    }
  };
  run(50);
  const std::size_t start = HeapBytes();
  run(300);
  const std::size_t more = HeapBytes() > start ? HeapBytes() - start : 0;
  std::printf("# 300 threads: %u kB more\n", static_cast<unsigned>(more / 1024));
  Check(more < 300 * 1024, "less than 1 kB a thread");
}

void Measure() {
  TestCase("the measure of memory sees what is kept");
  const std::size_t before = HeapBytes();
  std::vector<std::vector<char>> kept;
  for (int i = 0; i < 1024; ++i) kept.emplace_back(4096, static_cast<char>(i));
  Check(HeapBytes() >= before + 3 * 1024 * 1024, "4 MB are seen");
}

void Creations() {
  TestCase("a million creations do not grow the process");
  const Server server;
  const auto factory = server.Factory("QDCLGL.VoucherGroupSet");
  const auto create = [&](int count) {
    for (int i = 0; i < count; ++i) {
      const auto groups = Make(factory);
      if (i % 16 == 0) Get(groups, L"CreateNew", {L"x"});
    }
  };
  create(100000);
  const std::size_t before = HeapBytes();
  create(1000000);
  const std::size_t grown = HeapBytes() > before ? HeapBytes() - before : 0;
  std::printf("# a million creations: %u kB more\n", static_cast<unsigned>(grown / 1024));
  Check(grown < 256 * 1024, "less than 256 kB");
}

}  // namespace

int main() {
  CoInitialize(nullptr);
  Measure();
  Counts();
  KeepsSessions();
  TwoCopies();
  Unloading();
  Creations();
  const int failed = Finish();
  CoUninitialize();
  return failed;
}
