// Where the rows of a sheet come from.
#pragma once

#include "qdclgl/cli/csv_reader.h"

namespace qdclgl::cli {

class RowSource {
 public:
  virtual ~RowSource() = default;

  // False behind the last row.
  virtual bool Next(CsvRow& row) = 0;
  // How much of the file was read.
  virtual long long bytes() const = 0;
};

// The rows of a file as they stand in it.
class PlainRows final : public RowSource {
 public:
  explicit PlainRows(std::istream& in) : reader_(in) {}

  bool Next(CsvRow& row) override { return reader_.Next(row); }
  long long bytes() const override { return reader_.bytes(); }

 private:
  CsvReader reader_;
};

}  // namespace qdclgl::cli
