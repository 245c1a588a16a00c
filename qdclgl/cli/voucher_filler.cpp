#include "qdclgl/cli/voucher_filler.h"

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/exchange_rates.h"
#include "qdclgl/cli/voucher_draft.h"

namespace qdclgl::cli {

namespace {

template <class Entity>
void PutFurther(const Further& further, const Entity& entity) {
  for (const auto& [key, value] : further) {
    entity.Properties()->Dictionary()->Put(key, value);
  }
}

}  // namespace

std::string VoucherFiller::GroupOf(const JournalVoucher& journal) {
  return journal.group.empty() ? kUsualGroup : journal.group;
}

bool VoucherFiller::Fill(Voucher& voucher, const JournalVoucher& journal) {
  voucher.VoucherDate(journal.date);
  voucher.GroupID(names_.Group(GroupOf(journal)));
  voucher.Number(journal.number);
  voucher.Reference(journal.reference.value_or(journal.key));
  voucher.Explanation(journal.explanation.value_or(journal.lines.front().explanation));
  PutFurther(journal.further, voucher);
  const Ref<VoucherEntrySet> entries = voucher.Entries();
  bool is_complete = true;
  for (const JournalLine& line : journal.lines) {
    entries->Add();
    if (!FillLine(*entries->Item(entries->Count()), line, journal.date)) is_complete = false;
  }
  return is_complete;
}

bool VoucherFiller::FillLine(VoucherEntry& entry, const JournalLine& line, DateTime day) {
  const Long account = names_.AccountForLines(line.account.text);
  if (account == 0) {
    reports_.Add(line.account.at, "there is no account " + Quoted(line.account.text));
  }
  entry.AccountID(account);
  entry.DC(line.is_debit ? 1 : 0);
  entry.Amount(line.amount);
  entry.Explanation(line.explanation);
  entry.Quantity(line.quantity);
  entry.MeasureUnit(line.unit);
  entry.MeasureUnitID(names_.UnitForLines(line.unit, account));
  entry.UnitPrice(line.unit_price);
  entry.TransNo(line.reference);
  PutFurther(line.further, entry);
  const bool has_items = account != 0 && FillItems(entry, account, line);
  const bool has_settlement = FillSettlement(entry, line.settlement);
  return FillCurrency(entry, line, day) && has_items && has_settlement;
}

bool VoucherFiller::FillSettlement(VoucherEntry& entry, const CsvCell& number) {
  if (number.text.empty()) return true;
  const Long type = names_.SettlementType(number.text);
  entry.SettleTypeID(type);
  if (type != 0) return true;
  reports_.Add(number.at, "there is no settlement type " + Quoted(number.text));
  return false;
}

bool VoucherFiller::FillItems(VoucherEntry& entry, Long account, const JournalLine& line) {
  bool is_complete = true;
  for (std::size_t i = 0; i < line.items.size(); ++i) {
    const CsvCell& cell = line.items[i];
    if (cell.text.empty()) continue;
    try {
      AddItem(entry, account, items_.classes()[i], cell.text);
    } catch (const BadCell& bad) {
      reports_.Add(cell.at, bad.what());
      is_complete = false;
    }
  }
  return is_complete;
}

// An account that asks for items gets those that there are; any other one keeps what the file
// says. BadCell.
void VoucherFiller::AddItem(VoucherEntry& entry, Long account, const NamedItemClass& item_class,
                            const std::string& number) {
  const std::set<Long>& asked = names_.ClassesOf(account);
  const Ref<VoucherDetailSet> details = entry.Details();
  if (asked.empty()) {
    details->Add();
    const Ref<VoucherDetail> detail = details->Item(details->Count());
    detail->ItemClassNumber(item_class.number);
    detail->ItemClassName(item_class.name);
    detail->ItemNumber(number);
    detail->ItemName(number);
    return;
  }
  if (!asked.contains(item_class.id)) {
    throw BadCell("the account asks for no item of item class " + item_class.number);
  }
  const Long item = names_.Item(item_class, number);
  if (item == 0) throw BadCell(NoSuchItem(item_class, number));
  details->Add();
  const Ref<VoucherDetail> detail = details->Item(details->Count());
  detail->ItemClassID(item_class.id);
  detail->ItemID(item);
}

bool VoucherFiller::FillCurrency(VoucherEntry& entry, const JournalLine& line, DateTime day) {
  const bool has_amount_for = !line.amount_for_cell.text.empty();
  // Without an amount of its own a line counts at the rate of its day or, where none is kept, one
  // to one in its currency.
  const Currency amount_for = has_amount_for ? line.amount_for : line.amount;
  const Double rate = line.rate.value_or(
      amount_for == Currency() ? 1 : line.amount.ToDouble() / amount_for.ToDouble());
  Long currency = 0;
  try {
    // A currency is worth something, whatever sides and signs its first line has.
    currency = names_.Currency(line.currency.text, rate > 0 ? rate : 1);
  } catch (const BadCell& bad) {
    reports_.Add(line.currency.at, bad.what());
    return false;
  }
  entry.CurrencyID(currency);
  if (currency == Names::kBaseCurrency) {
    entry.AmountFor(line.amount);
    entry.ExchangeRate(1);
    if (amount_for == line.amount) return true;
    reports_.Add(line.amount_for_cell.at,
                 "a line in the base currency has the same amount in both");
    return false;
  }
  const Double kept = has_amount_for || line.rate ? 0 : KeptRate(currency, day);
  if (kept != 0) {
    entry.AmountFor(ForeignAt(currency, line.amount, kept));
    entry.ExchangeRate(kept);
    return true;
  }
  entry.AmountFor(amount_for);
  entry.ExchangeRate(rate);
  if (has_amount_for || rate == 1) return true;
  reports_.Add(line.currency.at, "a line in another currency at a rate needs its amount_for");
  return false;
}

}  // namespace qdclgl::cli
