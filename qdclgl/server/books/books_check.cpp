#include "qdclgl/server/books/books_check.h"

#include <map>
#include <optional>
#include <set>

#include "qdclgl/server/access/session.h"
#include "qdclgl/server/books/findings.h"
#include "qdclgl/server/books/imports_check.h"
#include "qdclgl/server/books/items_check.h"
#include "qdclgl/server/books/lines_check.h"
#include "qdclgl/server/books/notes_check.h"
#include "qdclgl/server/books/texts_check.h"
#include "qdclgl/server/books/trail_check.h"
#include "qdclgl/server/books/units_check.h"
#include "qdclgl/server/db/columns.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/periods/calendar.h"
#include "qdclgl/server/periods/settings.h"
#include "qdclgl/server/periods/text_signature.h"
#include "qdclgl/server/records/currency.h"
#include "qdclgl/server/records/references.h"

namespace qdclgl::server {

namespace {

constexpr Long kNobody = -1;

std::string VouchersWhere(std::string_view condition) {
  return "SELECT v.FVoucherID, " + std::string(kVoucherName) + std::string(kFromVouchers) +
         " WHERE " + std::string(condition) + " ORDER BY v.FVoucherID";
}

// ---- Vouchers ----

void CheckPeriods(Database& db, const Calendar& calendar, AccountingPeriod current,
                  Findings& findings) {
  for (const auto& [id, name, year, period, date, open] :
       db.Query<Long, std::string, Long, Long, std::string, bool>(
           "SELECT v.FVoucherID, " + std::string(kVoucherName) +
           ", v.FYear, v.FPeriod, v.FDate,"
           " CASE WHEN v.FPosted = 0 AND v.FDeleted = 0 THEN 1 ELSE 0 END" +
           std::string(kFromVouchers) + " ORDER BY v.FVoucherID")) {
    const AccountingPeriod stored{year, period};
    bool fits = false;
    try {
      fits = calendar.PeriodOf(DateFrom(date)) == stored;
    } catch (const Error&) {
      // A date that is none fits no period.
    }
    if (!fits) {
      findings.Add("VoucherPeriod", "Voucher", id, name,
                   "Its date " + date + " is not in its year and period.");
    }
    if (open && stored < current) {
      findings.Add("ClosedPeriod", "Voucher", id, name,
                   "Its period is closed, and it is not posted.");
    }
  }
}

void CheckVouchers(Database& db, Findings& findings) {
  findings.AddRows(
      db, "VoucherNumber", "Voucher", "The counter of its period and group is not above it.",
      VouchersWhere("v.FNumber < 1 OR NOT EXISTS (SELECT 1 FROM t_Counter c WHERE"
                    " c.FYear = v.FYear AND c.FPeriod = v.FPeriod AND c.FGroupID = v.FGroupID"
                    " AND c.FNext > v.FNumber)"));
  findings.AddRows(db, "VoucherFlags", "Voucher", "It is posted by nobody, or posted and deleted.",
                   VouchersWhere("v.FPosted <> 0 AND (v.FPosterID = ? OR v.FDeleted <> 0)"),
                   kNobody);
  findings.AddRows(db, "VoucherFlags", "Voucher", "It has a poster and is not posted.",
                   VouchersWhere("v.FPosted = 0 AND v.FPosterID <> ?"), kNobody);
  findings.AddRows(db, "VoucherFlags", "Voucher", "It is approved and not checked.",
                   VouchersWhere("v.FApproveID <> ? AND v.FChecked = 0"), kNobody);
  findings.AddRows(db, "VoucherFlags", "Voucher",
                   "It is checked by nobody, or has a checker and is not checked.",
                   VouchersWhere("CASE WHEN v.FCheckerID = ? THEN 0 ELSE 1 END <> v.FChecked"),
                   kNobody);
  const auto lines_where = [](std::string_view condition) {
    return "SELECT v.FVoucherID, " + std::string(kVoucherName) +
           " || ', line ' || CAST(e.FEntryID AS TEXT)" + std::string(kFromVouchers) +
           " JOIN t_VoucherEntry e ON e.FVoucherID = v.FVoucherID"
           " LEFT JOIN t_Account a ON a.FAccountID = e.FAccountID WHERE " +
           std::string(condition) + " ORDER BY v.FVoucherID, e.FEntryID";
  };
  findings.AddRows(db, "LineAccount", "Voucher", "Its account is none, or has sub-accounts.",
                   lines_where("a.FAccountID IS NULL OR EXISTS (SELECT 1 FROM t_Account child"
                               " WHERE child.FParentID = a.FAccountID)"));
  findings.AddRows(db, "LineSide", "Voucher", "It is neither debit nor credit.",
                   lines_where("e.FDC NOT IN (0, 1)"));
}

// ---- Accounts, currencies, item classes, users ----

void CheckAccounts(Database& db, Findings& findings) {
  struct Account {
    std::string number, name, full_name;
    Long level, parent, root;
    bool detail;
  };
  std::map<Long, Account> accounts;
  std::set<Long> parents;
  for (const auto& [id, number, name, full_name, level, detail, parent, root] :
       db.Query<Long, std::string, std::string, std::string, Long, bool, Long, Long>(
           "SELECT FAccountID, FNumber, FName, FFullName, FLevel, FDetail, FParentID, FRootID"
           " FROM t_Account")) {
    accounts[id] = {number, name, full_name, level, parent, root, detail};
    parents.insert(parent);
  }
  for (const auto& [id, account] : accounts) {
    const auto report = [&, id = id, &number = account.number](std::string_view problem) {
      findings.Add("AccountTree", "Account", id, number, problem);
    };
    const auto dot = account.number.rfind('.');
    const auto above = accounts.find(account.parent);
    if (account.detail == parents.contains(id)) {
      report("Its detail flag does not tell whether it has sub-accounts.");
    }
    if (dot == account.number.npos) {
      if (account.parent != 0 || account.level != 1 || account.root != id ||
          account.full_name != account.name) {
        report("Its number stands for level 1; its parent, root, level or full name does not.");
      }
    } else if (above == accounts.end() || above->second.number != account.number.substr(0, dot)) {
      report("The account above it is not the one that its number names.");
    } else if (account.level != above->second.level + 1 || account.root != above->second.root ||
               account.full_name != above->second.full_name + "_" + account.name) {
      report("Its level, root or full name does not go with the account above it.");
    }
  }
}

void CheckCurrencies(Database& db, Findings& findings) {
  const auto rate = db.QueryRow<double, bool>(
      "SELECT FExchangeRate, FDeleted FROM t_Currency WHERE FCurrencyID = ?", kBaseCurrency);
  if (!rate || std::get<0>(*rate) != 1 || std::get<1>(*rate)) {
    findings.Add("BaseCurrency", "Currency", kBaseCurrency, "",
                 "The base currency is missing, marked deleted, or has another rate than 1.");
  }
}

void CheckItemClasses(Database& db, Findings& findings) {
  const auto check = [&](std::string_view problem, std::string_view rest) {
    findings.AddRows(db, "ItemClassFields", "ItemClass", problem,
                     "SELECT DISTINCT c.FItemClassID, c.FNumber FROM t_ItemClass c " +
                         std::string(rest) + " ORDER BY 1");
  };
  check("It lacks a field that every class begins with.",
        "JOIN t_ItemClassField f ON f.FItemClassID = 0 WHERE NOT EXISTS (SELECT 1 FROM"
        " t_ItemClassField own WHERE own.FItemClassID = c.FItemClassID"
        " AND own.FPropID = f.FPropID)");
  check("Two of its fields have one name or one column.",
        "JOIN t_ItemClassField f ON f.FItemClassID = c.FItemClassID JOIN t_ItemClassField other"
        " ON other.FItemClassID = f.FItemClassID AND other.FPropID > f.FPropID WHERE"
        " other.FName = f.FName OR other.FSQLColumnName = f.FSQLColumnName");
  check("One of its fields has an id that was not given yet.",
        "JOIN t_ItemClassField f ON f.FItemClassID = c.FItemClassID"
        " WHERE f.FPropID > c.FLastPropID");
}

void CheckUsers(Database& db, Findings& findings) {
  if (!db.QueryValue<int>("SELECT 1 FROM t_User WHERE FDisabled = 0 AND (FRoles & ?) <> 0 LIMIT 1",
                          static_cast<Long>(Role::kAdministrator))) {
    findings.Add("Administrator", "User", 0, "", "There is no administrator who can log in.");
  }
}

void CheckReferences(Database& db, Findings& findings) {
  for (const Reference& reference : References()) {
    const MasterData::Description& kind = reference.refers.kind().description();
    const std::string id(reference.id), column(reference.column), table(reference.table);
    for (const auto& [holder, held] : db.Query<Long, Long>(
             "SELECT DISTINCT " + id + ", " + column + " FROM " + table +
             " WHERE NOT EXISTS (SELECT 1 FROM " + std::string(kind.table) + " referred WHERE" +
             " referred." + std::string(kind.id) + " = " + table + "." + column + ")" +
             (reference.refers.is_required ? "" : " AND " + column + " <> 0") + " ORDER BY 1, 2")) {
      findings.Add("Reference", reference.subject, holder, reference.name_of(db, holder),
                   "Its " + column + " is " + std::to_string(held) + ", and there is no such " +
                       std::string(kind.noun) + ".");
    }
  }
}

// ---- Settings ----

// A block of vouchers that a search for words may pass over although they have them.
void CheckSignatures(Database& db, AccountingPeriod current, Findings& findings) {
  for (const auto& [first, last] : WrongSignatures(db, current)) {
    findings.Add("TextSignature", "Books", 0, std::to_string(first) + "-" + std::to_string(last),
                 "Searches for words may pass over vouchers with these ids.");
  }
}

// Checks the settings, and what rests on the current period where they make sense.
void CheckSettings(Database& db, Findings& findings) {
  std::optional<LedgerRules> rules;
  try {
    rules = LedgerRules::Of(db);
    const AccountingPeriod start{SettingNumber(GlSetting(db, setting::kStartYear)),
                                 SettingNumber(GlSetting(db, setting::kStartPeriod))};
    rules->calendar.SpanOf(start);
    rules->calendar.SpanOf(rules->current);
    if (rules->current < start) {
      findings.Add("Settings", "Setting", 0, "GL.CurrentPeriod",
                   "The books stand before the period that they begin with.");
    }
  } catch (const Error& error) {
    if (error.number() != refusal::kBadSetting && error.number() != refusal::kBadValue) throw;
    findings.Add("Settings", "Setting", 0, "GL", error.description());
    return;
  }
  CheckPeriods(db, rules->calendar, rules->current, findings);
  CheckSignatures(db, rules->current, findings);
}

// ---- The database itself ----

void CheckDatabase(Database& db, Findings& findings) {
  if (!db.IsSQLite()) return;
  for (const auto& [text] :
       db.Query<std::string>("SELECT integrity_check FROM pragma_integrity_check")) {
    if (text != "ok") findings.Add("Integrity", "Database", 0, "", text);
  }
  for (const auto& [table, row, parent] : db.Query<std::string, Long, std::string>(
           "SELECT \"table\", rowid, parent FROM pragma_foreign_key_check")) {
    findings.Add("ForeignKeys", "Database", row, table,
                 "It refers to a row that is not in " + parent + ".");
  }
}

}  // namespace

Ref<Recordset> CheckBooks(Database& db, std::string_view kept_head, const WorkProgress& progress) {
  // About what they take of the time.
  constexpr double kAfterLines = 0.25, kAfterRecords = 0.4, kAfterTrail = 0.8;
  const Transaction transaction(db, Transaction::Kind::kRead);
  Findings findings;
  CheckLines(db, findings, progress.Part(0, kAfterLines));
  progress.Tell("Checking records", kAfterLines);
  CheckVouchers(db, findings);
  CheckTexts(db, findings);
  CheckAccounts(db, findings);
  CheckCurrencies(db, findings);
  CheckItemClasses(db, findings);
  CheckUsers(db, findings);
  CheckReferences(db, findings);
  CheckNotes(db, findings);
  CheckUnits(db, findings);
  CheckItems(db, findings);
  CheckImports(db, findings);
  CheckSettings(db, findings);
  CheckTrail(db, kept_head, findings, progress.Part(kAfterRecords, kAfterTrail));
  progress.Tell("Checking the database", kAfterTrail);
  CheckDatabase(db, findings);
  return findings.list();
}

}  // namespace qdclgl::server
