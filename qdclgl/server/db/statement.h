// Prepared statements, and how the databases hold values.
#pragma once

#include <concepts>
#include <cstdint>
#include <memory>
#include <span>
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
  static std::string_view Out(const std::string& value) { return value; }
  static std::string In(const std::string& value) { return value; }
};
template <>
struct StorageOf<std::string_view> : StorageOf<std::string> {
  static std::string_view Out(std::string_view value) { return value; }
};
template <>
struct StorageOf<const char*> : StorageOf<std::string> {
  static std::string_view Out(const char* value) { return value; }
};

}  // namespace detail

class Driver;

// A prepared statement. Its parameters are set in order, then it is executed; rows are fetched to
// the end (or the statement is reset), which frees what the database holds for it.
class Statement {
 public:
  Statement(Driver& driver, std::string_view sql, std::span<const Storage> parameters,
            std::span<const Storage> results);
  ~Statement();

  void Set(std::size_t position, std::int64_t value);
  void Set(std::size_t position, double value);
  void Set(std::size_t position, std::string_view value);
  void SetNull(std::size_t position);

  // Runs a statement without rows; the number of rows it changed.
  std::int64_t Execute();
  // The same past the hook.
  std::int64_t Run();
  // Runs a query; Fetch then steps through its rows and is false behind the last one.
  void Open();
  bool Fetch();
  void Reset();

  // The columns of the current row. A Null reads as 0 or "".
  bool IsNull(std::size_t position) const;
  std::int64_t Whole(std::size_t position) const;
  double Real(std::size_t position) const;
  const std::string& Text(std::size_t position) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace qdclgl::server
