// Kinds of records: what is saved is what was sent, read back by every way.
#include <algorithm>
#include <set>

#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/records/kinds.h"
#include "tests/server/records/record_suite.h"

namespace qdclgl::server::testing {
namespace {

using Column = RecordKind::Column;

// ---- The declarations ----

TEST(RecordKindsTest, EveryKindStandsInTheSuites) {
  // Those that hold more than columns, as lines or data, have suites of their own.
  static constexpr std::string_view kDocuments[] = {"QDSVGLVoucherTemp.VoucherTemp",
                                                    "QDSVGLNote.Note", "QDSVGLImport.Import"};
  std::size_t kinds = 0;
  for (const MasterData* kind : MasterDataKinds()) {
    if (std::ranges::find(kDocuments, kind->description().component) != std::end(kDocuments)) {
      continue;
    }
    ++kinds;
    const auto stands = std::ranges::count_if(RecordKinds(), [&](const RecordKind* declared) {
      return declared->info == kind->info_prog_id() && declared->update == kind->update_prog_id();
    });
    EXPECT_EQ(stands, 1) << kind->Noun()
                         << " stands in no test file, or in several, by QDCLGL_RECORD_KIND.";
  }
  EXPECT_EQ(kinds, RecordKinds().size());
}

TEST_P(RecordSuite, TheDeclarationHasEveryColumnOfTheTable) {
  std::set<std::string> declared = {ToUpper(kind.id), ToUpper(kVersion)};
  for (const std::string_view column : kind.never_shown) declared.insert(ToUpper(column));
  for (const Column& column : kind.columns) {
    EXPECT_EQ(column.sample.Type(), column.changed.Type()) << column.name;
    if (!Has(kind.joined, column.name)) declared.insert(ToUpper(column.name));
  }
  std::set<std::string> present;
  for (const std::string& column : ColumnsOf(kind.table)) present.insert(ToUpper(column));
  EXPECT_EQ(declared, present);
}

// Another value of the same type.
Variant OtherThan(const Variant& value) {
  switch (value.Type()) {
    case VariantType::kLong: return value.As<Long>() + 7;
    case VariantType::kInteger: return static_cast<Integer>(value.As<Integer>() + 7);
    case VariantType::kBoolean: return !value.As<Boolean>();
    case VariantType::kCurrency: return value.As<Currency>() + Currency(7);
    case VariantType::kDouble: return value.As<Double>() + 7;
    case VariantType::kSingle: return static_cast<Single>(value.As<Single>() + 7);
    case VariantType::kDate: return DateTime(value.As<DateTime>().days + 7);
    default: return value.As<String>() + "!";
  }
}

// ---- Saving ----

TEST_P(RecordSuite, ANewRecordIsReadBackWholeByEveryWay) {
  const Ref<Dictionary> row = SentSpelled();
  const std::string sent = TypedText(row);
  const Long id = Create(row);
  EXPECT_EQ(TypedText(row),
            sent + std::string(kind.id) + ": Long " + std::to_string(id) + "\nFVersion: Long 1\n")
      << "id and version come back, the rest of the sent row stays";
  EXPECT_EQ(TypedText(Detail(id)), Saved(Values::kSample, id, 1));
  EXPECT_EQ(TypedText(Listed(id)), Saved(Values::kSample, id, 1));
  EXPECT_EQ(Breaches(), "");
}

TEST_P(RecordSuite, AnAbsentKeyStandsForItsDefault) {
  int number = 0;
  Long id = Create(Sent(Values::kAbsent, ++number));
  EXPECT_EQ(TypedText(Detail(id)), Saved(Values::kAbsent, id, 1, number));
  for (const Variant& nothing : {Variant(), Variant(Null), Variant(Nothing), Variant(Missing)}) {
    const Ref<Dictionary> row = Sent(Values::kAbsent, ++number);
    for (const Column* column : Written()) {
      if (!IsNeeded(column->name)) row->Put(column->name, nothing);
    }
    id = Create(row);
    EXPECT_EQ(TypedText(Detail(id)), Saved(Values::kAbsent, id, 1, number));
  }
}

TEST_P(RecordSuite, AnUpdateReplacesEveryColumnAndCountsTheVersion) {
  CreateSample(1);
  const Long id = CreateSample();
  CreateSample(2);
  const Ref<Dictionary> row = Sent(Values::kChanged);
  row->Put(kVersion, Long{1});
  const std::string others = RowsBut(id);
  const std::string sent = TypedText(row);
  Update(id, row);
  std::string version_2 = sent;
  version_2.replace(version_2.find("FVersion: Long 1"), 16, "FVersion: Long 2");
  EXPECT_EQ(TypedText(row),
            version_2 + std::string(kind.id) + ": Long " + std::to_string(id) + "\n");
  EXPECT_EQ(TypedText(Detail(id)), Saved(Values::kChanged, id, 2));
  EXPECT_EQ(TypedText(Listed(id)), Saved(Values::kChanged, id, 2));
  Update(id, row);  // the version came back, so that a second save works
  EXPECT_EQ(TypedText(Detail(id)), Saved(Values::kChanged, id, 3));
  const Ref<Dictionary> bare = Sent(Values::kAbsent);
  bare->Put(kVersion, Long{3});
  Update(id, bare);
  EXPECT_EQ(TypedText(Detail(id)), Saved(Values::kAbsent, id, 4)) << "absent keys clear";
  EXPECT_EQ(RowsBut(id), others);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(RecordSuite, RowsThatWereReadAreSavedAgain) {
  const Long id = CreateSample();
  Update(id, Detail(id));
  Update(id, Listed(id));
  EXPECT_EQ(TypedText(Detail(id)), Saved(Values::kSample, id, 3));
  const Ref<Dictionary> copy = Record(id)->Clone();
  for (const auto& [column, refusal] : kind.unique) {
    copy->Put(column, Sent(Values::kSample, 5)->Value(column));
  }
  const Long other = Create(copy);
  EXPECT_NE(other, id);
  EXPECT_EQ(copy->Value(kind.id).As<Long>(), other);
  EXPECT_EQ(TypedText(Detail(other)), Saved(Values::kSample, other, 1, 5));
}

TEST_P(RecordSuite, WhatTheServerKeepsIsNotTakenFromCallers) {
  const Ref<Dictionary> row = Sent(Values::kSample);
  row->Put(kind.id, kNoRecord);
  row->Put(kVersion, Long{9});
  const auto put_others = [&](const std::function<Variant(const Variant&)>& other) {
    for (const Column& column : kind.columns) {
      if (!IsWritten(column)) row->Put(column.name, other(column.sample));
    }
  };
  put_others(OtherThan);
  const Long id = Create(row);
  EXPECT_NE(id, kNoRecord);
  EXPECT_EQ(TypedText(Detail(id)), Saved(Values::kSample, id, 1));
  row->Put(kind.id, kNoRecord);
  Update(id, row);
  EXPECT_EQ(row->Value(kind.id).As<Long>(), id);
  EXPECT_EQ(TypedText(Detail(id)), Saved(Values::kSample, id, 2));
  EXPECT_EQ(Detail(kNoRecord), nullptr);
  put_others([](const Variant&) { return "of no type"; });
  Update(id, row);
  EXPECT_EQ(TypedText(Detail(id)), Saved(Values::kSample, id, 3));
}

}  // namespace
}  // namespace qdclgl::server::testing
