// Pages of the lists that are not those of a kind of records alone.
#include <algorithm>

#include "qdclgl/server/server.h"
#include "tests/server/ledger_fixture.h"
#include "tests/server/list_pages.h"

namespace qdclgl::server::testing {
namespace {

class PagesTest : public LedgerTest {
 protected:
  // Vouchers of two days and two groups, alike in most columns; one is posted, one deleted.
  PagesTest() {
    for (const char* date : {"2024-02-05", "2024-01-05", "2024-02-05"}) {
      Save(Sale(Currency(7), date));
      Save(Voucher(date, {Line("4000.01", Currency(7), 0), Line("2000", 0, Currency(7))},
                   {{"FGroupID", Long{2}}, {"FReference", "R"}, {"FTransDate", "2024-02-05"}}));
    }
    Step("Post", 2);
    Long deleted = 5;
    Call(kVouchers, "Delete", props, ByRef(deleted));
  }

  // A list of a component; the arguments that it has besides are left out.
  PagedList ListOf(std::string_view component, const std::string& filter = "", Long options = 0) {
    return [=, this](const std::string& sort, const Variant& page) {
      const ServerComponent& found =
          *std::ranges::find(ServerComponents(), component, &ServerComponent::prog_id);
      std::vector<Argument> arguments;
      for (const MemberParameter& parameter : found.table->Find("GetList")->parameters) {
        if (parameter.name == "PropsString") arguments.emplace_back(props);
        else if (parameter.name == "ListOptions") arguments.emplace_back(options);
        else if (parameter.name == "Filter") arguments.emplace_back(filter);
        else if (parameter.name == "Sort") arguments.emplace_back(sort);
        else if (parameter.name == "Page" || parameter.name == "Parameters")
          arguments.emplace_back(page);
        else arguments.emplace_back(Missing);
      }
      return found.make()->Invoke("GetList", CallKind::kMethod, arguments).As<Recordset>();
    };
  }

  static constexpr const char* kVouchers = "QDSVGLVoucher.VoucherUpdate";
};

TEST_P(PagesTest, OfVouchersPutTogetherAreTheList) {
  ExpectPagesAreTheList(ListOf("QDSVGLVoucher.VoucherInfo"), 2);
  ExpectPagesAreTheList(ListOf("QDSVGLVoucher.VoucherInfo", "", 1), 1);
  ExpectPagesAreTheList(
      ListOf("QDSVGLVoucher.VoucherInfo", "FPosted OR FDate > #2024-01-05# OR FNumber = 1"), 2);
}

TEST_P(PagesTest, OfTheTrailPutTogetherAreTheList) {
  ExpectPagesAreTheList(ListOf("QDSVGLAudit.AuditInfo"), 5);
}

TEST_P(PagesTest, OfBalancesPutTogetherAreTheList) {
  ExpectPagesAreTheList(ListOf("QDSVGLBalance.BalanceInfo"), 2);
}

// Values of every type that fields have, and items without any.
TEST_P(PagesTest, OfItemsWithFieldsPutTogetherAreTheList) {
  auto fields = Make<Vector>();
  for (const Long type : {3, 5, 6, 7, 11, 131, 200}) {
    auto field = Row({{"FPropID", Integer{32767}},
                      {"FNewName", "Field" + std::to_string(type)},
                      {"FDataType", type},
                      {"FPrecision", Long{type == 200 ? 20 : 0}}});
    if (type == 131) {
      field->Put("FPrecision", Long{9});
      field->Put("FScale", Integer{2});
    }
    fields->Append(Variant(field));
  }
  const auto item_class =
      Call("QDSVGLItemClass.ItemClassUpdate", "Create", props,
           Row({{"FNumber", "PROJECT"}, {"FName", "Projects"}, {"_PropDesc", Variant(fields)}}))
          .As<Long>();
  const auto create = [&](const char* number, const Variant& decimal, const Variant& real) {
    const Ref<Dictionary> row = Row({{"FNumber", number}, {"FName", "Item"}});
    if (!decimal.IsEmpty()) {
      row->Put("F1000_101", Long{-3});
      row->Put("F1000_102", real);
      row->Put("F1000_104", CDate(Variant("2024-02-05 10:11:12")));
      row->Put("F1000_106", decimal);
      row->Put("F1000_107", "a text");
    }
    Call("QDSVGLItem.ItemUpdate", "Create", props, item_class, row);
  };
  create("1", Variant(Decimal::FromText("-12.5")), 0.1);
  create("2", Variant(Decimal::FromText("7")), 1.0 / 3);
  create("3", Variant(), Variant());
  create("4", Variant(Decimal::FromText("-12.5")), 0.1);
  create("5", Variant(), Variant());
  ExpectPagesAreTheList(
      [&](const std::string& sort, const Variant& page) {
        return Call("QDSVGLItem.ItemInfo", "GetList", props, item_class, Long{0}, "", sort, page)
            .As<Recordset>();
      },
      2);
}

TEST_P(PagesTest, OfVouchersStayWhereTheyAreWhenVouchersComeAndGo) {
  const PagedList list = ListOf("QDSVGLVoucher.VoucherInfo");
  const auto numbers = [](const Ref<Recordset>& page) { return TextOf(page, {"FVoucherID"}); };
  const Ref<Dictionary> behind = LastRow(list("", PageOf(2)));
  const std::string rest = numbers(list("", PageOf(100, behind)));
  EXPECT_EQ(rest, "1\n2\n6\n");
  Save(Sale(Currency(1), "2024-01-02"));
  Long id = behind->Value("FVoucherID").As<Long>();
  Call(kVouchers, "Delete", props, ByRef(id), true);
  EXPECT_EQ(numbers(list("", PageOf(100, behind))), rest);
}

// What no other test would see of a component that is new.
TEST_P(PagesTest, EveryListTakesOne) {
  for (const ServerComponent& component : ServerComponents()) {
    const ClassMember* list = component.table->Find("GetList");
    if (list == nullptr) continue;
    EXPECT_TRUE(std::ranges::any_of(list->parameters, [](const MemberParameter& parameter) {
      return parameter.name == "Page" || parameter.name == "Parameters";
    })) << component.prog_id;
  }
}

QDCLGL_BOOKS_TEST(PagesTest);

}  // namespace
}  // namespace qdclgl::server::testing
