#include "qdclgl/server/db/schema.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <set>

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/db/new_books.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/periods/settings.h"
#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

class SchemaTest : public RecordsTest {
 protected:
  Long Version(const std::string& text) {
    return Call("QDSVGLBooks.BooksInfo", "Version", text).As<Long>();
  }
  Long Upgrade(const std::string& text) {
    return Call("QDSVGLBooks.BooksUpdate", "Upgrade", text).As<Long>();
  }
  // Books as an older program made them, with some rows in them.
  std::string OldBooks(int version) {
    const std::string text = NewConnectionText(GetParam());
    MakeBooks(ConnectionText::Parse(text), [&](Database& db) {
      Migrate(db, version);
      db.Execute("INSERT INTO t_VoucherGroup (FVersion, FName, FStandard, FLimitMulti, FDRange,"
                 " FCRange, FDCRange, FNDRange, FNCRange, FNDCRange, FDeleted, UUID)"
                 " VALUES (1, 'Receipts', 0, 0, '', '', '', '', '', '', 0, '')");
    });
    return text;
  }
};

TEST_P(SchemaTest, NewBooksAreOfTheCurrentVersion) {
  EXPECT_EQ(Version(connection), CurrentSchemaVersion());
  EXPECT_EQ(Upgrade(connection), CurrentSchemaVersion());
  const auto titles =
      Books().Query<int, std::string>("SELECT FVersion, FTitle FROM t_Schema ORDER BY FVersion");
  ASSERT_EQ(titles.size(), Migrations().size());
  for (std::size_t i = 0; i < titles.size(); ++i) {
    EXPECT_EQ(std::get<0>(titles[i]), static_cast<int>(i) + 1);
    EXPECT_EQ(std::get<1>(titles[i]), Migrations()[i].title);
  }
}

TEST_P(SchemaTest, OldBooksAreUpgradedWithWhatIsInThem) {
  for (int version = 1; version < CurrentSchemaVersion(); ++version) {
    const std::string old = OldBooks(version);
    EXPECT_EQ(Version(old), version);
    EXPECT_EQ(RefusalOf([&] { Call("QDSVGLSession.SessionUpdate", "Login", old, "x", ""); }),
              "WrongSchema");
    Connections::OfThisThread().CloseAll();
    EXPECT_EQ(Upgrade(old), version);
    EXPECT_EQ(Version(old), CurrentSchemaVersion());
    Database db(ConnectionText::Parse(old));
    EXPECT_EQ(db.QueryValue<std::string>("SELECT FName FROM t_VoucherGroup"), "Receipts");
    RemoveBooks(old);
  }
}

TEST_P(SchemaTest, TheSizeOfWhatIsPostedIsAddedUpWhateverItIs) {
  const auto size_of = [&](const std::vector<std::string>& lines) {
    const std::string old = OldBooks(2);
    {
      Database db(ConnectionText::Parse(old));
      db.ExecuteScript(std::string(
          db.Dialect("PRAGMA foreign_keys = OFF;", "SET session_replication_role = replica;")));
      const std::string rest = "'', '', 0, 0, '', '', '')";
      std::string voucher = "INSERT INTO t_Voucher VALUES (1";
      for (const auto& column : ColumnsOf("t_Voucher")) {
        if (column == "FVoucherID" || column == "fvoucherid") continue;
        const bool is_posted = column == "FPosted" || column == "fposted";
        voucher += is_posted ? ", 1" : ", 0";
      }
      db.ExecuteScript(voucher + ");");
      int number = 0;
      for (const std::string& amounts : lines) {
        db.ExecuteScript("INSERT INTO t_VoucherEntry (FVoucherID, FEntryID, FAccountID, FDC,"
                         " FAmount, FAmountFor, FQuantity, FCurrencyID, FExchangeRate, FUnitPrice,"
                         " FMeasureUnitID, FMeasureUnit, FMeasureUnitNumber, FExplanation,"
                         " FCashFlowItem, FSettleTypeID, FSettleNo, FTransNo, FExtra) VALUES (1, " +
                         std::to_string(++number) + ", 1, 1, " + amounts + ", 1, 0, 0, 0, '', " +
                         rest + ";");
      }
      db.ExecuteScript("INSERT INTO t_Counter VALUES (0, 0, 0, 2147483648);");
    }
    EXPECT_EQ(Upgrade(old), 2);
    Database db(ConnectionText::Parse(old));
    const auto size = db.QueryValue<std::int64_t>("SELECT FSize FROM t_Posted");
    EXPECT_EQ(db.QueryValue<std::int64_t>("SELECT FNext FROM t_Counter"), 1);
    RemoveBooks(old);
    return size.value_or(-1);
  };
  EXPECT_EQ(size_of({}), 0);
  EXPECT_EQ(size_of({"5, -7, 0.0000025", "-3, 0, -0.0000045", "1, 1, 0.0000014"}), 7 + 5 + 1);
  EXPECT_EQ(size_of({"4611686018427387903, 0, 0", "-4611686018427387903, 0, 0", "1, 0, 0"}),
            INT64_MAX);
  EXPECT_EQ(size_of({"4611686018427387903, 0, 0", "4611686018427387903, 0, 1e12",
                     "4611686018427387903, 0, 0"}),
            INT64_MAX);
}

TEST_P(SchemaTest, YearsButTheLastAreSummedAndVouchersOfClosedPeriodsSigned) {
  const std::string old = OldBooks(23);
  {
    Database db(ConnectionText::Parse(old));
    db.ExecuteScript(std::string(
        db.Dialect("PRAGMA foreign_keys = OFF;", "SET session_replication_role = replica;")));
    db.Execute("INSERT INTO t_Balance (FAccountID, FCurrencyID, FYear, FPeriod, FDebit, FCredit,"
               " FDebitFor, FCreditFor, FDebitQty, FCreditQty) VALUES"
               " (1, 1, 2022, 12, 1, 2, 3, 4, 5, 6), (1, 1, 2023, 1, 10, 20, 30, 40, 50, 60),"
               " (1, 1, 2023, 2, 1, 1, 1, 1, 1, 1), (1, 2, 2023, 2, 7, 7, 7, 7, 7, 7),"
               " (2, 1, 2023, 1, 4611686018427387903, 0, 0, 0, 0, 0),"
               " (2, 1, 2023, 2, 4611686018427387903, 0, 0, 0, 0, 0),"
               " (2, 1, 2024, 1, 9, 9, 9, 9, 9, 9)");
    // A row that is 0 but for these columns.
    const auto add = [&](const std::string& table, const std::map<std::string, int>& columns) {
      std::string values;
      for (const auto& column : ColumnsOf(table)) {
        const auto found = columns.find(FoldAsciiCase(column));
        values += (values.empty() ? "" : ", ") +
                  std::to_string(found == columns.end() ? 0 : found->second);
      }
      db.Execute("INSERT INTO " + table + " VALUES (" + values + ")");
    };
    for (const int id : {1, 2}) {
      add("t_Account", {{"faccountid", id}, {"fnumber", id}});
      add("t_Currency", {{"fcurrencyid", id}, {"fnumber", id}});
    }
    for (int id = 1; id <= 200; ++id) {
      add("t_Voucher",
          {{"fvoucherid", id}, {"fnumber", id}, {"fyear", 2024}, {"fperiod", 1 + id / 150}});
    }
    PutGlSetting(db, setting::kCurrentYear, "2024");
    PutGlSetting(db, setting::kCurrentPeriod, "2");
  }
  EXPECT_EQ(Upgrade(old), 23);
  Database db(ConnectionText::Parse(old));
  const auto rows = [&](const std::string& columns, const std::string& table) {
    std::string cells, text;
    for (std::size_t from = 0; from < columns.size();) {
      const std::size_t end = std::min(columns.find(' ', from), columns.size());
      cells += (cells.empty() ? "CAST(" : " || ' ' || CAST(") + columns.substr(from, end - from) +
               " AS TEXT)";
      from = end + 1;
    }
    for (const auto& [row] :
         db.Query<std::string>("SELECT " + cells + " FROM " + table + " ORDER BY 1")) {
      text += row + "\n";
    }
    return text;
  };
  const std::string sums = "FDebit FCredit FDebitFor FCreditFor FDebitQty FCreditQty";
  EXPECT_EQ(rows("FAccountID FCurrencyID FYear " + sums, "t_YearBalance"),
            "1 1 2022 1 2 3 4 5 6\n1 1 2023 11 21 31 41 51 61\n1 2 2023 7 7 7 7 7 7\n"
            "2 1 2023 9223372036854775806 0 0 0 0 0\n");
  EXPECT_EQ(rows("FAccountID FCurrencyID FYear FPeriod " + sums, "t_Balance"),
            "1 1 2022 12 1 2 3 4 5 6\n1 1 2023 1 10 20 30 40 50 60\n1 1 2023 2 1 1 1 1 1 1\n"
            "1 2 2023 2 7 7 7 7 7 7\n2 1 2023 1 4611686018427387903 0 0 0 0 0\n"
            "2 1 2023 2 4611686018427387903 0 0 0 0 0\n2 1 2024 1 9 9 9 9 9 9\n");
  EXPECT_EQ(rows("FSummedYear", "t_Posted"), "2023\n");
  EXPECT_EQ(rows("FBlock FYear FPeriod", "t_TextSignature"), "0 2024 1\n1 2024 1\n")
      << "in the block behind them are vouchers of February";
  RemoveBooks(old);
}

// The rows of every table but t_Schema, over the columns that it has in this state of the books: a
// line for each row, by table.
using Tables = std::map<std::string, std::vector<std::string>>;  // columns by table
Tables TablesIn(Database& db) {
  Tables tables;
  for (const auto& [table, column] :
       db.IsSQLite()
           ? db.Query<std::string, std::string>(
                 "SELECT m.name, c.name FROM sqlite_master m, pragma_table_info(m.name) c"
                 " WHERE m.type = 'table' AND m.name LIKE 't\\_%' ESCAPE '\\' ORDER BY c.cid")
           : db.Query<std::string, std::string>(
                 "SELECT table_name, column_name FROM information_schema.columns"
                 " WHERE table_schema = current_schema() ORDER BY ordinal_position")) {
    if (table != "t_Schema" && table != "t_schema") tables[table].push_back(column);
  }
  return tables;
}
std::set<std::string> RowsOf(Database& db, const Tables& tables) {
  std::set<std::string> rows;
  for (const auto& [table, columns] : tables) {
    std::string cells;
    for (const std::string& column : columns) cells += " || '|' || CAST(" + column + " AS TEXT)";
    for (const auto& [row] :
         db.Query<std::string>("SELECT '" + table + "'" + cells + " FROM " + table)) {
      rows.insert(row);
    }
  }
  return rows;
}

// Books as a program of a former version left them, from a file of this folder.
class FormerBooksTest : public SchemaTest {
 protected:
  static std::string FileOf(int version) {
    return QDCLGL_SOURCE_DIR "/tests/server/db/books/version-" + std::to_string(version) + ".sql";
  }
  static bool IsKept(int version) { return std::ifstream(FileOf(version)).good(); }
  std::string FormerBooks(int version) {
    const std::string text = NewConnectionText(GetParam());
    MakeBooks(ConnectionText::Parse(text), [&](Database& db) {
      Migrate(db, version);
      std::ifstream file(FileOf(version));
      for (std::string line; std::getline(file, line);) {
        if (!line.starts_with("--")) db.Execute(line.substr(0, line.rfind(';')));
      }
      if (db.IsSQLite()) return;
      for (const auto& [table, id] : db.Query<std::string, std::string>(
               "SELECT table_name, column_name FROM information_schema.columns"
               " WHERE table_schema = current_schema() AND is_identity = 'YES'")) {
        db.QueryValue<Long>("SELECT setval(pg_get_serial_sequence('" + table + "', '" + id +
                            "'), (SELECT COALESCE(MAX(" + id + "), 0) + 1 FROM " + table +
                            "), false)");
      }
    });
    return text;
  }
};

TEST_P(FormerBooksTest, AreUpgradedWithEverythingThatIsInThem) {
  int version = 1;
  for (; IsKept(version); ++version) {
    const std::string former = FormerBooks(version);
    Tables tables;
    std::set<std::string> before;
    {
      Database db(ConnectionText::Parse(former));
      tables = TablesIn(db);
      before = RowsOf(db, tables);
    }
    ASSERT_GT(before.size(), 40u);
    EXPECT_EQ(Upgrade(former), version);
    props = Call("QDSVGLSession.SessionUpdate", "Login", former, "administrator", "").As<String>();
    std::set<std::string> after = RowsOf(Books(), tables);
    // The trail alone has grown.
    std::erase_if(after, [&](const std::string& row) {
      return FoldAsciiCase(row).starts_with("t_audit|") && !before.contains(row);
    });
    EXPECT_EQ(after, before);
    EXPECT_EQ(Breaches(), "");
    RemoveBooks(former);
  }
  EXPECT_GE(version, 3) << "there are no former books in " << FileOf(1);
}

TEST_P(FormerBooksTest, HaveAWholeTrailFromThereOn) {
  const std::string former = FormerBooks(2);
  Upgrade(former);
  props = Call("QDSVGLSession.SessionUpdate", "Login", former, "administrator", "").As<String>();
  const auto trail = [&](const std::string& filter) {
    return TextOf(Call("QDSVGLAudit.AuditInfo", "GetList", props, filter).As<Recordset>(),
                  {"FNumber", "FUserName", "FAction", "FChanges"});
  };
  const std::string anna = trail("FSubject = 'User' AND FRecordID = 2");
  EXPECT_TRUE(anna.starts_with("1 administrator Create \n"
                               "2 administrator Update FDisabled: False -> True\n"
                               "3  Upgrade {\"new\":{\"FVersion\":2,\"FName\":\"anna\","
                               "\"FPassword\":\"fingerprint "))
      << anna;
  Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, Long{5}, true);
  EXPECT_NE(trail("FSubject = 'Voucher' AND FRecordID = 5 AND FAction = 'Purge'")
                .find("\"FReference\":\"A5\""),
            std::string::npos);
  EXPECT_EQ(Breaches(), "");
  Break("UPDATE t_Voucher SET FExplanation = 'nothing' WHERE FVoucherID = 3");
  EXPECT_EQ(Breaches(), "Record Voucher 3 2024/2 Payments 1\n");
  Break("UPDATE t_Audit SET FUserName = 'bob' WHERE FSubject = 'Period'");
  EXPECT_EQ(Breaches(), "Trail Period 0 2024/1\nRecord Voucher 3 2024/2 Payments 1\n");
  RemoveBooks(former);
}

TEST_P(SchemaTest, RecordsThatAnUpgradeBringsToBooksWithAWholeTrailAreOnItAndNoOthers) {
  constexpr int kBeforeItemClasses = 5;
  const std::string old = OldBooks(kBeforeItemClasses);
  {
    Database db(ConnectionText::Parse(old));
    db.Execute("INSERT INTO t_AuditSeal VALUES (1, '2024-01-31 12:00:00', 0, 0, '', 'hash')");
  }
  Upgrade(old);
  Database db(ConnectionText::Parse(old));
  std::string trail;
  for (const auto& [subject, id, record, action] :
       db.Query<std::string, Long, std::string, std::string>(
           "SELECT FSubject, FRecordID, FRecord, FAction FROM t_Audit ORDER BY FAuditID")) {
    if (subject == "ItemClass") trail += std::to_string(id) + " " + record + " " + action + "\n";
    EXPECT_NE(subject, "VoucherGroup") << "it was in the books before";
  }
  EXPECT_EQ(trail, "1 DEP (部门) Upgrade\n2 STAFF (职员) Upgrade\n3 CUSTOMER (客户) Upgrade\n"
                   "4 SUPPLIER (供应商) Upgrade\n5 GOODS (商品) Upgrade\n");
  RemoveBooks(old);
}

TEST_P(FormerBooksTest, HaveTheSettlementTypesThatTheirLinesName) {
  const std::string former = FormerBooks(2);
  {
    Database db(ConnectionText::Parse(former));
    db.Execute("UPDATE t_VoucherEntry SET FSettleTypeID = 70 WHERE FVoucherID = 1");
    db.Execute("UPDATE t_VoucherEntry SET FSettleTypeID = -3 WHERE FVoucherID = 2");
  }
  Upgrade(former);
  props = Call("QDSVGLSession.SessionUpdate", "Login", former, "administrator", "").As<String>();
  Long options = 0;
  String filter, sort = "FItemID";
  const auto list = Call("QDSVGLSettType.SettTypeInfo", "GetList", props, ByRef(options),
                         ByRef(filter), ByRef(sort))
                        .As<Recordset>();
  EXPECT_EQ(TextOf(list, {"FItemID", "FVersion", "FNumber", "FName", "FAcctID", "FBrNo"}),
            "-3 1 _3  0 0\n70 1 70  0 0\n");
  EXPECT_EQ(Breaches(), "");
  EXPECT_EQ(
      Call("QDSVGLSettType.SettTypeUpdate", "Create", props, Row({{"FNumber", "CHQ"}})).As<Long>(),
      71)
      << "ids go on behind them";
  RemoveBooks(former);
}

TEST_P(FormerBooksTest, HaveTheItemsThatTheirLinesNameAndBalancesByThem) {
  const std::string former = FormerBooks(2);
  {
    // What callers could write there: account 1 asks for customers, 3 for goods, and the lines of
    // vouchers 1 and 3 name some.
    Database db(ConnectionText::Parse(former));
    db.Execute("INSERT INTO t_AccountItem VALUES (1, 3, '', '')");
    db.Execute("INSERT INTO t_AccountItem VALUES (1, 77, '', '')");
    db.Execute("INSERT INTO t_AccountItem VALUES (3, 5, '', '')");
    const auto add = [&](Long voucher, Long account, Long item_class, Long item) {
      db.Execute("INSERT INTO t_VoucherDetail SELECT FVoucherID, FEntryID, 5 + ?, 0, ?, '', '', ?,"
                 " '', 'Anna', '', '' FROM t_VoucherEntry WHERE FVoucherID = ? AND FAccountID = ?",
                 item_class, item_class, item, voucher, account);
    };
    add(1, 1, 3, 70);
    add(1, 1, 4, 71);
    add(1, 1, 77, 72);
  }
  Upgrade(former);
  props = Call("QDSVGLSession.SessionUpdate", "Login", former, "administrator", "").As<String>();
  EXPECT_EQ(
      TextOf(Call("QDSVGLItem.ItemInfo", "GetList", props).As<Recordset>(),
             {"FItemID", "FItemClassID", "FNumber", "FName", "FFullName", "FLevel", "FDetail"}),
      "70 3 70 Anna Anna 1 True\n");
  for (const char* method : {"GetItemList", "GetItemListFromLines"}) {
    const auto list = [&](const char* classes) {
      return TextOf(Call("QDSVGLBalance.BalanceInfo", method, props, classes).As<Recordset>(),
                    {"FAccountID", "FCurrencyID", "FItemID1", "FItemNumber1", "FDebit", "FCredit"});
    };
    EXPECT_EQ(list("CUSTOMER"), "1 0 70 70 100.5 0\n1 1 70 70 100.5 0\n") << method;
    EXPECT_EQ(list("GOODS"), "3 0 0  0 210.5\n3 1 0  0 210.5\n") << method;
  }
  EXPECT_EQ(Breaches(), "");
  EXPECT_EQ(Call("QDSVGLItem.ItemUpdate", "Create", props, Long{3},
                 Row({{"FNumber", "NEXT"}, {"FName", "Next"}}))
                .As<Long>(),
            71)
      << "ids go on behind them";
  RemoveBooks(former);
}

TEST_P(FormerBooksTest, HaveTheUnitsThatTheirAccountsAndLinesName) {
  const std::string former = FormerBooks(2);
  {
    Database db(ConnectionText::Parse(former));
    const auto account = [&](Long id, std::string_view values) {
      db.Execute("UPDATE t_Account SET " + std::string(values) + " WHERE FAccountID = ?", id);
    };
    account(1, "FUnitGroupID = 3, FUnitGroup = 'Weights', FMeasureUnitID = 8, FMeasureUnit = 'kg'");
    account(2, "FMeasureUnitID = 9, FMeasureUnit = 'pc'");
    account(3, "FUnitGroup = 'Lengths', FMeasureUnit = 'm'");
    db.Execute("UPDATE t_VoucherEntry SET FMeasureUnitID = 7"
               " WHERE FAccountID = 1");
    db.Execute("UPDATE t_VoucherEntry SET FMeasureUnitID = 6, FMeasureUnit = 'box'"
               " WHERE FAccountID = 3");
  }
  Upgrade(former);
  props = Call("QDSVGLSession.SessionUpdate", "Login", former, "administrator", "").As<String>();
  const auto units = Call("QDSVGLUnit.MeasureUnitInfo", "GetUnitList", props, Long{0});
  EXPECT_EQ(TextOf(units.As<Recordset>(),
                   {"FMeasureUnitID", "FUnitGroupID", "FNumber", "FName", "FCoefficient"}),
            "6 4 6 box 1\n7 3 7 7 1\n8 3 8 kg 1\n9 4 9 pc 1\n");
  const auto groups = Call("QDSVGLUnit.MeasureUnitInfo", "GetUnitGroupList", props, Long{0});
  EXPECT_EQ(TextOf(groups.As<Recordset>(), {"FUnitGroupID", "FName", "FDefaultUnit"}),
            "3 Weights (3) 7\n4 Units of no group box\n");
  EXPECT_EQ(Books().QueryValue<int>("SELECT COUNT(*) FROM t_VoucherEntry"
                                    " WHERE FBaseQuantity <> 0"),
            0)
      << "what was entered counts as before";
  EXPECT_EQ(Breaches(), "");
  RemoveBooks(former);
}

// Books whose trail had begun before their kinds of records were all there.
TEST_P(SchemaTest, RecordsThatAnUpgradeMakesAreOnTheTrail) {
  const auto types =
      std::ranges::find(Migrations(), "Dictionaries of settlement", &Migration::title);
  const auto before = static_cast<int>(types - Migrations().begin());
  constexpr Long kType = 7;
  Books().Execute("INSERT INTO t_SettType VALUES (?, 1, 'CHQ', '', 0, '', 0)", kType);
  Long voucher = AddVoucher(AddGroup("Receipts"), AddAccount("1"), AddAccount("2"), 5);
  const auto row =
      Call("QDSVGLVoucher.VoucherInfo", "GetDetail", props, ByRef(voucher), false).As<Dictionary>();
  row->Value("_Entries").As<Vector>()->Item(1).As<Dictionary>()->Put("FSettleTypeID", kType);
  Call("QDSVGLVoucher.VoucherUpdate", "Update", props, ByRef(voucher), row);
  // The books as they would be without all that came with the migration and behind it.
  Tables former;
  {
    const std::string old = OldBooks(before);
    former = TablesIn(*std::make_unique<Database>(ConnectionText::Parse(old)));
    RemoveBooks(old);
  }
  for (const char* index :
       {"t_VoucherEntry_SettleType", "t_VoucherDetail_Item", "t_Voucher_Year",
        "t_Voucher_NotPosted", "t_Voucher_Date", "t_Voucher_Carried", "t_Voucher_Revalues"}) {
    Break(std::string("DROP INDEX ") + index);
  }
  for (const auto& [table, columns] : TablesIn(Books())) {
    if (!former.contains(table)) {
      Break("DROP TABLE " + table + (Books().IsSQLite() ? "" : " CASCADE"));
      continue;
    }
    for (const std::string& column : columns) {
      if (std::ranges::find(former[table], column) != former[table].end()) continue;
      Break("ALTER TABLE " + table + " DROP COLUMN " + column);
    }
  }
  Break("DELETE FROM t_Schema WHERE FVersion > " + std::to_string(before));
  Connections::OfThisThread().CloseAll();

  EXPECT_EQ(Upgrade(connection), before);
  EXPECT_EQ(Breaches(), "");
  EXPECT_EQ(
      TextOf(
          Call("QDSVGLAudit.AuditInfo", "GetList", props, "FSubject = 'SettType'").As<Recordset>(),
          {"FRecordID", "FNumber", "FAction", "FChanges"}),
      "7 1 Upgrade {\"new\":{\"FVersion\":1,\"FNumber\":\"7\",\"FBrNo\":\"0\"}}\n");
}

TEST_P(SchemaTest, AnUpgradeThatFailsLeavesTheBooksAsTheyWere) {
  const std::string old = OldBooks(1);
  int statements = 1;
  for (;; ++statements) {
    int count = 0;
    Database::SetStatementHook([&](std::string_view) {
      if (++count == statements) throw Error(4711, "test", "this statement fails");
    });
    const std::string refusal = RefusalOf([&] { Upgrade(old); });
    Database::SetStatementHook(nullptr);
    if (refusal == "none") break;
    ASSERT_EQ(refusal, "error 4711");
    ASSERT_EQ(Version(old), 1) << statements;
  }
  EXPECT_GT(statements, 5);
  EXPECT_EQ(Version(old), CurrentSchemaVersion());
  RemoveBooks(old);
}

class ScriptTest : public SchemaTest {};

// Each message is a place where a connection can be lost, and a wait for who is far away.
TEST_P(ScriptTest, AllStepsAndTheIdentitiesBehindThemAreOneMessage) {
  const std::string fresh = NewConnectionText(GetParam());
  MakeBooks(ConnectionText::Parse(fresh), [](Database& db) {
    std::string messages;
    Database::SetStatementHook([&](std::string_view sql) {
      messages += std::string(sql.substr(0, sql.find_first_of(" \n(", 1))) + "\n";
    });
    Migrate(db, CurrentSchemaVersion());
    Database::SetStatementHook(nullptr);
    EXPECT_EQ(messages, "SELECT\nCREATE\nINSERT\n");
  });
  RemoveBooks(fresh);
}
QDCLGL_BOOKS_TEST_OF(ScriptTest, kPostgreSQL);

TEST_P(SchemaTest, BooksOfANewerProgramAreLeftAlone) {
  Books().Execute("INSERT INTO t_Schema (FVersion, FTitle) VALUES (?, 'The future')",
                  CurrentSchemaVersion() + 1);
  const std::string before = State();
  EXPECT_EQ(RefusalOf([&] { Upgrade(connection); }), "WrongSchema");
  EXPECT_EQ(RefusalOf([&] { Login("administrator"); }), "WrongSchema");
  EXPECT_EQ(State(), before);
}

TEST_P(SchemaTest, WhereThereAreNoBooksNoneAreUpgraded) {
  const std::string nowhere = NewConnectionText(GetParam());
  EXPECT_EQ(RefusalOf([&] { Upgrade(nowhere); }), "NoBooks");
  EXPECT_EQ(RefusalOf([&] { Login("administrator", "x"); }), "LoginRefused");
}

TEST_P(SchemaTest, NoColumnTakesANull) {
  const auto columns =
      Books().IsSQLite()
          ? Books().Query<std::string>(
                "SELECT m.name || '.' || c.name FROM sqlite_master m,"
                " pragma_table_info(m.name) c WHERE m.type = 'table' AND m.name LIKE 't\\_%'"
                " ESCAPE '\\' AND c.\"notnull\" = 0 AND c.pk = 0")
          : Books().Query<std::string>(
                "SELECT table_name || '.' || column_name FROM information_schema.columns"
                " WHERE table_schema = current_schema() AND is_nullable = 'YES'");
  for (const auto& [column] : columns) ADD_FAILURE() << column;
}

QDCLGL_BOOKS_TEST(SchemaTest);
QDCLGL_BOOKS_TEST(FormerBooksTest);

}  // namespace
}  // namespace qdclgl::server::testing
