#include "qdclgl/server/db/schema.h"

#include <array>

#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

// Written in SQLite's words; for PostgreSQL a few of them are replaced (see InDialect). Amounts are
// whole numbers of ten-thousandths, quantities in balances of millionths, truth values 0 and 1,
// dates texts such as "2024-01-31". Nothing is ever Null: the zero of a type stands for "none".
constexpr std::array kMigrations = {
    Migration{"The books", R"(
CREATE TABLE t_SystemProfile (
  FCategory TEXT NOT NULL,
  FKey TEXT NOT NULL,
  FValue TEXT NOT NULL,
  PRIMARY KEY (FCategory, FKey)
);

CREATE TABLE t_User (
  FUserID IDENTITY,
  FVersion INTEGER NOT NULL,
  FName TEXT NOT NULL UNIQUE,
  FPassword TEXT NOT NULL,
  FRoles INTEGER NOT NULL,
  FDisabled INTEGER NOT NULL
);

CREATE TABLE t_Currency (
  FCurrencyID IDENTITY,
  FVersion INTEGER NOT NULL,
  FNumber TEXT NOT NULL UNIQUE,
  FName TEXT NOT NULL,
  FExchangeRate REAL NOT NULL,
  FOperator TEXT NOT NULL,
  FScale INTEGER NOT NULL,
  FFixRate INTEGER NOT NULL,
  FDeleted INTEGER NOT NULL,
  UUID TEXT NOT NULL
);

CREATE TABLE t_Account (
  FAccountID IDENTITY,
  FVersion INTEGER NOT NULL,
  FNumber TEXT NOT NULL UNIQUE,
  FName TEXT NOT NULL,
  FFullName TEXT NOT NULL,
  FLevel INTEGER NOT NULL,
  FDetail INTEGER NOT NULL,
  FParentID INTEGER NOT NULL,
  FRootID INTEGER NOT NULL,
  FDC INTEGER NOT NULL,
  FGroupID INTEGER NOT NULL,
  FCurrencyID INTEGER NOT NULL REFERENCES t_Currency (FCurrencyID),
  FHelperCode TEXT NOT NULL,
  FQuantities INTEGER NOT NULL,
  FMeasureUnitID INTEGER NOT NULL,
  FMeasureUnit TEXT NOT NULL,
  FUnitGroupID INTEGER NOT NULL,
  FUnitGroup TEXT NOT NULL,
  FIsCash INTEGER NOT NULL,
  FIsBank INTEGER NOT NULL,
  FIsBudget INTEGER NOT NULL,
  FIsBusi INTEGER NOT NULL,
  FIsCashFlow INTEGER NOT NULL,
  FJournal INTEGER NOT NULL,
  FContact INTEGER NOT NULL,
  FAdjustRate INTEGER NOT NULL,
  FAcctint INTEGER NOT NULL,
  FintRate REAL NOT NULL,
  FInterest INTEGER NOT NULL,
  FLastIntDate TEXT NOT NULL,
  FAcnt INTEGER NOT NULL,
  FAcntID INTEGER NOT NULL,
  FAcntType INTEGER NOT NULL,
  FIsAcnt INTEGER NOT NULL,
  FControl INTEGER NOT NULL,
  FControlSystem INTEGER NOT NULL,
  FDetailID INTEGER NOT NULL,
  FEarnAccountID INTEGER NOT NULL,
  FSpecialType INTEGER NOT NULL,
  FMessage TEXT NOT NULL,
  FViewMsg INTEGER NOT NULL,
  FDelete INTEGER NOT NULL,
  UUID TEXT NOT NULL
);
CREATE INDEX t_Account_Parent ON t_Account (FParentID);

CREATE TABLE t_AccountItem (
  FAccountID INTEGER NOT NULL REFERENCES t_Account (FAccountID),
  FItemClassID INTEGER NOT NULL,
  FItemClassNumber TEXT NOT NULL,
  FItemClassName TEXT NOT NULL,
  PRIMARY KEY (FAccountID, FItemClassID)
);

CREATE TABLE t_VoucherGroup (
  FGroupID IDENTITY,
  FVersion INTEGER NOT NULL,
  FName TEXT NOT NULL UNIQUE,
  FStandard INTEGER NOT NULL,
  FLimitMulti INTEGER NOT NULL,
  FDRange TEXT NOT NULL,
  FCRange TEXT NOT NULL,
  FDCRange TEXT NOT NULL,
  FNDRange TEXT NOT NULL,
  FNCRange TEXT NOT NULL,
  FNDCRange TEXT NOT NULL,
  FDeleted INTEGER NOT NULL,
  UUID TEXT NOT NULL
);

CREATE TABLE t_Voucher (
  FVoucherID IDENTITY,
  FVersion INTEGER NOT NULL,
  FDate TEXT NOT NULL,
  FYear INTEGER NOT NULL,
  FPeriod INTEGER NOT NULL,
  FGroupID INTEGER NOT NULL REFERENCES t_VoucherGroup (FGroupID),
  FNumber INTEGER NOT NULL,
  FReference TEXT NOT NULL,
  FExplanation TEXT NOT NULL,
  FAttachments INTEGER NOT NULL,
  FEntryCount INTEGER NOT NULL,
  FDetailCount INTEGER NOT NULL,
  FDebitTotal INTEGER NOT NULL,
  FCreditTotal INTEGER NOT NULL,
  FTransDate TEXT NOT NULL,
  FTranType INTEGER NOT NULL,
  FSerialNum INTEGER NOT NULL,
  FInternalInd TEXT NOT NULL,
  FHandler TEXT NOT NULL,
  FObjectName TEXT NOT NULL,
  FParameter TEXT NOT NULL,
  FFootNote TEXT NOT NULL,
  FLockDate INTEGER NOT NULL,
  FIsAmortize INTEGER NOT NULL,
  FAmortizeSchemeID INTEGER NOT NULL,
  FBlankOutFlag INTEGER NOT NULL,
  FOwnerGroupID INTEGER NOT NULL,
  FPreparerID INTEGER NOT NULL,
  FPreparer TEXT NOT NULL,
  FChecked INTEGER NOT NULL,
  FCheckerID INTEGER NOT NULL,
  FChecker TEXT NOT NULL,
  FApproveID INTEGER NOT NULL,
  FApprover TEXT NOT NULL,
  FCashierID INTEGER NOT NULL,
  FCashier TEXT NOT NULL,
  FPosted INTEGER NOT NULL,
  FPosterID INTEGER NOT NULL,
  FPoster TEXT NOT NULL,
  FSummarized INTEGER NOT NULL,
  FDeleted INTEGER NOT NULL,
  FExtra TEXT NOT NULL
);
CREATE UNIQUE INDEX t_Voucher_Number ON t_Voucher (FYear, FPeriod, FGroupID, FNumber);

CREATE TABLE t_VoucherEntry (
  FVoucherID INTEGER NOT NULL REFERENCES t_Voucher (FVoucherID),
  FEntryID INTEGER NOT NULL,
  FAccountID INTEGER NOT NULL REFERENCES t_Account (FAccountID),
  FDC INTEGER NOT NULL,
  FAmount INTEGER NOT NULL,
  FCurrencyID INTEGER NOT NULL REFERENCES t_Currency (FCurrencyID),
  FAmountFor INTEGER NOT NULL,
  FExchangeRate REAL NOT NULL,
  FQuantity REAL NOT NULL,
  FUnitPrice REAL NOT NULL,
  FMeasureUnitID INTEGER NOT NULL,
  FMeasureUnit TEXT NOT NULL,
  FMeasureUnitNumber TEXT NOT NULL,
  FExplanation TEXT NOT NULL,
  FCashFlowItem INTEGER NOT NULL,
  FSettleTypeID INTEGER NOT NULL,
  FSettleNo TEXT NOT NULL,
  FTransNo TEXT NOT NULL,
  FExtra TEXT NOT NULL,
  PRIMARY KEY (FVoucherID, FEntryID)
) CLUSTERED;
CREATE INDEX t_VoucherEntry_Account ON t_VoucherEntry (FAccountID);

CREATE TABLE t_VoucherDetail (
  FVoucherID INTEGER NOT NULL,
  FEntryID INTEGER NOT NULL,
  FIndex INTEGER NOT NULL,
  FDetail INTEGER NOT NULL,
  FItemClassID INTEGER NOT NULL,
  FItemClassNumber TEXT NOT NULL,
  FItemClassName TEXT NOT NULL,
  FItemID INTEGER NOT NULL,
  FItemNumber TEXT NOT NULL,
  FItemName TEXT NOT NULL,
  FItemFullName TEXT NOT NULL,
  FValue TEXT NOT NULL,
  PRIMARY KEY (FVoucherID, FEntryID, FIndex),
  FOREIGN KEY (FVoucherID, FEntryID) REFERENCES t_VoucherEntry (FVoucherID, FEntryID)
) CLUSTERED;

CREATE TABLE t_Counter (
  FYear INTEGER NOT NULL,
  FPeriod INTEGER NOT NULL,
  FGroupID INTEGER NOT NULL REFERENCES t_VoucherGroup (FGroupID),
  FNext INTEGER NOT NULL,
  PRIMARY KEY (FYear, FPeriod, FGroupID)
) CLUSTERED;

CREATE TABLE t_Balance (
  FAccountID INTEGER NOT NULL REFERENCES t_Account (FAccountID),
  FCurrencyID INTEGER NOT NULL REFERENCES t_Currency (FCurrencyID),
  FYear INTEGER NOT NULL,
  FPeriod INTEGER NOT NULL,
  FDebit INTEGER NOT NULL,
  FCredit INTEGER NOT NULL,
  FDebitFor INTEGER NOT NULL,
  FCreditFor INTEGER NOT NULL,
  FDebitQty INTEGER NOT NULL,
  FCreditQty INTEGER NOT NULL,
  PRIMARY KEY (FAccountID, FCurrencyID, FYear, FPeriod)
) CLUSTERED;
)"},
    Migration{"Who did what, and when; vouchers found by their reference", R"(
CREATE TABLE t_Audit (
  FAuditID IDENTITY,
  FTime TEXT NOT NULL,
  FUserID INTEGER NOT NULL,
  FUserName TEXT NOT NULL,
  FMachineName TEXT NOT NULL,
  FIPAddress TEXT NOT NULL,
  FSubject TEXT NOT NULL,
  FRecordID INTEGER NOT NULL,
  FRecord TEXT NOT NULL,
  FAction TEXT NOT NULL,
  FOrigin INTEGER NOT NULL,
  FChanges TEXT NOT NULL
);
CREATE INDEX t_Audit_Record ON t_Audit (FSubject, FRecordID);
CREATE INDEX t_Voucher_Reference ON t_Voucher (FReference);
)"},
};

// Replaces whole words of `sql`.
std::string InDialect(Database& database, std::string_view sql) {
  struct Word {
    std::string_view word, sqlite, postgresql;
  };
  static constexpr std::array kWords = {
      Word{"IDENTITY", "INTEGER PRIMARY KEY AUTOINCREMENT",
           "BIGINT GENERATED BY DEFAULT AS IDENTITY PRIMARY KEY"},
      Word{"INTEGER", "INTEGER", "BIGINT"},
      Word{"REAL", "REAL", "DOUBLE PRECISION"},
      Word{"TEXT", "TEXT", "TEXT COLLATE \"C\""},
      Word{"CLUSTERED", "WITHOUT ROWID", ""},
  };
  const auto is_word = [](char c) {
    return c == '_' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
  };
  std::string result;
  for (std::size_t i = 0; i < sql.size();) {
    std::size_t end = i + 1;
    if (is_word(sql[i])) {
      while (end < sql.size() && is_word(sql[end])) ++end;
    }
    std::string_view text = sql.substr(i, end - i);
    for (const Word& word : kWords) {
      if (text == word.word) {
        text = database.Dialect(word.sqlite, word.postgresql);
        break;
      }
    }
    result += text;
    i = end;
  }
  return result;
}

}  // namespace

std::span<const Migration> Migrations() { return kMigrations; }

int SchemaVersion(Database& database) {
  const auto count = database.QueryValue<int>(
      database.Dialect("SELECT COUNT(*) FROM sqlite_master WHERE name = 't_Schema'",
                       "SELECT COUNT(*) FROM information_schema.tables"
                       " WHERE table_schema = current_schema() AND table_name = 't_schema'"));
  if (count == 0) return 0;
  return database.QueryValue<int>("SELECT COALESCE(MAX(FVersion), 0) FROM t_Schema").value_or(0);
}

void Migrate(Database& database, int version) {
  int present = SchemaVersion(database);
  if (present == 0) {
    database.ExecuteScript(InDialect(database,
                                     "CREATE TABLE t_Schema (FVersion INTEGER NOT NULL PRIMARY KEY,"
                                     " FTitle TEXT NOT NULL);"));
  }
  for (; present < version; ++present) {
    const Migration& migration = Migrations()[static_cast<std::size_t>(present)];
    database.ExecuteScript(InDialect(database, migration.sql));
    database.Execute("INSERT INTO t_Schema (FVersion, FTitle) VALUES (?, ?)", present + 1,
                     migration.title);
  }
}

void RequireCurrentSchema(Database& database) {
  const int version = SchemaVersion(database);
  if (version == CurrentSchemaVersion()) return;
  if (version == 0) Refuse(refusal::kNoBooks, "The database holds no books.");
  Refuse(refusal::kWrongSchema,
         "The books are of version " + std::to_string(version) + ", this program works with " +
             std::to_string(CurrentSchemaVersion()) +
             (version < CurrentSchemaVersion() ? ": back them up and upgrade them."
                                               : ": a newer program has upgraded them."));
}

}  // namespace qdclgl::server
