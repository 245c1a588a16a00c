#include "qdclgl/automation/registration.h"

#include <string>

#include "qdclgl/automation/creatable_classes.h"
#include "qdclgl/automation/errors.h"
#include "qdclgl/automation/identity.h"
#include "qdclgl/automation/module.h"
#include "qdclgl/automation/type_library.h"

namespace qdclgl::automation {

namespace {

const std::wstring kClasses = L"Software\\Classes\\";

void Write(const std::wstring& key, const wchar_t* name, const std::wstring& text) {
  HKEY opened = nullptr;
  Check(HRESULT_FROM_WIN32(
      static_cast<DWORD>(RegCreateKeyExW(HKEY_LOCAL_MACHINE, (kClasses + key).c_str(), 0, nullptr,
                                         0, KEY_WRITE, nullptr, &opened, nullptr))));
  const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
  const LSTATUS status =
      RegSetValueExW(opened, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()), size);
  RegCloseKey(opened);
  Check(HRESULT_FROM_WIN32(static_cast<DWORD>(status)));
}

void Write(const std::wstring& key, const std::wstring& text) { Write(key, nullptr, text); }

// Empty when there is no such key.
std::wstring Read(const std::wstring& key) {
  wchar_t text[256];
  DWORD size = sizeof text;
  const LSTATUS status = RegGetValueW(HKEY_LOCAL_MACHINE, (kClasses + key).c_str(), nullptr,
                                      RRF_RT_REG_SZ, nullptr, text, &size);
  return status == ERROR_SUCCESS ? text : L"";
}

void Remove(const std::wstring& key) {
  const LSTATUS status = RegDeleteTreeW(HKEY_LOCAL_MACHINE, (kClasses + key).c_str());
  if (status != ERROR_FILE_NOT_FOUND) Check(HRESULT_FROM_WIN32(static_cast<DWORD>(status)));
}

// Whether the name in the registry is another server's.
bool IsTaken(const CreatableClass& creatable) {
  const std::wstring holder = Read(ToWide(creatable.prog_id) + L"\\CLSID");
  return !holder.empty() && holder != IdText(creatable.class_id);
}

void RegisterClass(const CreatableClass& creatable) {
  const std::wstring id = IdText(creatable.class_id);
  const std::wstring prog_id = ToWide(creatable.prog_id);
  const std::wstring versioned = ToWide(creatable.versioned_prog_id());
  const std::wstring help = ToWide(creatable.help);

  const std::wstring key = L"CLSID\\" + id;
  Write(key, help);
  Write(key + L"\\InprocServer32", ServerPath());
  Write(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  Write(key + L"\\ProgID", versioned);
  Write(key + L"\\VersionIndependentProgID", prog_id);
  if (creatable.is_in_type_library) Write(key + L"\\TypeLib", IdText(LibraryId()));
  Write(key + L"\\Version", std::to_wstring(kLibraryMajor) + L"." + std::to_wstring(kLibraryMinor));
  Write(key + L"\\Programmable", L"");

  Write(prog_id, help);
  Write(prog_id + L"\\CLSID", id);
  Write(prog_id + L"\\CurVer", versioned);
  Write(versioned, help);
  Write(versioned + L"\\CLSID", id);
}

void UnregisterClass(const CreatableClass& creatable) {
  Remove(L"CLSID\\" + IdText(creatable.class_id));
  if (creatable.yields && IsTaken(creatable)) return;
  Remove(ToWide(creatable.prog_id));
  Remove(ToWide(creatable.versioned_prog_id()));
}

void RegisterTypeLibrary() {
  const std::wstring path = TypeLibraryPath();
  ReleaseTypeLibrary();
  WriteTypeLibrary(path);
  Com<ITypeLib> library;
  Check(LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.Put()));
  const std::wstring folder = path.substr(0, path.find_last_of(L'\\'));
  Check(::RegisterTypeLib(library.get(), const_cast<LPOLESTR>(path.c_str()),
                          const_cast<LPOLESTR>(folder.c_str())));
}

void UnregisterTypeLibrary() {
  constexpr SYSKIND kSystem = sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32;
  ReleaseTypeLibrary();
  // Fails where it is not registered, which is what is wanted.
  UnRegisterTypeLib(LibraryId(), kLibraryMajor, kLibraryMinor, LOCALE_NEUTRAL, kSystem);
  DeleteFileW(TypeLibraryPath().c_str());
}

}  // namespace

void Register() {
  try {
    for (const CreatableClass& creatable : CreatableClasses()) {
      if (creatable.yields && IsTaken(creatable)) continue;
      RegisterClass(creatable);
    }
    RegisterTypeLibrary();
  } catch (...) {
    Unregister();
    throw;
  }
}

void Unregister() {
  UnregisterTypeLibrary();
  for (const CreatableClass& creatable : CreatableClasses()) UnregisterClass(creatable);
}

}  // namespace qdclgl::automation
