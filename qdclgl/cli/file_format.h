// How another program's file tells vouchers: its separator, decimal mark and form of dates, and
// where what a journal needs stands in it.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qdclgl::cli {

// "dd.mm.yyyy": the order of day, month and year, and what stands between them.
struct DateForm {
  std::string text;

  // All that there are.
  static constexpr std::string_view kTexts[] = {"yyyy-mm-dd", "yyyy/mm/dd", "yyyy.mm.dd",
                                                "dd.mm.yyyy", "dd/mm/yyyy", "dd-mm-yyyy",
                                                "mm/dd/yyyy", "mm-dd-yyyy", "yyyymmdd"};

  // "2024-01-31" for a date of this form, nothing for any other text.
  std::optional<std::string> Translated(std::string_view date) const;
};

struct FileFormat {
  // What is not told is found in the file.
  std::optional<char> separator;
  std::optional<char> decimal;  // the mark in front of decimals, . or ,
  std::optional<DateForm> dates;
  // By the journal's column, or one of kPlaces: a heading of the file, or "=" and what is the same
  // in all rows.
  std::map<std::string, std::string> columns;

  // From "separator=;", "dates=dd.mm.yyyy", "date=Buchungstag" ... UsageError.
  static FileFormat FromWords(const std::vector<std::string>& words);
  // The same words, one a line.
  static FileFormat FromText(const std::string& text);
  std::string ToText() const;

  // Whether a row is a voucher: an amount that moves from one account to another.
  bool HasVoucherInRow() const;
};

struct NamedFormat {
  std::string name;
  FileFormat format;
};

// What a row may tell beside the journal's columns: a signed amount; and the accounts that it
// stands on, the other way round where it is negative.
namespace format_place {
inline constexpr const char* kAmount = "amount";
inline constexpr const char* kDebitAccount = "debit_account";
inline constexpr const char* kCreditAccount = "credit_account";
}  // namespace format_place

// "a semicolon"
std::string SeparatorName(char separator);

}  // namespace qdclgl::cli
