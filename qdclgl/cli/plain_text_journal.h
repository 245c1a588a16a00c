// Vouchers as text for the programs that keep books in plain text: hledger, ledger and beancount.
#pragma once

#include <map>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "qdclgl/cli/company.h"
#include "qdclgl/frame/containers/recordset.h"

namespace qdclgl::cli {

enum class PlainText { kHledger, kLedger, kBeancount };

// Names that a program takes in place of the books': the same name always has the same one in its
// place, and no two names share one.
class Substitutes {
 public:
  const std::string& Of(const std::string& name, const std::string& wished);

 private:
  std::unordered_map<std::string, std::string> of_;
  std::set<std::string> taken_;
};

class PlainTextJournal {
 public:
  // Writes what stands in front of the first voucher. `accounts` are all those of the books, by
  // number.
  PlainTextJournal(std::ostream& out, PlainText format, const std::string& base_currency,
                   const std::vector<Ref<Dictionary>>& accounts);

  // Whose books these are, as a comment.
  void WriteCompany(const Company& company);
  // The balances that a day begins with: rows of a balance list by account and currency.
  void WriteOpening(DateTime day, Recordset& balances);
  void Write(const Dictionary& voucher);

 private:
  // What moves on an account, debits above 0: in base currency, in the currency of the line, and in
  // the account's unit.
  struct Movement {
    Long account;
    Currency base;
    Long currency;
    std::string currency_number;
    Currency amount_for;
    Double quantity;
  };
  struct Account {
    std::string name, unit;
  };

  bool IsBeancount() const { return format_ == PlainText::kBeancount; }
  std::string AccountName(const Dictionary& account,
                          const std::map<std::string, std::string>& names);
  std::string Commodity(const std::string& symbol);
  void OpenAccounts();
  void WriteHead(DateTime date, bool is_posted, const std::string& code, const std::string& text);
  void WritePosting(const Movement& movement, const std::string& note);

  std::ostream& out_;
  PlainText format_;
  Substitutes account_names_, commodities_;
  std::string base_;
  std::unordered_map<Long, Account> accounts_;
};

}  // namespace qdclgl::cli
