// The rules that a voucher keeps whoever saves it and however.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "qdclgl/server/periods/settings.h"
#include "qdclgl/server/vouchers/item_rules.h"
#include "qdclgl/server/vouchers/voucher_tree.h"

namespace qdclgl::server {

// What the books know of a voucher's surroundings, read at once.
struct VoucherFacts {
  struct Group {
    Long id;
    std::string name;
    bool is_deleted;
  };
  struct Account {
    Long id;
    std::string number;
    bool is_detail;
    bool is_deleted;
    std::vector<AskedClass> classes = {};  // of the items that it asks for
  };

  LedgerRules rules;
  std::optional<Group> group;
  std::vector<Account> accounts;

  // Asks for what a voucher needs to know, and takes the answer.
  static Statement& Ask(Database& db, const VoucherTree& tree);
  static VoucherFacts From(Statement& asked);
};

// Completes what a caller left open (year, period, group, accounts, currencies and items given by
// number) and holds the voucher against the rules of the books: NoLines, NotBalanced, BadAccount,
// BadCurrency, BadItem, BadReference, BadSide, BadGroup, PeriodClosed, WrongPeriod, Required,
// BadNumber, BadValue, TooLarge, NotAtRate, NegativeAmount. What lines refer to in the voucher as
// it is stored (null for a new one) they keep. The number is not given yet.
void ApplyRules(Database& db, const VoucherFacts& facts, const VoucherTree* stored,
                VoucherTree& tree);

// Numbers that callers give end far below those that a row can hold: the counter goes on behind
// them, and must not come to its end by one slip.
inline constexpr Long kLargestGivenNumber = 999'999'999;

// Gives a voucher that is changed its number in year, period and group: the next one for 0,
// otherwise the one it asks for. NumberTaken when another voucher has it; BadNumber beyond
// kLargestGivenNumber, unless the voucher has that number already.
void GiveNumber(Database& db, const VoucherTree& stored, VoucherTree& tree);
// Writes the header of a new voucher with its number, which is given by the same rules. Behind it
// `along` opens queries that cost no message of their own.
void InsertNumbered(Database& db, VoucherTree& tree, const Transaction::Along& along);

// Refuses what is not open for change: PeriodClosed, VoucherDeleted, and what somebody has signed,
// as VoucherPosted, VoucherChecked, VoucherCashed.
void RequireOpenPeriod(const LedgerRules& rules, const VoucherTree& tree);
void RequireUnsigned(const VoucherTree& tree);
void RequireChangeable(const LedgerRules& rules, const VoucherTree& tree);

}  // namespace qdclgl::server
