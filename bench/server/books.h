// The books that the server's benchmarks work on, and the two sides that write to them.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace bench {

// How many accounts the vouchers are spread over.
inline constexpr int kAccounts = 200;

// Makes empty books with a chart of so many accounts, half of them below 2000, and one voucher
// group, and logs in.
void MakeBooks(const std::string& connection, int accounts = kAccounts);
void LogInTo(const std::string& connection);

// Saves one voucher of 4 lines through the library; its id.
long SaveVoucher(int number, int month);

// Saves vouchers of 4 lines through the library, one transaction each, or many in one batch. The
// plain client's rows are of 2024.
void SaveVouchers(int count, int year = 2024);
struct Lines {
  int accounts = kAccounts;
  std::function<std::string(int number, int line)> explanation = {};  // otherwise all the same
};
void SaveVouchersInBatches(int count, int year, const Lines& lines = {});
void PostAll(int year);

// What a plain client of the database's own library does for the same rows: prepared statements,
// one transaction for each voucher, no rules.
class RawWriter {
 public:
  virtual ~RawWriter() = default;
  virtual void SaveVouchers(int count) = 0;
};
std::unique_ptr<RawWriter> RawSQLite(const std::string& file, bool full);
std::unique_ptr<RawWriter> RawPostgreSQL(const std::string& options, const std::string& schema);

// Steps through all vouchers as the library's list has them, reading each column; through the sums
// of all posted lines by account and currency. The time is the caller's.
void StepThroughVouchers(const std::string& file);
void SumLines(const std::string& file);

// The columns and values of the rows of one voucher, as texts of SQL. "?" stands for what changes:
// in a header the number, in a line the id, the line's number and its side.
extern const char* const kCounterSql;
extern const std::string kHeaderSql;
extern const std::string kLineSql;
extern const std::string kAuditSql;

}  // namespace bench
