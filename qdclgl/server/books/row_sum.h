// A sum over rows by which two sets of them are the same or not, in whatever order they come.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace qdclgl::server {

// Two sums of 64 bits of the rows' hashes, under a key that each run of the program draws at
// random: nobody can make rows whose sum is that of others.
class RowSum {
 public:
  void Add(const std::array<std::int64_t, 3>& numbers, std::string_view text);

  // How many were added.
  std::uint64_t rows() const { return rows_; }

  friend bool operator==(const RowSum&, const RowSum&) = default;

 private:
  std::array<std::uint64_t, 2> sums_ = {};
  std::uint64_t rows_ = 0;
};

}  // namespace qdclgl::server
