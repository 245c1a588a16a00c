// Books with something to work on: a small chart, two currencies, two groups, and vouchers made
// with few words.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/containers/vector.h"
#include "tests/server/books_state.h"

namespace qdclgl::server::testing {

class LedgerTest : public RecordsTest {
 protected:
  // Groups "Receipts" (1) and "Payments" (2); currency USD (2); accounts 1000 Cash, 2000 Bank,
  // 3000 Sales, 4000 Costs and, below it, 4000.01 Rent and 4000.02 Wages.
  explicit LedgerTest(DatabaseKind kind = GetParam());

  using Cells = std::initializer_list<std::pair<std::string_view, Variant>>;

  // A line of a voucher to be sent; the account by its number.
  static Ref<Dictionary> Line(std::string_view account, Currency debit, Currency credit,
                              Cells more = {});
  static Ref<Dictionary> Voucher(std::string_view date, std::vector<Ref<Dictionary>> lines,
                                 Cells more = {});
  // Group Receipts, 2024-01-15: so much from Sales into Cash.
  static Ref<Dictionary> Sale(Currency amount, std::string_view date = "2024-01-15",
                              Cells more = {});

  // Logs the administrator in by the connection text with this part in it.
  void LoginWith(std::string_view key, std::string_view value);

  Long Save(const Ref<Dictionary>& voucher);
  void Update(Long id, const Ref<Dictionary>& voucher);
  Ref<Dictionary> Read(Long id, bool show_deleted = false);
  // A step by its name: Check, Approve, Cash (each with its way), Post, UnPost.
  void Step(std::string_view step, Long id, bool way = true);

  // What an operation raises, as "80044221: sentence"; "no error" when it raises nothing.
  template <class Operation>
  static std::string ErrorText(Operation operation) {
    try {
      operation();
      return "no error";
    } catch (const Error& error) {
      return Describe(error);
    }
  }
  static std::string Describe(const Error& error);

  // Balances as text, "1000 0 begin debit credit end" a line, accounts and currencies in order.
  std::string BalanceText(Long year = 0, Long from = 0, Long to = 0);
  // The same recomputed from the lines.
  std::string RecomputedText(Long year = 0, Long from = 0, Long to = 0);
};

}  // namespace qdclgl::server::testing
