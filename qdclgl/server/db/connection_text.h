// Connection texts: `Key=Value;` pairs that say which books a caller means.
//
//   Provider=SQLite;Data Source=books.db;Initial catalog=ACC1;
//   Provider=PostgreSQL;Host=ledger;Port=5432;Initial catalog=books;User ID=gl;Password=...;
#pragma once

#include <initializer_list>
#include <map>
#include <string>
#include <string_view>

namespace qdclgl::server {

// The keys, in the spelling in which a text is written back.
namespace connection_key {
inline constexpr std::string_view kProvider = "Provider";        // SQLite or PostgreSQL
inline constexpr std::string_view kDataSource = "Data Source";   // SQLite: the file
inline constexpr std::string_view kSynchronous = "Synchronous";  // Full (the default) or Normal
// PostgreSQL: a section of the database's own service file, which says of host, port, user,
// password and encryption what the text doesn't.
inline constexpr std::string_view kService = "Service";
inline constexpr std::string_view kHost = "Host";  // PostgreSQL: name, address or socket folder
inline constexpr std::string_view kPort = "Port";
inline constexpr std::string_view kCatalog = "Initial catalog";  // PostgreSQL: the database
inline constexpr std::string_view kSchema = "Schema";  // PostgreSQL: one of many books in it
inline constexpr std::string_view kUser = "User ID";   // PostgreSQL: the database's user
inline constexpr std::string_view kPassword = "Password";
// PostgreSQL: whether the connection is encrypted and who the server must be, as the database's own
// client reads them; the certificates are files.
inline constexpr std::string_view kSslMode = "Sslmode";
inline constexpr std::string_view kSslRootCert = "Sslrootcert";
inline constexpr std::string_view kSslCert = "Sslcert";
inline constexpr std::string_view kSslKey = "Sslkey";
// How many seconds a statement waits for what others have locked.
inline constexpr std::string_view kLockTimeout = "Lock timeout";
// PostgreSQL: by what a server that says nothing any more is noticed, as the database's own client
// reads them: seconds, seconds, a count, milliseconds.
inline constexpr std::string_view kKeepalivesIdle = "Keepalives_idle";
inline constexpr std::string_view kKeepalivesInterval = "Keepalives_interval";
inline constexpr std::string_view kKeepalivesCount = "Keepalives_count";
inline constexpr std::string_view kTcpUserTimeout = "Tcp_user_timeout";
inline constexpr std::string_view kSession = "Session";  // put in by the login
}  // namespace connection_key

class ConnectionText {
 public:
  // Keys match without regard to case; blanks around keys and values don't count. A value with ";"
  // or with blanks at its ends stands in braces, "{a;b}", a "}" in it doubled. A text without any
  // "=" is the path of a SQLite file. BadConnectionText for a key that is unknown or stands twice,
  // for an unknown provider, and for values that the provider needs and does not get.
  static ConnectionText Parse(std::string_view text);

  // "" for a key that is not there.
  std::string_view operator[](std::string_view key) const;
  bool IsSQLite() const;
  // Of kLockTimeout and those below it, which have a value without being there.
  int Number(std::string_view key) const;

  // The text without this key, with this one, and in the one spelling that tells equal texts.
  ConnectionText Without(std::string_view key) const;
  ConnectionText With(std::string_view key, std::string_view value) const;
  std::string ToText() const;

  // What it says about where the books are and how they are reached, in the one spelling for that:
  // texts that mean the same have one canonical text. A relative path is one of the folder that the
  // process is in now.
  ConnectionText Canonical() const;

  // Where the books are, whoever reaches them and however.
  ConnectionText Place() const;

  // The text as an error may show it: no password, no session.
  std::string ForMessage() const;

  bool operator==(const ConnectionText& other) const = default;

 private:
  // Without all keys but these.
  ConnectionText Only(std::initializer_list<std::string_view> keys) const;

  std::map<std::string, std::string, std::less<>> values_;  // by key in its own spelling
};

}  // namespace qdclgl::server
