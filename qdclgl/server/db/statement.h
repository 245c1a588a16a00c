// Prepared statements, and how the databases hold values.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

#include "qdclgl/frame/values/values.h"

namespace qdclgl::server {

// Whether a text is UTF-8 without zero bytes: what every database holds alike.
bool IsStorable(std::string_view text);

// How the database holds a value: whole numbers (amounts are counted in ten-thousandths, truth
// values are 0 and 1), real numbers, texts.
enum class Storage : std::uint8_t { kWhole, kReal, kText };

namespace detail {

template <class T>
struct StorageOf;
template <std::integral T>
struct StorageOf<T> {
  static constexpr Storage kStorage = Storage::kWhole;
  static std::int64_t Out(T value) { return static_cast<std::int64_t>(value); }
  static T In(std::int64_t value) { return static_cast<T>(value); }
};
template <>
struct StorageOf<Currency> {
  static constexpr Storage kStorage = Storage::kWhole;
  static std::int64_t Out(Currency value) { return value.units(); }
  static Currency In(std::int64_t value) { return Currency::FromUnits(value); }
};
template <>
struct StorageOf<double> {
  static constexpr Storage kStorage = Storage::kReal;
  static double Out(double value) { return value; }
  static double In(double value) { return value; }
};
template <>
struct StorageOf<std::string> {
  static constexpr Storage kStorage = Storage::kText;
  static std::string_view Out(std::string_view value) { return value; }
  static std::string In(std::string_view value) { return std::string(value); }
};
template <>
struct StorageOf<std::string_view> : StorageOf<std::string> {};
template <>
struct StorageOf<const char*> : StorageOf<std::string> {};

}  // namespace detail

class Driver;

// A prepared statement. Its parameters are set in order, then it is executed; rows are fetched to
// the end (or the statement is reset), which frees what the database holds for it. A statement that
// fails is at its end.
//
// What is executed later, and queries that are open and not fetched from, go to PostgreSQL in one
// message with the next statement that is waited for; a failure among them comes out there. SQLite,
// to which nothing has to be sent, executes at once and queries with the first Fetch.
class Statement {
 public:
  virtual ~Statement() = default;
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  void Set(std::size_t position, std::int64_t value) { SetWhole(position, value); }
  void Set(std::size_t position, double value) { SetReal(position, value); }
  // BadValue for a text that is not storable.
  void Set(std::size_t position, std::string_view value);

  // Runs a statement without rows; the number of rows it changed.
  std::int64_t Execute();
  void ExecuteLater();
  // Begins a query; Fetch then steps through its rows and is false behind the last one.
  void Open();
  bool Fetch();
  void Reset() noexcept;

  // The same past the hook.
  std::int64_t Run();
  void RunLater();
  void Ask();

  // The columns of the current row. A Null reads as 0 or "". A text stands until the next call.
  virtual bool IsNull(std::size_t position) const = 0;
  virtual std::int64_t Whole(std::size_t position) const = 0;
  virtual double Real(std::size_t position) const = 0;
  virtual std::string_view Text(std::size_t position) const = 0;

 protected:
  Statement(Driver& driver, std::string_view sql) : driver_(driver), sql_(sql) {}

  const std::string& sql() const { return sql_; }

 private:
  virtual void SetWhole(std::size_t position, std::int64_t value) = 0;
  virtual void SetReal(std::size_t position, double value) = 0;
  virtual void SetText(std::size_t position, std::string_view value) = 0;

  virtual std::int64_t RunToEnd() = 0;
  virtual void RunSometime() = 0;
  virtual void Begin() = 0;
  virtual bool Step() = 0;
  virtual void End() noexcept = 0;

  // Before a statement runs for a caller.
  void Announce() const;

  Driver& driver_;
  std::string sql_;
  bool is_open_ = false;
};

}  // namespace qdclgl::server
