#include "qdclgl/server/ledgers/line_search.h"

#include <cmath>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/access/session.h"
#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/ledgers/account_lines.h"
#include "qdclgl/server/ledgers/accounts_below.h"
#include "qdclgl/server/ledgers/search_words.h"
#include "qdclgl/server/ledgers/wanted.h"
#include "qdclgl/server/periods/text_signature.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(LineInfo)

namespace {

constexpr Column kColumns[] = {
    {"FVoucherID", ColumnType::kLong},     {"FEntryID", ColumnType::kLong},
    {"FDate", ColumnType::kDate},          {"FYear", ColumnType::kLong},
    {"FPeriod", ColumnType::kLong},        {"FGroup", ColumnType::kText},
    {"FNumber", ColumnType::kLong},        {"FPosted", ColumnType::kBoolean},
    {"FPreparer", ColumnType::kText},      {"FReference", ColumnType::kText},
    {"FAccountNumber", ColumnType::kText}, {"FAccountName", ColumnType::kText},
    {"FExplanation", ColumnType::kText},   {"FTransNo", ColumnType::kText},
    {"FAmount", ColumnType::kCurrency},    {"FDebit", ColumnType::kCurrency},
    {"FCredit", ColumnType::kCurrency},    {"FCurrencyNumber", ColumnType::kText},
    {"FAmountFor", ColumnType::kCurrency},
};

struct Span {
  std::string first, behind;  // days as texts
};

// Of how many vouchers a page is looked for before all of them are read.
constexpr int kFirstVouchers = 5000;

// A query in the making: its text, and the values of its placeholders.
struct Query {
  std::string sql;
  std::vector<BoundValue> values;
};

// "119" is the amount 119; any number of decimals but four is none.
std::optional<Units> AmountIn(const std::string& word) {
  const std::size_t point = std::min(word.find('.'), word.size());
  const std::size_t first = word.starts_with('-') ? 1 : 0;
  const std::string digits = word.substr(first, point - first);
  const std::string decimals = point < word.size() ? word.substr(point + 1) : "";
  const auto are_digits = [](std::string_view text) {
    return text.find_first_not_of("0123456789") == text.npos;
  };
  constexpr std::size_t kMostDigits = 14, kDecimals = 4;
  if (digits.empty() || digits.size() > kMostDigits || !are_digits(digits) ||
      decimals.size() > kDecimals || !are_digits(decimals)) {
    return std::nullopt;
  }
  const Units units = std::stoll(digits + decimals + std::string(kDecimals - decimals.size(), '0'));
  return first == 1 ? -units : units;
}

// "2024-02-05"; one that is no day has nothing.
bool IsDay(const std::string& word) {
  if (word.size() != 10) return false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    const bool is_mark = i == 4 || i == 7;
    if (is_mark ? word[i] != '-' : word[i] < '0' || word[i] > '9') return false;
  }
  return true;
}

// A line without a text of its own has its voucher's.
constexpr std::string_view kExplanation =
    "CASE WHEN e.FExplanation <> '' THEN e.FExplanation ELSE v.FExplanation END";

using Texts = std::vector<std::string>;

// The accounts that have a word in their number or name.
std::string AccountsWith(const Database& db, const std::string& word, Query& query) {
  return "SELECT FAccountID FROM t_Account WHERE " +
         HasWord(db, Texts{"FNumber", "FName"}, word, query.values);
}

void AddWord(const Database& db, const std::string& word, Query& query) {
  const auto add = [&](const Texts& texts) { return HasWord(db, texts, word, query.values); };
  query.sql += " AND (" + add({std::string(kExplanation), "e.FTransNo", "v.FReference"});
  // Accounts are few and lines are many: each account is looked at once.
  query.sql += " OR e.FAccountID IN (" + AccountsWith(db, word, query) + ")";
  query.sql += " OR v.FDetailCount > 0 AND EXISTS (SELECT 1 FROM t_VoucherDetail d"
               " WHERE d.FVoucherID = e.FVoucherID AND d.FEntryID = e.FEntryID AND " +
               add({"d.FItemNumber", "d.FItemName"}) + ")";
  if (const auto amount = AmountIn(word)) {
    query.sql += " OR e.FAmount = ? OR e.FAmountFor = ?";
    query.values.insert(query.values.end(), 2, *amount);
  }
  if (IsDay(word)) {
    query.sql += " OR SUBSTR(v.FDate, 1, 10) = ?";
    query.values.emplace_back(word);
  }
  query.sql += ")";
}

// Whether only texts of lines, vouchers and items can have the word.
bool IsInTextsAlone(Database& db, const std::string& word) {
  if (AmountIn(word) || IsDay(word)) return false;
  Query query;
  query.sql = AccountsWith(db, word, query) + " LIMIT 1";
  const auto accounts = db.MakeStatement(query.sql);
  SetAll(*accounts, query.values);
  accounts->Open();
  return !accounts->Fetch();
}

// The vouchers that signatures of texts leave for the words, where they leave out enough.
std::optional<std::vector<VoucherRange>> VouchersLeft(Database& db,
                                                      std::span<const std::string> words) {
  std::vector<std::string> in_texts;
  for (const std::string& word : words) {
    if (IsInTextsAlone(db, word)) in_texts.push_back(word);
  }
  return VouchersThatMayHave(db, in_texts);
}

// How the vouchers of these days are reached: by an index of days; as they lie in the books, which
// is quicker for all of them; or by the index again, and only the first ones, which may do for a
// page.
enum class Way : std::uint8_t { kByDay, kAsTheyLie, kFirstByDay };

// Those of these days with such ids.
std::string VouchersIn(const Database& db, std::span<const VoucherRange> ranges) {
  std::string rows;
  for (const auto& [first, last] : ranges) {
    rows +=
        (rows.empty() ? "(" : ", (") + std::to_string(first) + ", " + std::to_string(last) + ")";
  }
  return "(SELECT o.* FROM (VALUES " + rows + ") AS r" +
         Reached(db, "t_Voucher", "o", "o.FVoucherID BETWEEN r.column1 AND r.column2") +
         " WHERE o.FDeleted = 0 AND o.FDate >= ? AND o.FDate < ?)";
}

std::string VouchersOf(const Database& db, Way way) {
  std::string sql = "(SELECT * FROM t_Voucher";
  if (way == Way::kAsTheyLie) sql += db.Dialect(" NOT INDEXED", "");
  sql += " WHERE FDeleted = 0 AND FDate >= ? AND FDate < ?";
  sql += way == Way::kFirstByDay
             ? " ORDER BY FDate, FVoucherID LIMIT " + std::to_string(kFirstVouchers)
             : std::string(db.Dialect("", " OFFSET 0"));
  return sql + ")";
}

// Lines of these days, all or those of accounts.
void AddLines(const Database& db, const std::optional<LineState>& state, const Span& span,
              const std::string& vouchers, Query& query) {
  static const std::string kCells =
      "SELECT v.FVoucherID, e.FEntryID, v.FDate, v.FYear, v.FPeriod, g.FName AS FGroup, v.FNumber,"
      " v.FPosted, v.FPreparer, v.FReference, a.FNumber AS FAccountNumber,"
      " a.FName AS FAccountName, " +
      std::string(kExplanation) +
      " AS FExplanation, e.FTransNo, e.FAmount, e.FAmount * e.FDC AS "
      "FDebit,"
      " e.FAmount * (1 - e.FDC) AS FCredit, c.FNumber AS FCurrencyNumber,"
      " CASE WHEN e.FCurrencyID = 1 THEN e.FAmount ELSE e.FAmountFor END AS FAmountFor";
  query.sql += kCells;
  if (state) {
    query.sql += FromLinesBelow(db, *state);
  } else {
    query.sql += " FROM " + vouchers + " v" +
                 Reached(db, "t_VoucherEntry", "e", "e.FVoucherID = v.FVoucherID");
  }
  query.values.emplace_back(span.first);
  query.values.emplace_back(span.behind);
  query.sql += Reached(db, "t_VoucherGroup", "g", "g.FGroupID = v.FGroupID") +
               Reached(db, "t_Account", "a", "a.FAccountID = e.FAccountID") +
               Reached(db, "t_Currency", "c", "c.FCurrencyID = e.FCurrencyID") + " WHERE 1 = 1";
}

}  // namespace

Ref<Recordset> LineInfo::Find(std::string_view PropsString, const String& Words,
                              const String& Filter, const String& AccountNumber, DateTime DateFrom,
                              DateTime DateTo, Long WhichState, const String& ItemClassNumber,
                              const String& ItemNumber, Long First, Long Count) {
  const Caller caller = Enter(PropsString, kRead);
  Transaction transaction(caller.db, Transaction::Kind::kRead);
  Database& db = caller.db;
  if (WhichState < kAll || WhichState > kNotPosted) {
    Refuse(refusal::kBadValue, "Lines are posted (1), not posted (2), or all (0).");
  }
  if (First < 0 || Count < 0) {
    Refuse(refusal::kBadValue, "A page has a first line from 1 on, and a count.");
  }
  const WantedItem item = ItemWanted(db, ItemClassNumber, ItemNumber);
  const Span span = {
      DateText(DateTime(std::floor(DateFrom.days))),
      DateTo == DateTime() ? "9999" : DateText(DateTime(std::floor(DateTo.days) + 1))};
  const bool is_all_days = DateFrom == DateTime() && DateTo == DateTime();
  const std::vector<std::string> words = SearchWords(Words);
  const Long account = AccountNumber.empty() ? 0 : AccountWanted(db, AccountNumber);
  const auto query_by = [&](const std::string& vouchers) {
    Query query;
    const auto add = [&](const std::optional<LineState>& state) {
      AddLines(db, state, span, vouchers, query);
      if (item.item != 0) {
        query.sql +=
            " AND EXISTS (SELECT 1 FROM t_VoucherDetail d WHERE d.FVoucherID = e.FVoucherID"
            " AND d.FEntryID = e.FEntryID AND d.FItemClassID = ? AND d.FItemID = ?)";
        query.values.emplace_back(std::int64_t{item.item_class});
        query.values.emplace_back(std::int64_t{item.item});
      }
      for (const std::string& word : words) AddWord(db, word, query);
    };
    if (account != 0) {
      query.sql = std::string(kBelow) + " ";
      query.values.emplace_back(std::int64_t{account});
      if (WhichState != kNotPosted) add(LineState::kPosted);
      if (WhichState == kAll) query.sql += " UNION ALL ";
      if (WhichState != kPosted) add(LineState::kNotPosted);
    } else {
      add(std::nullopt);
      if (WhichState != kAll)
        query.sql += WhichState == kPosted ? " AND v.FPosted = 1" : " AND v.FPosted = 0";
    }
    return query;
  };
  std::optional<Page> page;
  if (First != 0 || Count != 0) {
    page = Page{First == 0 ? 0 : First - 1, Count == 0 ? INT32_MAX : Count};
  }
  const auto fetch = [&](const std::string& vouchers) {
    const Query query = query_by(vouchers);
    return FetchList(db, {query.sql, kColumns, "FDate, FVoucherID, FEntryID"}, Filter, "",
                     query.values, page);
  };
  Ref<Recordset> lines;
  if (page && account == 0) lines = fetch(VouchersOf(db, Way::kFirstByDay));
  if (!lines || lines->RecordCount() < page->count) {
    std::optional<std::vector<VoucherRange>> left;
    if (is_all_days && account == 0) left = VouchersLeft(db, words);
    lines = fetch(left ? VouchersIn(db, *left)
                       : VouchersOf(db, is_all_days ? Way::kAsTheyLie : Way::kByDay));
  }
  transaction.Commit();
  return lines;
}

}  // namespace qdclgl::server
