#include "qdclgl/server/records/currency.h"

#include <limits>

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/containers/vector.h"
#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kInfo = "QDSVGLCurrency.CurrencyInfo";
constexpr const char* kUpdate = "QDSVGLCurrency.CurrencyUpdate";

class CurrencyTest : public RecordsTest {
 protected:
  Long Create(const Ref<Dictionary>& row) { return Call(kUpdate, "Create", props, row).As<Long>(); }
  void Update(Long id, const Ref<Dictionary>& row) {
    Call(kUpdate, "Update", props, ByRef(id), row);
  }
  void Delete(Long id) {
    Call(kUpdate, "Delete", props, ByRef(id), std::string("HOST"), std::string("10.0.0.1"));
  }
  Ref<Dictionary> Detail(Long id) {
    return Call(kInfo, "GetDetail", props, ByRef(id)).As<Dictionary>();
  }
  Ref<Recordset> List(Long options = 0, std::string filter = "", std::string sort = "") {
    return Call(kInfo, "GetList", props, ByRef(options), ByRef(filter), ByRef(sort))
        .As<Recordset>();
  }
  Long AddDollar() { return Create(Row({{"FNumber", "usd"}, {"FName", "US dollar"}})); }
  void UseInAccount(Long currency) {
    Call("QDSVGLAccount.AccountUpdate", "Create", props,
         Row({{"FNumber", "1000"}, {"FName", "Cash"}, {"FCurrencyID", currency}}));
  }
};

TEST_P(CurrencyTest, NewBooksHaveTheBaseCurrency) {
  EXPECT_EQ(TextOf(*Detail(1)),
            "FCurrencyID=1;FVersion=1;FNumber=EUR;FName=EUR;FExchangeRate=1;FOperator=*;FScale=2;"
            "FFixRate=1;FDeleted=False;UUID=;");
}

TEST_P(CurrencyTest, CreateFillsWhatTheRowLeavesOut) {
  const Ref<Dictionary> row = Row({{"FNumber", "usd"}, {"MachineName", "HOST"}, {"IPAddress", ""}});
  const Long id = Create(row);
  EXPECT_EQ(TextOf(*Detail(id)),
            "FCurrencyID=" + std::to_string(id) +
                ";FVersion=1;FNumber=USD;FName=;FExchangeRate=1;FOperator=*;FScale=2;FFixRate=0;"
                "FDeleted=False;UUID=;");
  EXPECT_EQ(row->Value("FCurrencyID").As<Long>(), id);
  EXPECT_EQ(row->Value("FVersion").As<Long>(), 1);
  EXPECT_EQ(row->Value("FNumber").As<String>(), "usd") << "the rest of the sent row stays";
}

TEST_P(CurrencyTest, DetailsHaveTheTypesOfTheirMembers) {
  const Ref<Dictionary> row = Detail(1);
  const auto type = [&](const char* key) { return TypeName(row->Value(key).Type()); };
  EXPECT_EQ(type("FCurrencyID"), "Long");
  EXPECT_EQ(type("FExchangeRate"), "Double");
  EXPECT_EQ(type("FScale"), "Integer");
  EXPECT_EQ(type("FFixRate"), "Integer");
  EXPECT_EQ(type("FDeleted"), "Boolean");
  EXPECT_EQ(type("FNumber"), "String");
}

TEST_P(CurrencyTest, NullishValuesStandForWhatIsAbsent) {
  const Long id = Create(Row({{"FNumber", "usd"},
                              {"FExchangeRate", Null},
                              {"FOperator", Variant()},
                              {"FScale", Nothing},
                              {"FName", Missing}}));
  EXPECT_EQ(Detail(id)->Value("FExchangeRate").As<Double>(), 1);
  EXPECT_EQ(Detail(id)->Value("FOperator").As<String>(), "*");
  EXPECT_EQ(Detail(id)->Value("FScale").As<Long>(), 2);
}

TEST_P(CurrencyTest, AnAbsentKeyClearsTheColumn) {
  const Long id = Create(Row({{"FNumber", "usd"},
                              {"FName", "US dollar"},
                              {"FExchangeRate", 1.5},
                              {"FOperator", "/"},
                              {"FScale", Integer{4}},
                              {"UUID", "u"}}));
  Update(id, Row({{"FNumber", "usd"}, {"FVersion", Long{1}}}));
  EXPECT_EQ(TextOf(*Detail(id)),
            "FCurrencyID=" + std::to_string(id) +
                ";FVersion=2;FNumber=USD;FName=;FExchangeRate=1;FOperator=*;FScale=2;FFixRate=0;"
                "FDeleted=False;UUID=;");
}

TEST_P(CurrencyTest, DetailByNumberIgnoresCase) {
  const Long id = AddDollar();
  Variant number = "uSd";
  const auto row = Call(kInfo, "GetDetailByNumber", props, ByRef(number)).As<Dictionary>();
  EXPECT_EQ(row->Value("FCurrencyID").As<Long>(), id);
  EXPECT_EQ(Call(kInfo, "GetDetailByNumber", props, "GBP").As<Dictionary>(), nullptr);
  EXPECT_EQ(Detail(99), nullptr);
}

TEST_P(CurrencyTest, ExistenceIsAskedByIdOrNumber) {
  const Long id = AddDollar();
  Variant key = id;
  EXPECT_EQ(Call(kInfo, "ExistenceCheck", props, ByRef(key)).As<Long>(), id);
  key = "usd";
  EXPECT_EQ(Call(kInfo, "ExistenceCheck", props, Named("Number", ByRef(key))).As<Long>(), id);
  EXPECT_EQ(Call(kInfo, "ExistenceCheck", props, Long{99}).As<Long>(), 0);
  EXPECT_EQ(Call(kInfo, "ExistenceCheck", props, Named("Number", "GBP")).As<Long>(), 0);
  EXPECT_EQ(Call(kInfo, "ExistenceCheck", props).As<Long>(), 0);
}

TEST_P(CurrencyTest, ListsFilterAndSort) {
  AddDollar();
  Create(Row({{"FNumber", "CHF"}, {"FName", "Franken"}}));
  EXPECT_EQ(TextOf(List(), {"FNumber"}), "EUR\nUSD\nCHF\n");
  EXPECT_EQ(TextOf(List(0, "FName LIKE 'US%' OR FNumber = 'CHF'", "FNumber"), {"FNumber"}),
            "CHF\nUSD\n");
  EXPECT_EQ(RefusalOf([&] { List(0, "FPassword = 'x'"); }), "BadFilter");
  EXPECT_EQ(RefusalOf([&] { List(0, "", "FNumber; DROP TABLE t_User"); }), "BadSort");
}

TEST_P(CurrencyTest, BadValuesAreRefusedAndChangeNothing) {
  AddDollar();
  const std::string before = State();
  const auto refusal = [&](std::initializer_list<std::pair<std::string_view, Variant>> cells) {
    return RefusalOf([&] { Create(Row(cells)); });
  };
  EXPECT_EQ(refusal({{"FName", "nameless"}}), "Required");
  EXPECT_EQ(refusal({{"FNumber", ""}}), "Required");
  EXPECT_EQ(refusal({{"FNumber", "A-B"}}), "BadNumber");
  EXPECT_EQ(refusal({{"FNumber", "ABCDEFGHI"}}), "BadNumber");
  EXPECT_EQ(refusal({{"FNumber", "元"}}), "BadNumber");
  EXPECT_EQ(refusal({{"FNumber", "Usd"}}), "NumberTaken");
  EXPECT_EQ(refusal({{"FNumber", "GBP"}, {"FExchangeRate", 0.0}}), "BadValue");
  EXPECT_EQ(refusal({{"FNumber", "GBP"}, {"FExchangeRate", "often"}}), "BadValue");
  EXPECT_EQ(
      refusal({{"FNumber", "GBP"}, {"FExchangeRate", std::numeric_limits<double>::quiet_NaN()}}),
      "BadValue");
  EXPECT_EQ(
      refusal({{"FNumber", "GBP"}, {"FExchangeRate", std::numeric_limits<double>::infinity()}}),
      "BadValue");
  EXPECT_EQ(refusal({{"FNumber", "GBP"}, {"FOperator", "+"}}), "BadValue");
  EXPECT_EQ(refusal({{"FNumber", "GBP"}, {"FOperator", ""}}), "BadValue");
  EXPECT_EQ(refusal({{"FNumber", "GBP"}, {"FScale", Long{40000}}}), "BadValue");
  EXPECT_EQ(refusal({{"FNumber", "GBP"}, {"FName", std::string("a\0b", 3)}}), "BadValue");
  EXPECT_EQ(refusal({{"FNumber", "GBP"}, {"FName", "\xFF\xFE"}}), "BadValue");
  EXPECT_EQ(refusal({{"FNumber", "GBP"}, {"FName", Make<Vector>()}}), "BadValue");
  EXPECT_EQ(refusal({{"FNumber", "GBP"}, {"FNmae", "misspelt"}}), "BadValue");
  EXPECT_EQ(refusal({{"FNumber", "GBP"}, {"fname", "another case"}}), "BadValue");
  EXPECT_EQ(refusal({{"FNumber", "GBP"}, {"FName = 'x'; --", "x"}}), "BadValue");
  EXPECT_EQ(refusal({{"FNumber", "GBP"}, {"MachineName", std::string("a\0b", 3)}}), "BadValue");
  EXPECT_EQ(RefusalOf([&] { Call(kUpdate, "Create", props, Nothing); }), "error 91");
  EXPECT_EQ(RefusalOf([&] { Call(kUpdate, "Create", props, "a text"); }), "error 13");
  EXPECT_EQ(State(), before);
}

TEST_P(CurrencyTest, TextsAreDataWhateverTheyHold) {
  const std::string name = "'; DROP TABLE t_Currency; -- \" \\ ? :p1 %s 元 𝄞";
  const Long id = Create(Row({{"FNumber", "X_1"}, {"FName", name}}));
  EXPECT_EQ(Detail(id)->Value("FName").As<String>(), name);
  const std::string long_name(100'000, 'x');
  const Long other = Create(Row({{"FNumber", "LONG"}, {"FName", long_name}}));
  EXPECT_EQ(Detail(other)->Value("FName").As<String>(), long_name);
}

TEST_P(CurrencyTest, ANumberThatAnotherProgramTakesInBetweenIsRefusedAsTaken) {
  const std::string before = State();
  bool interfered = false;
  const auto interfering = [&](std::string_view sql) {
    if (interfered || !sql.starts_with("INSERT INTO t_Currency")) return;
    interfered = true;
    Books().Execute(
        "INSERT INTO t_Currency (FVersion, FNumber, FName, FExchangeRate, FOperator, FScale,"
        " FFixRate, FDeleted, UUID) VALUES (1, 'USD', '', 1, '*', 2, 0, 0, '')");
  };
  Database::SetStatementHook(interfering);
  EXPECT_EQ(RefusalOf([&] { AddDollar(); }), "NumberTaken");
  Database::SetStatementHook(nullptr);
  EXPECT_TRUE(interfered);
  EXPECT_EQ(State(), before);
}

TEST_P(CurrencyTest, AnOldVersionIsRefusedByNameAndVersions) {
  const Long id = AddDollar();
  const Ref<Dictionary> mine = Detail(id), hers = Detail(id);
  hers->Value("FName", "Dollar");
  Update(id, hers);
  EXPECT_EQ(hers->Value("FVersion").As<Long>(), 2);
  hers->Value("FName", "Greenback");
  Update(id, hers);  // the version came back, so that a second save works
  mine->Value("FExchangeRate", 1.1);
  const std::string before = State(), sent = TextOf(*mine);
  EXPECT_EQ(RefusalOf([&] { Update(id, mine); }), "Changed");
  EXPECT_EQ(SentenceOf([&] { Update(id, mine); }),
            "Currency USD (Greenback): saved by somebody else in the meantime; it has version 3, "
            "the row sent is version 1.");
  mine->Value("FVersion", Long{4});
  EXPECT_EQ(RefusalOf([&] { Update(id, mine); }), "Changed") << "nor is a later one known";
  mine->Remove("FVersion");
  EXPECT_EQ(RefusalOf([&] { Update(id, mine); }), "NoVersion");
  EXPECT_EQ(State(), before);
  EXPECT_EQ(RefusalOf([&] { Update(99, hers); }), "NotFound");
  EXPECT_EQ(RefusalOf([&] { Update(0, hers); }), "NotFound");
}

TEST_P(CurrencyTest, TheBaseCurrencyKeepsItsRate) {
  const Ref<Dictionary> row = Detail(1);
  row->Value("FExchangeRate", 1.01);
  EXPECT_EQ(RefusalOf([&] { Update(1, row); }), "BadValue");
  row->Value("FExchangeRate", 1.0);
  row->Value("FName", "Euro");
  Update(1, row);
  EXPECT_EQ(Detail(1)->Value("FName").As<String>(), "Euro");
  EXPECT_EQ(RefusalOf([&] { Delete(1); }), "InUse");
}

TEST_P(CurrencyTest, AnUnusedCurrencyIsRemoved) {
  const Long id = AddDollar();
  Delete(id);
  EXPECT_EQ(Detail(id), nullptr);
  EXPECT_EQ(RefusalOf([&] { Delete(id); }), "NotFound");
  EXPECT_NE(AddDollar(), id) << "ids are not given twice";
}

TEST_P(CurrencyTest, AUsedCurrencyIsMarkedDeleted) {
  const Long id = AddDollar();
  UseInAccount(id);
  const Ref<Dictionary> row = Detail(id);
  Delete(id);
  EXPECT_TRUE(Detail(id)->Value("FDeleted").As<Boolean>());
  EXPECT_EQ(TextOf(List(), {"FNumber"}), "EUR\n");
  EXPECT_EQ(TextOf(List(1), {"FNumber"}), "EUR\nUSD\n");
  EXPECT_EQ(TextOf(List(2), {"FNumber"}), "EUR\n") << "other bits don't count";
  EXPECT_EQ(RefusalOf([&] { Delete(id); }), "InUse");
  EXPECT_EQ(RefusalOf([&] { Update(id, row); }), "Changed");
}

TEST_P(CurrencyTest, TheServerKeepsTheDeletionMark) {
  const Long id = Create(Row({{"FNumber", "USD"}, {"FDeleted", true}}));
  EXPECT_FALSE(Detail(id)->Value("FDeleted").As<Boolean>());
}

TEST_P(CurrencyTest, DeedsAreOnTheAuditTrail) {
  const Long id = Create(Row({{"FNumber", "usd"},
                              {"FName", "Dollar"},
                              {"MachineName", "DESK"},
                              {"IPAddress", "10.0.0.7"}}));
  const Ref<Dictionary> row = Detail(id);
  row->Value("FExchangeRate", 1.25);
  row->Value("FName", "US dollar");
  Update(id, row);
  Delete(id);
  EXPECT_EQ(TextOf(Call("QDSVGLAudit.AuditInfo", "GetList", props).As<Recordset>(),
                   {"FUserName", "FSubject", "FRecord", "FAction", "FChanges"}),
            "administrator Currency USD (Dollar) Create \n"
            "administrator Currency USD (US dollar) Update FName: Dollar -> US dollar; "
            "FExchangeRate: 1 -> 1.25\n"
            "administrator Currency USD (US dollar) Delete \n");
  EXPECT_EQ(TextOf(Call("QDSVGLAudit.AuditInfo", "GetList", props,
                        "FMachineName = 'DESK' AND FIPAddress = '10.0.0.7'")
                       .As<Recordset>(),
                   {"FAction"}),
            "Create\n");
}

TEST_P(CurrencyTest, OnlyAdministratorsWrite) {
  const Long id = AddDollar();
  const Ref<Dictionary> row = Detail(id);
  ExpectAdministratorsOnly([&](const std::string& who) {
    Call(kUpdate, "Create", who, Row({{"FNumber", "GBP"}}));
  });
  ExpectAdministratorsOnly(
      [&](const std::string& who) { Call(kUpdate, "Update", who, Long{id}, row); });
  ExpectAdministratorsOnly([&](const std::string& who) { Call(kUpdate, "Delete", who, Long{id}); });
}

TEST_P(CurrencyTest, EveryReaderReads) {
  AddUser("anna", "reader");
  Login("anna");
  EXPECT_EQ(TextOf(List(), {"FNumber"}), "EUR\n");
  EXPECT_NE(Detail(1), nullptr);
  EXPECT_EQ(RefusalOf([&] { Call(kInfo, "GetList", connection); }), "NotLoggedIn");
}

TEST_P(CurrencyTest, AFailureAtAnyStatementOfASaveLeavesNothingBehind) {
  const Ref<Dictionary> row = Row({{"FNumber", "USD"}});
  FailEachStatement([&] { Create(row); }, [&] { return TextOf(*row); });
  const auto id = row->Value("FCurrencyID").As<Long>();
  row->Value("FName", "Dollar");
  FailEachStatement([&] { Update(id, row); }, [&] { return TextOf(*row); });
  UseInAccount(id);
  FailEachStatement([&] { Delete(id); });
  EXPECT_TRUE(Detail(id)->Value("FDeleted").As<Boolean>());
  const Long unused = Create(Row({{"FNumber", "GBP"}}));
  FailEachStatement([&] { Delete(unused); });
  EXPECT_EQ(Detail(unused), nullptr);
}

QDCLGL_BOOKS_TEST(CurrencyTest);

}  // namespace
}  // namespace qdclgl::server::testing
