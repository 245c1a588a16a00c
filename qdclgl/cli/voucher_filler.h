// What a journal says, put into vouchers.
#pragma once

#include <string>

#include "qdclgl/cli/chart.h"
#include "qdclgl/cli/journal.h"
#include "qdclgl/cli/journal_columns.h"
#include "qdclgl/qdclgl.h"

namespace qdclgl::cli {

class VoucherFiller {
 public:
  VoucherFiller(Names& names, const ItemColumns& items, Reports& reports)
      : names_(names), items_(items), reports_(reports) {}

  // Gives a voucher its header, and the lines of the journal behind those that it has. False when a
  // cell names what can't be had, which is reported.
  bool Fill(Voucher& voucher, const JournalVoucher& journal);

  // The group that the voucher gets.
  static std::string GroupOf(const JournalVoucher& journal);

 private:
  bool FillLine(VoucherEntry& entry, const JournalLine& line, DateTime day);
  bool FillSettlement(VoucherEntry& entry, const CsvCell& number);
  bool FillItems(VoucherEntry& entry, Long account, const JournalLine& line);
  // An account that asks for items gets those that there are; any other one keeps what the file
  // says. BadCell.
  void AddItem(VoucherEntry& entry, Long account, const NamedItemClass& item_class,
               const std::string& number);
  bool FillCurrency(VoucherEntry& entry, const JournalLine& line, DateTime day);

  Names& names_;
  const ItemColumns& items_;
  Reports& reports_;
};

}  // namespace qdclgl::cli
