// The machine under Windows. The wide functions are called throughout, so no name is damaged by the
// system code page; that code page is asked only for how long a text would be in a byte buffer.

// clang-format off
#include <winsock2.h>  // before windows.h, which brings in its older version
#include <windows.h>
#include <iphlpapi.h>
// clang-format on

#include <array>
#include <string_view>
#include <utility>
#include <vector>

#include "qdclgl/frame/platform/kept_answer.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/platform/thread_own.h"
#include "qdclgl/frame/platform/wide_text.h"

namespace qdclgl {

namespace {

std::size_t SystemCodePageLength(std::wstring_view text) {
  if (text.empty()) return 0;
  const int length = WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                                         nullptr, 0, nullptr, nullptr);
  return static_cast<std::size_t>(length);
}

std::optional<std::string> FitWithNul(std::wstring_view text, std::size_t buffer_size) {
  if (SystemCodePageLength(text) >= buffer_size) return std::nullopt;
  return FromWide(text);
}

// Only the lower 32 bits of a handle are significant, in a 64-bit process too; the predefined keys
// are sign-extended.
HKEY ToHandle(Long key) { return reinterpret_cast<HKEY>(static_cast<LONG_PTR>(key)); }
Long FromHandle(HKEY key) { return static_cast<Long>(reinterpret_cast<LONG_PTR>(key)); }

bool IsUsable(const IP_ADAPTER_ADDRESSES& adapter) {
  return adapter.OperStatus == IfOperStatusUp && adapter.IfType != IF_TYPE_SOFTWARE_LOOPBACK &&
         adapter.FirstUnicastAddress != nullptr;
}

// By hand, since this alone would make the library load Winsock.
std::string AddressToText(const SOCKET_ADDRESS& address) {
  const auto& octets =
      reinterpret_cast<const sockaddr_in*>(address.lpSockaddr)->sin_addr.S_un.S_un_b;
  return std::to_string(octets.s_b1) + '.' + std::to_string(octets.s_b2) + '.' +
         std::to_string(octets.s_b3) + '.' + std::to_string(octets.s_b4);
}

std::optional<std::string> FirstAddress() {
  constexpr ULONG kFlags =
      GAA_FLAG_SKIP_ANYCAST | GAA_FLAG_SKIP_MULTICAST | GAA_FLAG_SKIP_DNS_SERVER;
  std::vector<IP_ADAPTER_ADDRESSES> adapters(64);
  ULONG code = ERROR_BUFFER_OVERFLOW;
  // An adapter may appear between the calls, so that the size asked for is too small again.
  for (int attempt = 0; attempt < 4 && code == ERROR_BUFFER_OVERFLOW; ++attempt) {
    auto size = static_cast<ULONG>(adapters.size() * sizeof(IP_ADAPTER_ADDRESSES));
    code = GetAdaptersAddresses(AF_INET, kFlags, nullptr, adapters.data(), &size);
    if (code == ERROR_BUFFER_OVERFLOW) {
      adapters.resize(size / sizeof(IP_ADAPTER_ADDRESSES) + 1);
    }
  }
  if (code != ERROR_SUCCESS) return std::nullopt;
  for (const auto* adapter = adapters.data(); adapter != nullptr; adapter = adapter->Next) {
    if (IsUsable(*adapter)) return AddressToText(adapter->FirstUnicastAddress->Address);
  }
  return std::nullopt;
}

// Every save is stamped with the address, and to ask the adapters takes milliseconds. A machine
// that goes into another network is known by its new address this soon.
constexpr auto kAddressLasts = std::chrono::seconds(10);

class WindowsPlatform final : public Platform {
 public:
  std::optional<std::string> ComputerName(std::size_t buffer_size) override {
    std::array<wchar_t, 256> name{};
    DWORD length = name.size();
    if (!GetComputerNameW(name.data(), &length)) return std::nullopt;
    return FitWithNul({name.data(), length}, buffer_size);
  }

  Long ProcessId() override { return static_cast<Long>(GetCurrentProcessId()); }

  DateTime Now() override {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return DateTime::FromParts(
        {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond});
  }

  std::optional<std::string> SystemDirectory(std::size_t buffer_size) override {
    std::array<wchar_t, MAX_PATH> path{};
    const UINT length = GetSystemDirectoryW(path.data(), static_cast<UINT>(path.size()));
    if (length == 0 || length >= path.size()) return std::nullopt;
    return FitWithNul({path.data(), length}, buffer_size);
  }

  std::optional<std::string> AddressText(std::size_t buffer_size) override {
    std::optional<std::string> text = address_.Get(std::chrono::steady_clock::now(), FirstAddress);
    if (text && text->size() >= buffer_size) return std::nullopt;
    return text;
  }

  Long PrivateProfileInt(const std::string& section, const std::string& key, Long default_value,
                         const std::string& file) override {
    return static_cast<Long>(GetPrivateProfileIntW(ToWide(section).c_str(), ToWide(key).c_str(),
                                                   default_value, ToWide(file).c_str()));
  }

  std::optional<std::uint32_t> FileAttributes(const std::string& path) override {
    const DWORD attributes = GetFileAttributesW(ToWide(path).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return std::nullopt;
    return static_cast<std::uint32_t>(attributes);
  }

  Long RegistryCreateKey(Long parent, const std::string& name, bool persistent,
                         Long& key) override {
    HKEY created = nullptr;
    const LSTATUS code = RegCreateKeyExW(ToHandle(parent), ToWide(name).c_str(), 0, nullptr,
                                         persistent ? REG_OPTION_NON_VOLATILE : REG_OPTION_VOLATILE,
                                         KEY_ALL_ACCESS, nullptr, &created, nullptr);
    if (code == ERROR_SUCCESS) key = FromHandle(created);
    return static_cast<Long>(code);
  }

  Long RegistryQueryValue(Long key, const std::string& name, std::size_t buffer_size,
                          RegistryValue& value) override {
    const std::wstring wide_name = ToWide(name);
    std::vector<wchar_t> buffer(256);
    DWORD type = 0;
    DWORD size = 0;
    LSTATUS code = ERROR_MORE_DATA;
    // Another process may write a longer value between two calls.
    while (code == ERROR_MORE_DATA) {
      size = static_cast<DWORD>(buffer.size() * sizeof(wchar_t));
      code = RegQueryValueExW(ToHandle(key), wide_name.c_str(), nullptr, &type,
                              reinterpret_cast<BYTE*>(buffer.data()), &size);
      if (code == ERROR_MORE_DATA) buffer.resize(size / sizeof(wchar_t) + 1);
    }
    if (code != ERROR_SUCCESS) return static_cast<Long>(code);

    RegistryValue found{static_cast<Long>(type), {}};
    if (found.IsText()) {
      std::wstring_view text(buffer.data(), size / sizeof(wchar_t));
      while (!text.empty() && text.back() == L'\0') text.remove_suffix(1);
      if (SystemCodePageLength(text) >= buffer_size) return system_code::kMoreData;
      found.data = FromWide(text);
    } else {
      if (size > buffer_size) return system_code::kMoreData;
      found.data.assign(reinterpret_cast<const char*>(buffer.data()), size);
    }
    value = std::move(found);
    return system_code::kSuccess;
  }

  Long RegistrySetValue(Long key, const std::string& name, const RegistryValue& value) override {
    if (!value.IsText()) {
      return SetBytes(key, name, value.type, value.data.data(), value.data.size());
    }
    // The closing NUL is not counted: a text takes two bytes per UTF-16 unit. The system adds the
    // NUL itself.
    const std::wstring text = ToWide(value.data);
    return SetBytes(key, name, value.type, text.c_str(), text.size() * sizeof(wchar_t));
  }

  void ShowMessage(const std::string& prompt) override {
    MessageBoxW(nullptr, ToWide(prompt).c_str(), L"QDCLGL", MB_OK | MB_TASKMODAL);
  }

 private:
  KeptAnswer<std::optional<std::string>> address_{kAddressLasts};

  static Long SetBytes(Long key, const std::string& name, Long type, const void* data,
                       std::size_t size) {
    return static_cast<Long>(
        RegSetValueExW(ToHandle(key), ToWide(name).c_str(), 0, static_cast<DWORD>(type),
                       static_cast<const BYTE*>(data), static_cast<DWORD>(size)));
  }
};

}  // namespace

// A fiber's slot, because it has a release function; a thread without fibers counts as one.
ThreadSlot::ThreadSlot(Release release) : index_(FlsAlloc(release)) {}
ThreadSlot::~ThreadSlot() { FlsFree(index_); }
void* ThreadSlot::Get() const { return FlsGetValue(index_); }
void ThreadSlot::Set(void* pointer) { FlsSetValue(index_, pointer); }

Platform& MachinePlatform() {
  static WindowsPlatform platform;
  return platform;
}

}  // namespace qdclgl
