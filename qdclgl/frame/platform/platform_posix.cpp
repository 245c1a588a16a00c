// The machine under POSIX systems. What Windows has and POSIX has not is kept in files: the system
// directory is a folder of settings, the registry a text file of the user's own.
#include <arpa/inet.h>
#include <fcntl.h>
#include <net/if.h>
#include <netinet/in.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <map>
#include <memory>
#include <mutex>
#include <string_view>
#include <utility>
#include <vector>

#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

namespace {

constexpr std::string_view kBlanks = " \t\r\v\f";

std::string_view TrimWhiteSpace(std::string_view text) {
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::optional<std::string> FitWithNul(std::string text, std::size_t buffer_size) {
  if (text.size() >= buffer_size) return std::nullopt;
  return text;
}

// An unset variable and an empty one are the same here.
std::optional<std::string> Environment(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || *value == '\0') return std::nullopt;
  return value;
}

// Paths are put together with "\" everywhere above this file.
std::string NativePath(std::string path) {
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

// Takes the text up to `separator` and the separator off the front of `rest`.
std::string_view TakeUpTo(char separator, std::string_view& rest) {
  const std::string_view first = rest.substr(0, rest.find(separator));
  rest.remove_prefix(std::min(first.size() + 1, rest.size()));
  return first;
}

// --- Files ---------------------------------------------------------------------------------------

class FileDescriptor {
 public:
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  int get() const { return descriptor_; }
  bool is_open() const { return descriptor_ >= 0; }

 private:
  int descriptor_;
};

// Each of the following returns 0 or the value of errno.

int ReadFile(const std::string& path, std::string& text) {
  // Non-blocking, so that a pipe of that name cannot hold the program up.
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!file.is_open()) return errno;
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) return errno;
  if (S_ISDIR(status.st_mode)) return EISDIR;
  if (!S_ISREG(status.st_mode)) return EINVAL;
  text.clear();
  std::array<char, 16384> buffer;
  for (;;) {
    const ssize_t count = ::read(file.get(), buffer.data(), buffer.size());
    if (count == 0) return 0;
    if (count > 0) {
      text.append(buffer.data(), static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return errno;
    }
  }
}

int WriteAndSync(const std::string& path, std::string_view text) {
  const FileDescriptor file(
      ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0600));
  if (!file.is_open()) return errno;
  while (!text.empty()) {
    const ssize_t count = ::write(file.get(), text.data(), text.size());
    if (count >= 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return ::fsync(file.get()) == 0 ? 0 : errno;
}

std::string FolderOf(const std::string& path) {
  const auto slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

int MakeFolders(const std::string& path) {
  if (::mkdir(path.c_str(), 0700) == 0 || errno == EEXIST) return 0;
  if (errno != ENOENT || FolderOf(path) == path) return errno;
  if (const int error = MakeFolders(FolderOf(path)); error != 0) return error;
  return ::mkdir(path.c_str(), 0700) == 0 || errno == EEXIST ? 0 : errno;
}

// A reader sees the old file or the new one, and so does the next start after a crash. The caller
// holds the lock, so nobody else writes the temporary file.
int ReplaceFile(const std::string& path, std::string_view text) {
  const std::string temporary = path + ".tmp";
  int error = WriteAndSync(temporary, text);
  if (error == 0 && ::rename(temporary.c_str(), path.c_str()) != 0) error = errno;
  if (error != 0) {
    ::unlink(temporary.c_str());
    return error;
  }
  // The new content is in place. Where a folder cannot be synced, a crash may still bring the old
  // content back, which is no failure of the write.
  const FileDescriptor folder(::open(FolderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.is_open()) ::fsync(folder.get());
  return 0;
}

Long SystemCode(int error) {
  switch (error) {
    case 0: return system_code::kSuccess;
    case ENOENT:
    case ENOTDIR: return system_code::kPathNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR: return system_code::kAccessDenied;
    case EMFILE:
    case ENFILE: return system_code::kTooManyOpenFiles;
    case ENOSPC:
    case EDQUOT: return system_code::kDiskFull;
    default: return system_code::kRegistryIoFailed;
  }
}

// --- Private profiles ----------------------------------------------------------------------------

// A text in one pair of quotes, single or double, stands for what is inside.
std::string_view Unquote(std::string_view text) {
  const bool quoted = text.size() >= 2 && (text.front() == '"' || text.front() == '\'') &&
                      text.back() == text.front();
  return quoted ? text.substr(1, text.size() - 2) : text;
}

std::optional<std::string> FindProfileText(std::string_view profile, std::string_view section,
                                           std::string_view key) {
  if (profile.starts_with("\xEF\xBB\xBF")) profile.remove_prefix(3);  // an editor's UTF-8 mark
  const std::string wanted_section = ToUpper(TrimWhiteSpace(section));
  const std::string wanted_key = ToUpper(TrimWhiteSpace(key));
  bool inside = false;
  while (!profile.empty()) {
    std::string_view line = TrimWhiteSpace(TakeUpTo('\n', profile));
    if (line.starts_with(';')) continue;
    if (line.starts_with('[')) {
      if (inside) break;
      line.remove_prefix(1);
      inside = ToUpper(TrimWhiteSpace(line.substr(0, line.find(']')))) == wanted_section;
    } else if (inside && line.find('=') != std::string_view::npos) {
      const std::string_view name = TrimWhiteSpace(TakeUpTo('=', line));
      if (ToUpper(name) == wanted_key) return std::string(Unquote(TrimWhiteSpace(line)));
    }
  }
  return std::nullopt;
}

// The system's rule for the number a text begins with: [blanks] [+|-] [0x|0o|0b] [digits]. The
// prefixes are taken from the description of the system's own text-to-number routine and from the
// manuals of the profile functions, which name hexadecimal numbers; some later ones say nothing.
Long LeadingNumber(std::string_view text) {
  text = TrimWhiteSpace(text);
  bool negative = false;
  if (text.starts_with('-') || text.starts_with('+')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  std::uint32_t base = 10;
  if (text.starts_with("0x")) base = 16;
  if (text.starts_with("0o")) base = 8;
  if (text.starts_with("0b")) base = 2;
  if (base != 10) text.remove_prefix(2);

  std::uint32_t number = 0;  // unsigned, as it has to wrap around
  for (const char c : text) {
    const char lower = AsciiToLower(c);
    std::uint32_t digit = base;
    if (lower >= '0' && lower <= '9') digit = static_cast<std::uint32_t>(lower - '0');
    if (lower >= 'a' && lower <= 'f') digit = static_cast<std::uint32_t>(lower - 'a') + 10;
    if (digit >= base) break;
    number = number * base + digit;
  }
  return static_cast<Long>(negative ? 0 - number : number);
}

// --- Registry ------------------------------------------------------------------------------------

struct Root {
  Long handle;
  std::string_view name;
};

constexpr Root kRoots[] = {
    {registry_root::kClassesRoot, "HKEY_CLASSES_ROOT"},
    {registry_root::kCurrentUser, "HKEY_CURRENT_USER"},
    {registry_root::kLocalMachine, "HKEY_LOCAL_MACHINE"},
    {registry_root::kUsers, "HKEY_USERS"},
};

std::string Escape(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string escaped;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F || c == '%') {
      escaped += '%';
      escaped += kDigits[byte >> 4];
      escaped += kDigits[byte & 15];
    } else {
      escaped += c;
    }
  }
  return escaped;
}

std::optional<std::string> Unescape(std::string_view escaped) {
  std::string text;
  for (std::size_t i = 0; i < escaped.size(); ++i) {
    if (escaped[i] != '%') {
      text += escaped[i];
      continue;
    }
    const std::string_view digits = escaped.substr(i + 1, 2);
    unsigned byte = 0;
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16).ptr;
    if (digits.size() != 2 || end != digits.data() + 2) return std::nullopt;
    text += static_cast<char>(byte);
    i += 2;
  }
  return text;
}

// Keys and their values, by full path ("HKEY_LOCAL_MACHINE\Software"). As text it has one line per
// value, and one for each key without values:
//
//   path TAB name TAB type TAB data
//   path
//
// Control characters and "%" are written as "%" and two hexadecimal digits. Each line stands for
// itself, so a damaged one costs no other; a line that is not understood is kept as it is.
class Hive {
 public:
  static Hive Parse(std::string_view text) {
    Hive hive;
    while (!text.empty()) {
      std::string_view line = TakeUpTo('\n', text);
      // All of them, so that a line which is kept as it is stays so at the next reading.
      while (line.ends_with('\r')) line.remove_suffix(1);
      if (!line.empty() && !hive.AddLine(line)) hive.unreadable_.emplace_back(line);
    }
    return hive;
  }

  std::string ToText() const {
    std::string text;
    for (const std::string& line : unreadable_) text += line + '\n';
    for (const auto& [folded_path, key] : keys_) {
      if (key.values.empty()) text += Escape(key.path) + '\n';
      for (const auto& [folded_name, entry] : key.values) {
        text += Escape(key.path) + '\t' + Escape(entry.name) + '\t' +
                std::to_string(entry.value.type) + '\t' + Escape(entry.value.data) + '\n';
      }
    }
    return text;
  }

  bool HasKey(const std::string& path) const { return keys_.contains(ToUpper(path)); }

  void AddKey(const std::string& path) { KeyAt(path); }

  const RegistryValue* Find(const std::string& path, const std::string& name) const {
    const auto key = keys_.find(ToUpper(path));
    if (key == keys_.end()) return nullptr;
    const auto entry = key->second.values.find(ToUpper(name));
    return entry == key->second.values.end() ? nullptr : &entry->second.value;
  }

  void Set(const std::string& path, const std::string& name, const RegistryValue& value) {
    KeyAt(path).values.try_emplace(ToUpper(name), Entry{name, {}}).first->second.value = value;
  }

 private:
  struct Entry {
    std::string name;
    RegistryValue value;
  };
  struct Key {
    std::string path;
    std::map<std::string, Entry> values;
  };

  bool AddLine(std::string_view line) {
    const auto separators = std::count(line.begin(), line.end(), '\t');
    if (separators != 0 && separators != 3) return false;
    const auto path = Unescape(TakeUpTo('\t', line));
    if (!path || !IsKeyPath(*path)) return false;
    if (separators == 0) {
      AddKey(*path);
      return true;
    }
    const auto name = Unescape(TakeUpTo('\t', line));
    const std::string_view type_text = TakeUpTo('\t', line);
    RegistryValue value;
    const auto type_end = type_text.data() + type_text.size();
    const auto [end, error] = std::from_chars(type_text.data(), type_end, value.type);
    auto data = Unescape(line);
    if (!name || !data || error != std::errc() || end != type_end) return false;
    value.data = std::move(*data);
    Set(*path, *name, value);
    return true;
  }

  static bool IsKeyPath(std::string_view path) {
    if (path.ends_with('\\') || path.find("\\\\") != std::string_view::npos) return false;
    const std::string root = ToUpper(path.substr(0, path.find('\\')));
    return std::any_of(std::begin(kRoots), std::end(kRoots),
                       [&](const Root& known) { return known.name == root; });
  }

  // Adds the key, if it is missing, and every key above it; those keep their spelling.
  Key& KeyAt(const std::string& path) {
    const std::string folded = ToUpper(path);
    if (const auto found = keys_.find(folded); found != keys_.end()) return found->second;
    const auto separator = path.rfind('\\');
    std::string spelled = path;
    if (separator != std::string::npos) {
      spelled = KeyAt(path.substr(0, separator)).path + path.substr(separator);
    }
    return keys_.emplace(folded, Key{std::move(spelled), {}}).first->second;
  }

  std::map<std::string, Key> keys_;
  std::vector<std::string> unreadable_;
};

std::optional<std::string> HomeFolder() {
  if (auto home = Environment("HOME")) return home;
  std::array<char, 4096> buffer;
  passwd entry{};
  passwd* found = nullptr;
  if (::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0) {
    return std::nullopt;
  }
  if (found == nullptr) return std::nullopt;
  return found->pw_dir;
}

std::optional<std::string> RegistryPath() {
  if (auto path = Environment("QDCLGL_REGISTRY")) return path;
  // A relative XDG_CONFIG_HOME is invalid and counts as unset: it would move with the process.
  auto folder = Environment("XDG_CONFIG_HOME");
  if (!folder || !folder->starts_with('/')) {
    folder = HomeFolder();
    if (!folder) return std::nullopt;
    *folder += "/.config";
  }
  return *folder + "/qdclgl/registry";
}

// The registry file. It is replaced as a whole, so reading needs no lock.
Long ReadHive(Hive& hive) {
  const auto path = RegistryPath();
  if (!path) return system_code::kPathNotFound;
  std::string text;
  const int error = ReadFile(*path, text);
  if (error != 0 && error != ENOENT) return SystemCode(error);
  hive = Hive::Parse(text);
  return system_code::kSuccess;
}

// Reads the registry, has `change` alter it and writes it back, with the other processes kept out
// in between. The lock is on a file of its own, because the registry's file is replaced.
template <class Change>
Long UpdateHive(Change change) {
  const auto path = RegistryPath();
  if (!path) return system_code::kPathNotFound;
  if (const int error = MakeFolders(FolderOf(*path)); error != 0) return SystemCode(error);
  const FileDescriptor lock(::open((*path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  if (!lock.is_open()) return SystemCode(errno);
  while (::flock(lock.get(), LOCK_EX) != 0) {
    if (errno != EINTR) return SystemCode(errno);
  }
  Hive hive;
  if (const Long code = ReadHive(hive); code != system_code::kSuccess) return code;
  change(hive);
  return SystemCode(ReplaceFile(*path, hive.ToText()));
}

// The first IPv4 address of an interface that is up and not a loopback.
std::optional<std::string> FirstAddress(int socket) {
  std::array<ifreq, 64> requests;
  ifconf list{};
  list.ifc_len = sizeof requests;
  list.ifc_req = requests.data();
  if (::ioctl(socket, SIOCGIFCONF, &list) != 0) return std::nullopt;
  const auto count = static_cast<std::size_t>(list.ifc_len) / sizeof(ifreq);
  for (std::size_t i = 0; i < count; ++i) {
    ifreq request = requests[i];
    const auto* address = reinterpret_cast<const sockaddr_in*>(&requests[i].ifr_addr);
    if (address->sin_family != AF_INET || ::ioctl(socket, SIOCGIFFLAGS, &request) != 0) continue;
    if ((request.ifr_flags & IFF_UP) == 0 || (request.ifr_flags & IFF_LOOPBACK) != 0) continue;
    std::array<char, INET_ADDRSTRLEN> text{};
    if (::inet_ntop(AF_INET, &address->sin_addr, text.data(), INET_ADDRSTRLEN) == nullptr) {
      return std::nullopt;
    }
    return text.data();
  }
  return std::nullopt;
}

class PosixPlatform final : public Platform {
 public:
  std::optional<std::string> ComputerName(std::size_t buffer_size) override {
    std::array<char, 1025> name{};
    // The last byte stays out of reach: a name cut short need not be closed by a NUL.
    if (::gethostname(name.data(), name.size() - 1) != 0 || name[0] == '\0') return std::nullopt;
    return FitWithNul(name.data(), buffer_size);
  }

  Long ProcessId() override { return static_cast<Long>(::getpid()); }

  DateTime Now() override {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    // A leap second is still within its minute.
    return DateTime::FromParts({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                                local.tm_hour, local.tm_min, std::min(local.tm_sec, 59)});
  }

  std::optional<std::string> SystemDirectory(std::size_t buffer_size) override {
    std::string path = Environment("QDCLGL_SYSTEM_DIRECTORY").value_or("/etc/qdclgl");
    while (path.size() > 1 && path.ends_with('/')) path.pop_back();
    return FitWithNul(std::move(path), buffer_size);
  }

  std::optional<std::string> AddressText(std::size_t buffer_size) override {
    // Asked at every save: these calls cost a tenth of what getifaddrs takes, which reads far more.
    static const FileDescriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!socket.is_open()) return std::nullopt;
    std::optional<std::string> address = FirstAddress(socket.get());
    return address ? FitWithNul(*std::move(address), buffer_size) : std::nullopt;
  }

  Long PrivateProfileInt(const std::string& section, const std::string& key, Long default_value,
                         const std::string& file) override {
    std::string profile;
    if (ReadFile(NativePath(file), profile) != 0) return default_value;
    const auto text = FindProfileText(profile, section, key);
    return text ? LeadingNumber(*text) : default_value;
  }

  std::optional<std::uint32_t> FileAttributes(const std::string& path) override {
    struct stat status {};
    if (::stat(NativePath(path).c_str(), &status) != 0) return std::nullopt;
    std::uint32_t attributes = 0;
    if (S_ISDIR(status.st_mode)) attributes |= file_attribute::kDirectory;
    // The file's attribute, not the caller's right: it is the same for every user.
    if ((status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) {
      attributes |= file_attribute::kReadOnly;
    }
    return attributes != 0 ? attributes : file_attribute::kNormal;
  }

  Long RegistryCreateKey(Long parent, const std::string& name, bool persistent,
                         Long& key) override {
    const std::lock_guard guard(mutex_);
    auto path = PathOf(parent);
    if (!path) return system_code::kInvalidHandle;
    if (name.starts_with('\\')) return system_code::kBadPathName;

    Hive stored;
    if (const Long code = ReadHive(stored); code != system_code::kSuccess) return code;
    std::optional<std::string> first_missing;
    for (std::string_view rest = name; !rest.empty();) {
      const std::string_view element = TakeUpTo('\\', rest);
      if (element.empty()) continue;
      path->append("\\").append(element);
      const Hive& hive = IsVolatile(*path) ? volatile_ : stored;
      if (!first_missing && !hive.HasKey(*path)) first_missing = *path;
    }
    if (first_missing && persistent) {
      if (IsVolatile(*first_missing)) return system_code::kChildMustBeVolatile;
      const Long code = UpdateHive([&](Hive& hive) { hive.AddKey(*path); });
      if (code != system_code::kSuccess) return code;
    } else if (first_missing) {
      if (!IsVolatile(*first_missing)) volatile_tops_.push_back(ToUpper(*first_missing));
      volatile_.AddKey(*path);
    }
    key = HandleOf(*path);
    return system_code::kSuccess;
  }

  Long RegistryQueryValue(Long key, const std::string& name, std::size_t buffer_size,
                          RegistryValue& value) override {
    const std::lock_guard guard(mutex_);
    const auto path = PathOf(key);
    if (!path) return system_code::kInvalidHandle;
    Hive stored;
    if (!IsVolatile(*path)) {
      if (const Long code = ReadHive(stored); code != system_code::kSuccess) return code;
    }
    const RegistryValue* found = (IsVolatile(*path) ? volatile_ : stored).Find(*path, name);
    if (found == nullptr) return system_code::kFileNotFound;
    const std::size_t size = found->data.size() + (found->IsText() ? 1 : 0);
    if (size > buffer_size) return system_code::kMoreData;
    value = *found;
    return system_code::kSuccess;
  }

  Long RegistrySetValue(Long key, const std::string& name, const RegistryValue& value) override {
    const std::lock_guard guard(mutex_);
    const auto path = PathOf(key);
    if (!path) return system_code::kInvalidHandle;
    RegistryValue kept = value;
    while (kept.IsText() && kept.data.ends_with('\0')) kept.data.pop_back();
    if (IsVolatile(*path)) {
      volatile_.Set(*path, name, kept);
      return system_code::kSuccess;
    }
    return UpdateHive([&](Hive& hive) { hive.Set(*path, name, kept); });
  }

  void ShowMessage(const std::string& prompt) override {
    const std::string line = prompt + '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
  }

 private:
  std::optional<std::string> PathOf(Long key) const {
    for (const Root& root : kRoots) {
      if (root.handle == key) return std::string(root.name);
    }
    if (key < 1 || static_cast<std::size_t>(key) > paths_.size()) return std::nullopt;
    return paths_[static_cast<std::size_t>(key) - 1];
  }

  // A key has one handle however often it is opened, so handles need not be closed.
  Long HandleOf(const std::string& path) {
    for (const Root& root : kRoots) {
      if (root.name == path) return root.handle;
    }
    const auto next = static_cast<Long>(paths_.size() + 1);
    const auto [entry, added] = handles_.try_emplace(ToUpper(path), next);
    if (added) paths_.push_back(path);
    return entry->second;
  }

  bool IsVolatile(const std::string& path) const {
    const std::string folded = ToUpper(path);
    return std::any_of(volatile_tops_.begin(), volatile_tops_.end(), [&](const std::string& top) {
      return folded == top || folded.starts_with(top + '\\');
    });
  }

  std::mutex mutex_;                // guards what follows; apartments share the platform
  std::vector<std::string> paths_;  // handle n has the path n - 1
  std::map<std::string, Long> handles_;

  // Keys that are not persistent live as long as the process. All keys under such a key are of its
  // kind, so the topmost ones tell.
  Hive volatile_;
  std::vector<std::string> volatile_tops_;
};

}  // namespace

Platform& MachinePlatform() {
  static PosixPlatform platform;
  return platform;
}

}  // namespace qdclgl
