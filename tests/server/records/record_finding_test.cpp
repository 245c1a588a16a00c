// Kinds of records: what is found and listed, and what is gone once it is deleted.
#include <algorithm>
#include <functional>
#include <set>

#include "qdclgl/frame/vocabulary/text.h"
#include "tests/server/list_pages.h"
#include "tests/server/records/record_suite.h"

namespace qdclgl::server::testing {
namespace {

// The order of a list's column: as Compare has it, but False before True.
bool Precedes(const Variant& left, const Variant& right) {
  if (left.Type() == VariantType::kBoolean) return left.As<Boolean>() < right.As<Boolean>();
  return Compare(left, right) == std::partial_ordering::less;
}

// ---- Finding ----

TEST_P(FoundRecordSuite, ARecordIsReadByItsText) {
  const Long id = CreateSample();
  CreateSample(1);
  const String text = Record(id)->Value(kind.text_key).As<String>();
  const std::string whole = Saved(Values::kSample, id, 1);
  EXPECT_EQ(TypedText(DetailByText(text)), whole);
  if (const Variant* spelled = Find(kind.spelled, kind.text_key)) {
    EXPECT_EQ(TypedText(DetailByText(spelled->As<String>())), whole);
  } else if (ToUpper(text) != text) {
    EXPECT_EQ(DetailByText(ToUpper(text)), nullptr) << "case counts";
  }
  for (const std::string& unknown :
       {std::string(), text + "' --", std::string("' OR ''='"), std::string("%")}) {
    EXPECT_EQ(DetailByText(unknown), nullptr) << unknown;
  }
}

TEST_P(FoundRecordSuite, ExistenceIsAskedByIdOrText) {
  const Long id = CreateSample(), other = CreateSample(1);
  Variant key = id, text = Record(id)->Value(kind.text_key);
  EXPECT_EQ(Existence(ByRef(key)), id);
  EXPECT_EQ(Existence(other), other);
  EXPECT_EQ(Existence(Named(kind.id_argument, ByRef(key))), id);
  EXPECT_EQ(Existence(Named(kind.text_argument, ByRef(text))), id);
  if (const Variant* spelled = Find(kind.spelled, kind.text_key)) {
    EXPECT_EQ(Existence(Named(kind.text_argument, *spelled)), id);
  } else if (const std::string upper = ToUpper(CStr(text)); upper != CStr(text)) {
    EXPECT_EQ(Existence(Named(kind.text_argument, upper)), 0) << "case counts";
  }
  EXPECT_EQ(Call(kind.info, "ExistenceCheck", props, other, text).As<Long>(), other)
      << "the id goes first";
  EXPECT_EQ(Call(kind.info, "ExistenceCheck", props, kNoRecord, text).As<Long>(), 0);
  EXPECT_EQ(Call(kind.info, "ExistenceCheck", props).As<Long>(), 0);
  for (const Long unknown : {Long{0}, Long{-1}, kNoRecord}) EXPECT_EQ(Existence(unknown), 0);
  for (const char* unknown : {"", "' OR ''='", "%"}) {
    EXPECT_EQ(Existence(Named(kind.text_argument, unknown)), 0) << unknown;
  }
  EXPECT_EQ(RefusalOf([&] { Existence("no id"); }), "error 13");
  EXPECT_EQ(RefusalOf([&] { Existence(Named("Nmae", "x")); }), "error 448");
}

TEST_P(RecordSuite, ListsFilterAndSortByEveryColumn) {
  const Long first = CreateSample(1);
  Create(Sent(Values::kChanged, 2));
  CreateSample(3);
  Create(Sent(Values::kAbsent, 4));
  Update(first, Detail(first));
  const std::vector<Ref<Dictionary>> rows = RowsOf(List());
  ASSERT_GE(rows.size(), 4u);
  EXPECT_TRUE(std::ranges::is_sorted(rows,
                                     [&](const auto& left, const auto& right) {
                                       return Precedes(left->Value(kind.order),
                                                       right->Value(kind.order));
                                     }))
      << "lists go by " << kind.order;
  const auto ids_of = [&](const std::vector<Ref<Dictionary>>& list) {
    std::string ids;
    for (const Ref<Dictionary>& row : list) ids += CStr(row->Value(kind.id)) + " ";
    return ids;
  };
  for (std::uint32_t i = 0; i < rows.front()->size(); ++i) {
    const std::string column = rows.front()->key_at(i);
    if (column.starts_with('_')) continue;  // a list of rows
    const auto precedes = [&](const auto& left, const auto& right) {
      return Precedes(left->Value(column), right->Value(column));
    };
    // What the sort leaves open goes by the list's own order.
    auto rising = rows, falling = rows;
    std::ranges::stable_sort(rising, precedes);
    std::ranges::stable_sort(
        falling, [&](const auto& left, const auto& right) { return precedes(right, left); });
    EXPECT_EQ(ids_of(RowsOf(List(0, "", ToUpper(column)))), ids_of(rising)) << column;
    EXPECT_EQ(ids_of(RowsOf(List(0, "", column + " DESC"))), ids_of(falling)) << column;
    std::set<std::string> asked;
    for (const auto& row : rows) {
      const Variant value = row->Value(column);
      const std::string equal = column + " = " + Literal(value);
      if (!asked.insert(equal).second) continue;
      auto same = rows, others = rows;
      const auto is_same = [&](const auto& other) { return Equals(other->Value(column), value); };
      std::erase_if(same, std::not_fn(is_same));
      std::erase_if(others, is_same);
      EXPECT_EQ(ids_of(RowsOf(List(0, equal))), ids_of(same)) << equal;
      EXPECT_EQ(ids_of(RowsOf(List(0, "NOT " + equal))), ids_of(others)) << equal;
    }
  }
}

TEST_P(RecordSuite, PagesPutTogetherAreTheList) {
  const Long first = CreateSample(1);
  Create(Sent(Values::kChanged, 2));
  CreateSample(3);
  Create(Sent(Values::kAbsent, 4));
  Update(first, Detail(first));
  const auto with = [&](const std::string& filter) {
    return [this, filter](const std::string& sort, const Variant& page) {
      return List(0, filter, sort, page);
    };
  };
  ExpectPagesAreTheList(with(""), 2);
  const std::string id(kind.id);
  ExpectPagesAreTheList(
      with(id + " > " + std::to_string(first) + " OR " + id + " = " + std::to_string(first)), 1);
}

TEST_P(RecordSuite, RowsThatComeAndGoMoveNoPage) {
  const Long first = CreateSample(1);
  for (const int number : {2, 3, 4}) CreateSample(number);
  const std::string sort = std::string(kind.id) + " DESC";
  const auto ids_of = [&](const Ref<Recordset>& list) {
    std::string ids;
    for (const Ref<Dictionary>& row : RowsOf(list)) ids += CStr(row->Value(kind.id)) + " ";
    return ids;
  };
  const Ref<Dictionary> behind = LastRow(List(0, "", sort, PageOf(2)));
  const std::string rest = ids_of(List(0, "", sort, PageOf(100, behind)));
  CreateSample(5);
  EXPECT_EQ(ids_of(List(0, "", sort, PageOf(100, behind))), rest) << "one more on the page before";
  Delete(behind->Value(kind.id).As<Long>());
  EXPECT_EQ(ids_of(List(0, "", sort, PageOf(100, behind))), rest) << "the row itself is gone";
  Delete(first);
  std::string without = rest;
  without.erase(without.find(std::to_string(first) + " "), std::to_string(first).size() + 1);
  EXPECT_EQ(ids_of(List(0, "", sort, PageOf(100, behind))), without) << "one of the page is gone";
}

TEST_P(RecordSuite, APageBehindWhatIsNoRowOfTheListIsRefused) {
  CreateSample();
  const std::string id(kind.id);
  const auto refusal = [&](const Variant& page) {
    return SentenceOf([&] { List(0, "", id, page); });
  };
  EXPECT_EQ(refusal(PageOf(1, Make<Dictionary>())),
            "The row that the page goes on behind has no " + id + ".");
  auto row = Make<Dictionary>();
  row->Put(id, "no id");
  EXPECT_EQ(refusal(PageOf(1, row)), "The value of " + id + " does not fit its column.");
  EXPECT_EQ(refusal(PageOf(-1)), "The parameters have no Count of -1.");
  auto page = Make<Dictionary>();
  page->Put("Behind", Long{1});
  EXPECT_EQ(refusal(Variant(page)), "A page goes on behind a row of the list.");
  EXPECT_EQ(refusal(Variant("1")), "The parameters are no Dictionary.");
}

TEST_P(RecordSuite, FiltersAndSortsNameNothingButTheColumns) {
  CreateSample();
  const std::string before = State(), id(kind.id);
  std::vector<std::string> filters = {"1 = 1",
                                      "FNope = 1",
                                      id,
                                      id + " = 'x'",
                                      id + " = 1.5",
                                      id + " = 1 --",
                                      id + " = 1 OR",
                                      "(" + id + " = 1",
                                      id + " = 1; DROP TABLE " + std::string(kind.table),
                                      id + " = 1 UNION SELECT * FROM t_User",
                                      id + " IN (SELECT FUserID FROM t_User)",
                                      id + " LIKE '1'",
                                      id + " = \"1\"",
                                      id + " = " + std::string(kind.order) + " = 1"};
  std::vector<std::string> sorts = {"1",
                                    "FNope",
                                    id + ", ",
                                    id + " DESC DESC",
                                    "(SELECT 1)",
                                    id + ";",
                                    id + "; DROP TABLE " + std::string(kind.table)};
  std::vector<std::string_view> hidden = kind.never_shown;
  if (hidden.empty()) hidden.push_back("FPassword");
  for (const std::string_view column : hidden) {
    filters.push_back(std::string(column) + " <> ''");
    sorts.emplace_back(column);
  }
  for (const std::string& filter : filters) {
    EXPECT_EQ(RefusalOf([&] { List(0, filter); }), "BadFilter") << filter;
  }
  for (const std::string& sort : sorts) {
    EXPECT_EQ(RefusalOf([&] { List(0, "", sort); }), "BadSort") << sort;
  }
  EXPECT_EQ(State(), before);
}

// ---- Removal ----

TEST_P(RecordSuite, AnUnusedRecordIsRemovedWithoutATrace) {
  CreateSample(1);
  const std::string before = StateWithoutTrail();
  const Long id = CreateSample();
  Delete(id);
  EXPECT_EQ(StateWithoutTrail(), before);
  EXPECT_EQ(Detail(id), nullptr);
  EXPECT_EQ(Listed(id, 1), nullptr);
  EXPECT_EQ(RefusalOf([&] { Delete(id); }), "NotFound");
  EXPECT_EQ(RefusalOf([&] { Update(id, Sent(Values::kSample)); }), "NotFound");
  const Long again = CreateSample();
  EXPECT_NE(again, id) << "ids are not given twice";
  CreateSample(2);
  const std::string others = RowsBut(again);
  Delete(again);
  EXPECT_EQ(RowsBut(again), others);
}

TEST_P(UsedRecordSuite, AUsedRecordIsNotRemoved) {
  int number = 0;
  for (const RecordKind::Deed use : kind.uses) {
    const Long id = CreateSample(++number);
    use(*this, id);
    const std::string before = State(), row = TypedText(Detail(id));
    if (kind.used_is_marked) {
      Delete(id);
      EXPECT_TRUE(Record(id)->Value(kind.mark).As<Boolean>());
    } else {
      EXPECT_EQ(RefusalOf([&] { Delete(id); }), "InUse") << number;
      EXPECT_EQ(SentenceOf([&] { Delete(id); }).substr(0, Called(*Record(id)).size() + 2),
                Called(*Record(id)) + ": ");
      EXPECT_EQ(State(), before);
      EXPECT_EQ(TypedText(Detail(id)), row);
    }
    EXPECT_EQ(Breaches(), "");
  }
}

TEST_P(MarkedRecordSuite, AMarkedRecordIsInListsWithBit1Only) {
  int number = 0;
  for (const auto& mark : WaysToMark()) {
    const Long id = CreateSample(++number), other = CreateSample(number + 50);
    const Ref<Dictionary> old = Record(id);
    mark(id);
    EXPECT_TRUE(Record(id)->Value(kind.mark).As<Boolean>());
    EXPECT_FALSE(Record(other)->Value(kind.mark).As<Boolean>());
    EXPECT_EQ(VersionOf(id), 2);
    for (const Long options : {0, 2, 6, -2}) {
      EXPECT_EQ(Listed(id, options), nullptr) << options;
      EXPECT_NE(Listed(other, options), nullptr) << options;
    }
    for (const Long options : {1, 3, -1}) {
      EXPECT_EQ(TypedText(Listed(id, options)), TypedText(Detail(id))) << options;
      EXPECT_NE(Listed(other, options), nullptr) << options;
    }
    EXPECT_EQ(RefusalOf([&] { Update(id, old); }), "Changed");
    for (const auto& [column, refusal] : kind.unique) {
      const Ref<Dictionary> row = Sent(Values::kSample, 80);
      row->Put(column, old->Value(column));
      EXPECT_EQ(RefusalOf([&] { Create(row); }), refusal) << "a marked record keeps its place";
    }
    const Ref<Dictionary> row = Record(id);
    row->Put(kind.mark, false);
    Update(id, row);
    EXPECT_EQ(Listed(id) == nullptr, Has(kind.kept_by_server, kind.mark));
  }
  EXPECT_GT(number, 0);
}

}  // namespace
}  // namespace qdclgl::server::testing
