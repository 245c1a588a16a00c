// Vouchers as a journal file that the import reads.
#pragma once

#include <map>
#include <ostream>
#include <set>
#include <string>

#include "qdclgl/cli/journal_columns.h"
#include "qdclgl/cli/table.h"
#include "qdclgl/frame/containers/dictionary.h"

namespace qdclgl::cli {

// Which columns a journal has besides kJournalColumns: those of items that accounts ask for, and of
// departments, or all.
enum class JournalWidth : bool { kUsual, kWhole };

// "2024/3 General 5": the voucher as people call it.
std::string VoucherName(const Dictionary& voucher);

// A number with all its digits and no exponent; "" for 0.
std::string DigitsOf(Double value);

class JournalWriter {
 public:
  // `asked` are the ids of the item classes that accounts ask for.
  JournalWriter(std::ostream& out, JournalWidth width, const std::set<Long>& asked);

  void Write(const Dictionary& voucher);

  // What the file can't say: how many of each key were left out.
  const std::map<std::string, long>& left_out() const { return left_out_; }

 private:
  struct Class {
    Long id;
    std::string number, heading;
  };

  std::vector<Variant> LineCells(const Dictionary& voucher, const Dictionary& line);
  void AddFurther(const Dictionary& row, bool is_of_line, std::vector<Variant>& cells);
  void AddItems(const Dictionary& line, std::vector<Variant>& cells);
  void NoteOwnKeys(const Dictionary& row, const std::set<std::string_view>& known);
  std::vector<std::string> Headings() const;

  JournalWidth width_;
  std::vector<Class> classes_;
  std::map<std::string, long> left_out_;
  const Console console_;
  TableWriter table_;
};

}  // namespace qdclgl::cli
