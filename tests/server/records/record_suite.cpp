#include "tests/server/records/record_suite.h"

#include <algorithm>
#include <barrier>
#include <functional>
#include <limits>
#include <set>
#include <thread>

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/server.h"

namespace qdclgl::server::testing {

using Column = RecordKind::Column;

namespace {

constexpr std::string_view kVersion = "FVersion";
constexpr const char* kBatch = "QDSVGLBatch.BatchUpdate";
constexpr Long kNoRecord = 30000;

bool Has(const std::vector<std::string_view>& names, std::string_view name) {
  return std::ranges::find(names, name) != names.end();
}

template <class Value>
const Value* Find(const ByColumn<Value>& values, std::string_view column) {
  const auto found = std::ranges::find(values, column, &std::pair<std::string_view, Value>::first);
  return found == values.end() ? nullptr : &found->second;
}

bool IsText(const Column& column) { return column.sample.IsString(); }

// The zero of a value's type.
Variant ZeroOf(const Variant& value) {
  switch (value.Type()) {
    case VariantType::kLong: return Long{0};
    case VariantType::kInteger: return Integer{0};
    case VariantType::kBoolean: return false;
    case VariantType::kCurrency: return Currency(0);
    case VariantType::kDouble: return 0.0;
    case VariantType::kSingle: return Single{0};
    case VariantType::kDate: return DateTime();
    default: return "";
  }
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

// What does not fit into a column of a value's type.
std::vector<Variant> UnfitFor(const Variant& value) {
  constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
  const Variant list = Make<Vector>();
  switch (value.Type()) {
    case VariantType::kLong: return {"often", list, 1e10, kNoNumber};
    case VariantType::kInteger: return {"often", list, Long{40000}, kNoNumber};
    case VariantType::kBoolean: return {"perhaps", list};
    case VariantType::kCurrency: return {"often", list, 1e30, kNoNumber};
    case VariantType::kDouble:
      return {"often", list, kNoNumber, std::numeric_limits<double>::infinity()};
    case VariantType::kSingle: return {"often", list, kNoNumber, 1e300};
    case VariantType::kDate:
      return {"someday", list, DateTime(1e10), DateTime(-1e10), DateTime(kNoNumber)};
    default: return {std::string("a\0b", 3), "\xFF\xFE", list};
  }
}

// A row's keys, values and types.
std::string TypedText(const Dictionary& row) {
  std::string text;
  for (std::uint32_t i = 0; i < row.size(); ++i) {
    const Variant& value = row.value_at(i);
    // Some dates that are sent have no text.
    const bool is_date = value.Type() == VariantType::kDate;
    text += row.key_at(i) + ": " + std::string(TypeName(value.Type())) + " " +
            ValueText(is_date ? Variant(value.As<DateTime>().days) : value) + "\n";
  }
  return text;
}
std::string TypedText(const Ref<Dictionary>& row) { return row ? TypedText(*row) : "Nothing"; }

std::vector<Ref<Dictionary>> RowsOf(const Ref<Recordset>& list) {
  std::vector<Ref<Dictionary>> rows;
  for (list->Eof() ? void() : list->MoveFirst(); !list->Eof(); list->MoveNext()) {
    rows.push_back(list->Row());
  }
  return rows;
}

// As filters write a value.
std::string Literal(const Variant& value) {
  const std::string text = CStr(value);
  if (value.Type() == VariantType::kDate) return "#" + text + "#";
  if (!value.IsString()) return text;
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? "''" : std::string(1, c);
  return quoted + "'";
}

// The order of a list's column: as Compare has it, but False before True.
bool Precedes(const Variant& left, const Variant& right) {
  if (left.Type() == VariantType::kBoolean) return left.As<Boolean>() < right.As<Boolean>();
  return Compare(left, right) == std::partial_ordering::less;
}

bool May(std::string_view roles, std::string_view role) {
  if (roles.empty()) return false;
  return role == "reader" || roles.find("administrator") != roles.npos ||
         roles.find(role) != roles.npos;
}

}  // namespace

// ---- The kinds ----

std::ostream& operator<<(std::ostream& out, const RecordCase& record_case) {
  return out << record_case.kind->subject;
}

std::vector<const RecordKind*>& RecordKinds() {
  static std::vector<const RecordKind*> kinds;
  return kinds;
}

bool AddRecordKind(const RecordKind& kind) {
  RecordKinds().push_back(&kind);
  return true;
}

std::vector<RecordCase> CasesOf(const RecordKind& kind, bool concerned) {
  std::vector<RecordCase> cases;
  if (!concerned) return cases;
  for (const DatabaseKind database : Databases()) cases.push_back({&kind, database});
  return cases;
}

std::string NameOfCase(const ::testing::TestParamInfo<RecordCase>& info) {
  return NameOf({info.param.database, info.index});
}

// ---- What the suites work with ----

RecordSuite::RecordSuite() : RecordBooks(GetParam().database), kind(*GetParam().kind) {
  if (kind.prepare != nullptr) kind.prepare(*this);
}

Variant RecordSuite::ValueOf(const Column& column, Values values, int number) const {
  const bool is_required = Has(kind.required, column.name);
  Variant value = values == Values::kChanged ? column.changed : column.sample;
  if (values == Values::kAbsent && !is_required) {
    const Variant* absent = Find(kind.absent, column.name);
    if (absent != nullptr) {
      value = *absent;
    } else if (IsWritten(column)) {
      value = ZeroOf(column.sample);
    }
  }
  if (number != 0 && Find(kind.unique, column.name) != nullptr) {
    value = value.As<String>() + std::to_string(number);
  }
  return value;
}

Ref<Dictionary> RecordSuite::Sent(Values values, int number) const {
  auto row = Make<Dictionary>();
  for (const Column* column : Written()) {
    if (values == Values::kAbsent && !Has(kind.required, column->name)) continue;
    row->Put(column->name, ValueOf(*column, values, number));
  }
  return row;
}

Ref<Dictionary> RecordSuite::SentSpelled() const {
  Ref<Dictionary> row = Sent(Values::kSample);
  for (const auto& [column, value] : kind.spelled) row->Put(column, value);
  return row;
}

std::string RecordSuite::Saved(Values values, Long id, Long version, int number) const {
  auto row = Make<Dictionary>();
  row->Put(kind.id, id);
  row->Put(kVersion, version);
  for (const Column& column : kind.columns) {
    const bool is_id = Has(kind.ids_of_record, column.name);
    row->Put(column.name, is_id ? Variant(id) : ValueOf(column, values, number));
  }
  return TypedText(*row);
}

Long RecordSuite::Create(const Ref<Dictionary>& row) {
  return Call(kind.update, "Create", props, row).As<Long>();
}

void RecordSuite::Update(Long id, const Ref<Dictionary>& row) {
  Call(kind.update, "Update", props, ByRef(id), row);
}

void RecordSuite::Delete(Long id, Long sign) {
  const std::string machine = "HOST", address = "10.0.0.1";
  if (kind.mark_by_sign) {
    Call(kind.update, "Delete", props, ByRef(id), machine, address, ByRef(sign));
  } else {
    Call(kind.update, "Delete", props, ByRef(id), machine, address);
  }
}

Ref<Dictionary> RecordSuite::Detail(Long id) {
  return Call(kind.info, "GetDetail", props, ByRef(id)).As<Dictionary>();
}

Ref<Dictionary> RecordSuite::DetailByText(std::string_view text) {
  Variant key = text;
  return Call(kind.info, kind.detail_by_text, props, ByRef(key)).As<Dictionary>();
}

Ref<Recordset> RecordSuite::List(Long options, std::string filter, std::string sort) {
  return (kind.has_list_options
              ? Call(kind.info, "GetList", props, ByRef(options), ByRef(filter), ByRef(sort))
              : Call(kind.info, "GetList", props, ByRef(filter), ByRef(sort)))
      .As<Recordset>();
}

Ref<Dictionary> RecordSuite::Listed(Long id, Long options) {
  const Ref<Recordset> list = List(options, std::string(kind.id) + " = " + std::to_string(id));
  return list->Eof() ? nullptr : list->Row();
}

Long RecordSuite::Existence(Argument argument) {
  return Call(kind.info, "ExistenceCheck", props, std::move(argument)).As<Long>();
}

std::string RecordSuite::NameIn(const Dictionary& record) {
  const String name = record.Value("FName").As<String>();
  return record.Contains("FNumber") ? record.Value("FNumber").As<String>() + " (" + name + ")"
                                    : name;
}

std::string RecordSuite::Called(const Dictionary& record) const {
  return std::string(kind.noun) + " " + NameIn(record);
}

bool RecordSuite::IsWritten(const Column& column) const {
  return !Has(kind.kept_by_server, column.name) && !Has(kind.joined, column.name) &&
         !Has(kind.ids_of_record, column.name);
}

std::vector<const Column*> RecordSuite::Written() const {
  std::vector<const Column*> written;
  for (const Column& column : kind.columns) {
    if (IsWritten(column)) written.push_back(&column);
  }
  return written;
}

std::vector<const Column*> RecordSuite::WrittenFreely() const {
  std::vector<const Column*> written = Written();
  std::erase_if(written, [&](const Column* column) {
    return !IsText(*column) || Has(kind.coded, column->name);
  });
  return written;
}

std::string RecordSuite::RowsBut(Long id) {
  std::string text;
  for (const auto& row : RowsOf(List(1))) {
    if (row->Value(kind.id).As<Long>() != id) text += TypedText(row) + "\n";
  }
  return text;
}

std::string RecordSuite::StateWithoutTrail() const {
  std::string state = State(), kept;
  for (std::size_t first = 0; first < state.size();) {
    const std::size_t end = state.find('\n', first) + 1;
    const std::string_view line = std::string_view(state).substr(first, end - first);
    if (!line.starts_with("t_Audit ") && !line.starts_with("t_audit ")) kept += line;
    first = end;
  }
  return kept;
}

void RecordSuite::ExpectRefusedSaves(std::string_view refusal,
                                     const std::function<void(Dictionary& row)>& spoil) {
  const Long id = *Books().QueryValue<Long>("SELECT MAX(" + std::string(kind.id) + ") FROM " +
                                            std::string(kind.table));
  const Ref<Dictionary> created = Sent(Values::kSample, 99), updated = Detail(id);
  for (const auto& row : {created, updated}) {
    spoil(*row);
    const std::string sent = TypedText(row);
    EXPECT_EQ(RefusalOf([&] { row == created ? void(Create(row)) : Update(id, row); }), refusal)
        << (row == created ? "Create " : "Update ") << sent;
    EXPECT_EQ(TypedText(row), sent);
  }
}

void RecordSuite::InAnotherSession(const std::function<void()>& operation) {
  const std::string own = props;
  std::thread([&] {
    SetApartmentStarted(true);
    Login("administrator");
    operation();
    Database::CloseAll();
  }).join();
  props = own;
}

std::vector<std::function<void(Long)>> MarkedRecordSuite::WaysToMark() {
  std::vector<std::function<void(Long)>> ways;
  if (kind.mark_by_sign) {
    for (const Long sign : {1, -7}) ways.push_back([this, sign](Long id) { Delete(id, sign); });
  }
  if (kind.used_is_marked) {
    for (const RecordKind::Deed use : kind.uses) {
      ways.push_back([this, use](Long id) {
        use(*this, id);
        Delete(id);
      });
    }
  }
  if (!Has(kind.kept_by_server, kind.mark)) {
    ways.push_back([this](Long id) {
      const Ref<Dictionary> row = Detail(id);
      row->Put(kind.mark, true);
      Update(id, row);
    });
  }
  return ways;
}

namespace {

// ---- The declarations ----

TEST(RecordKindsTest, EveryPairOfMasterDataStandsInTheSuites) {
  // A document is saved with its lines and by steps; it has suites of its own.
  static constexpr std::string_view kDocuments[] = {"QDSVGLVoucher.Voucher"};
  const auto has = [](const std::string& prog_id, std::initializer_list<std::string_view> methods) {
    const auto found = std::ranges::find(ServerComponents(), prog_id, &ServerComponent::prog_id);
    return found != ServerComponents().end() &&
           std::ranges::all_of(methods, [&](std::string_view method) {
             return found->table->Find(method) != nullptr;
           });
  };
  std::size_t pairs = 0;
  for (const ServerComponent& component : ServerComponents()) {
    if (!component.prog_id.ends_with("Update")) continue;
    const std::string stem(component.prog_id.substr(0, component.prog_id.size() - 6));
    if (!has(stem + "Update", {"Create", "Update", "Delete"}) || !has(stem + "Info", {"GetDetail"}))
      continue;
    if (std::ranges::find(kDocuments, stem) != std::end(kDocuments)) continue;
    ++pairs;
    const auto stands = std::ranges::count_if(RecordKinds(), [&](const RecordKind* kind) {
      return kind->info == stem + "Info" && kind->update == stem + "Update";
    });
    EXPECT_EQ(stands, 1) << stem << "Info and " << stem
                         << "Update stand in no test file, or in several, by QDCLGL_RECORD_KIND.";
  }
  EXPECT_EQ(pairs, RecordKinds().size());
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
      if (!Has(kind.required, column->name)) row->Put(column->name, nothing);
    }
    id = Create(row);
    EXPECT_EQ(TypedText(Detail(id)), Saved(Values::kAbsent, id, 1, number));
  }
}

TEST_P(RecordSuite, AnUpdateReplacesEveryColumnAndCountsTheVersion) {
  const Long id = CreateSample();
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
  const Ref<Dictionary> copy = Detail(id)->Clone();
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

// ---- Versions ----

TEST_P(RecordSuite, AnOldVersionIsRefusedByNameAndVersions) {
  const Long id = CreateSample();
  const Ref<Dictionary> mine = Detail(id);
  for (int i = 0; i < 2; ++i) Update(id, Detail(id));
  const std::string before = State();
  for (const Long version : {1, 2, 4, -3}) {
    mine->Put(kVersion, version);
    const std::string sent = TypedText(mine);
    EXPECT_EQ(RefusalOf([&] { Update(id, mine); }), "Changed") << version;
    EXPECT_EQ(SentenceOf([&] { Update(id, mine); }),
              Called(*mine) +
                  ": saved by somebody else in the meantime; it has version 3, the row sent is "
                  "version " +
                  std::to_string(version) + ".");
    EXPECT_EQ(TypedText(mine), sent);
  }
  EXPECT_EQ(State(), before);
}

TEST_P(RecordSuite, ARowWithoutItsVersionIsRefused) {
  const Long id = CreateSample();
  const Ref<Dictionary> row = Detail(id);
  const std::string before = State();
  row->Remove(kVersion);
  EXPECT_EQ(RefusalOf([&] { Update(id, row); }), "NoVersion");
  EXPECT_FALSE(row->Contains(kVersion));
  for (const Variant& none : {Variant(Long{0}), Variant(Null), Variant(), Variant("")}) {
    row->Put(kVersion, none);
    EXPECT_EQ(RefusalOf([&] { Update(id, row); }), "NoVersion");
  }
  for (const Variant& unfit : UnfitFor(Long{1})) {
    row->Put(kVersion, unfit);
    EXPECT_EQ(RefusalOf([&] { Update(id, row); }), "BadValue");
  }
  EXPECT_EQ(State(), before);
}

TEST_P(RecordSuite, AnUnknownRecordIsNotFound) {
  const Long known = CreateSample();
  const Ref<Dictionary> row = Detail(known);
  const std::string before = State(), sent = TypedText(row);
  for (const Long id : {Long{0}, Long{-1}, kNoRecord}) {
    EXPECT_EQ(RefusalOf([&] { Update(id, row); }), "NotFound") << id;
    EXPECT_EQ(RefusalOf([&] { Delete(id); }), "NotFound") << id;
    EXPECT_EQ(RefusalOf([&] { Delete(id, 1); }), "NotFound") << id;
    EXPECT_EQ(Detail(id), nullptr) << id;
  }
  EXPECT_EQ(SentenceOf([&] { Update(kNoRecord, row); }),
            std::string(kind.noun) + " with id " + std::to_string(kNoRecord) + ": there is none.");
  EXPECT_EQ(State(), before);
  EXPECT_EQ(TypedText(row), sent);
}

TEST_P(RecordSuite, OfTwoSessionsTheSecondToSaveIsRefused) {
  const Long id = CreateSample();
  Long read_by_others = 0;
  InAnotherSession([&] { read_by_others = VersionOf(id); });
  Update(id, Detail(id));
  InAnotherSession([&] {
    const Ref<Dictionary> row = Detail(id);
    row->Put(kVersion, read_by_others);
    EXPECT_EQ(RefusalOf([&] { Update(id, row); }), "Changed");
    Update(id, Detail(id));
  });
  EXPECT_EQ(VersionOf(id), 3) << "nobody's save is lost";
}

TEST_P(RecordSuite, OfSessionsThatSaveAtOnceOneGetsThrough) {
  const Long id = CreateSample();
  std::vector<std::string> sessions = {props, Login("administrator"), Login("administrator")};
  std::vector<std::string> updates(sessions.size()), creates(sessions.size());
  std::barrier together(static_cast<std::ptrdiff_t>(sessions.size()));
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < sessions.size(); ++i) {
    threads.emplace_back([&, i] {
      SetApartmentStarted(true);
      const std::string& own = sessions[i];
      auto row = Call(kind.info, "GetDetail", own, Long{id}).As<Dictionary>();
      together.arrive_and_wait();
      updates[i] = RefusalOf([&] { Call(kind.update, "Update", own, Long{id}, row); });
      for (const auto& [column, refusal] : kind.unique) {
        row->Put(column, row->Value(column).As<String>() + "7");
      }
      together.arrive_and_wait();
      creates[i] = RefusalOf([&] { Call(kind.update, "Create", own, row); });
      row = nullptr;
      Database::CloseAll();
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::ranges::sort(updates);
  EXPECT_EQ(updates, (std::vector<std::string>{"Changed", "Changed", "none"}));
  EXPECT_EQ(VersionOf(id), 2);
  std::ranges::sort(creates);
  if (!kind.unique.empty()) {
    const std::string taken(kind.unique.front().second);
    EXPECT_EQ(creates, (std::vector<std::string>{taken, taken, "none"}));
  }
}

// ---- Refused rows ----

TEST_P(RecordSuite, UnknownKeysAreRefused) {
  CreateSample();
  const std::string before = State();
  std::vector<std::string> keys = {"F",          "", "fversion", "FVersion ", "FName = 'x'; --",
                                   "machinename"};
  for (const Column& column : kind.columns) {
    std::string other_case(column.name);
    other_case[0] = static_cast<char>(other_case[0] ^ 0x20);
    keys.push_back(other_case);
    keys.push_back(std::string(column.name) + "s");
  }
  for (const std::string& key : keys) {
    ExpectRefusedSaves("BadValue", [&](Dictionary& row) { row.Put(key, "x"); });
  }
  const Ref<Dictionary> row = Sent(Values::kSample, 1);
  row->Put("FNmae", "misspelt");
  EXPECT_EQ(SentenceOf([&] { Create(row); }),
            std::string(kind.noun) + ": there is no column \"FNmae\".");
  EXPECT_EQ(State(), before);
}

TEST_P(RecordSuite, RequiredColumnsAreRequired) {
  CreateSample();
  const std::string before = State();
  for (const std::string_view column : kind.required) {
    ExpectRefusedSaves("Required", [&](Dictionary& row) { row.Remove(column); });
    for (const Variant& none : {Variant(""), Variant(Null), Variant(), Variant(Nothing)}) {
      ExpectRefusedSaves("Required", [&](Dictionary& row) { row.Put(column, none); });
    }
  }
  EXPECT_EQ(State(), before);
}

TEST_P(RecordSuite, UniqueColumnsAreUnique) {
  const Long first = CreateSample(), second = CreateSample(1);
  const std::string before = State();
  for (const auto& [column, refusal] : kind.unique) {
    std::vector<Variant> taken = {Detail(first)->Value(column)};
    if (const Variant* spelled = Find(kind.spelled, column)) taken.push_back(*spelled);
    for (const Variant& text : taken) {
      ExpectRefusedSaves(refusal, [&, key = column](Dictionary& row) { row.Put(key, text); });
    }
    const Ref<Dictionary> row = Detail(second);
    row->Put(column, taken.front());
    EXPECT_EQ(SentenceOf([&] { Update(second, row); }), Called(*Detail(first)) + " has " +
                                                            std::string(column) + " " +
                                                            CStr(taken.front()) + " already.");
  }
  EXPECT_EQ(State(), before);
  Delete(first);
  CreateSample();  // a removed record leaves its place
}

TEST_P(RecordSuite, ATextThatAnotherProgramTakesInBetweenIsRefusedAsTaken) {
  const Long id = CreateSample();
  const std::string before = State();
  const std::string table(kind.table);
  for (const auto& [column, refusal] : kind.unique) {
    std::string columns, values;
    for (const std::string& name : ColumnsOf(kind.table)) {
      if (ToUpper(name) == ToUpper(kind.id)) continue;
      columns += (columns.empty() ? "" : ", ") + name;
      const bool is_unique = ToUpper(name) == ToUpper(column);
      values += (values.empty() ? "" : ", ") + (is_unique ? "CAST(? AS TEXT)" : name);
    }
    const Ref<Dictionary> row = Sent(Values::kSample, 1);
    const std::string sent = TypedText(row);
    const String text = row->Value(column).As<String>();
    bool interfered = false;
    Database::SetStatementHook([&](std::string_view sql) {
      if (interfered || !sql.starts_with("INSERT INTO " + table)) return;
      interfered = true;
      Books().Execute("INSERT INTO " + table + " (" + columns + ") SELECT " + values + " FROM " +
                          table + " WHERE " + std::string(kind.id) + " = ?",
                      text, id);
    });
    EXPECT_EQ(RefusalOf([&] { Create(row); }), refusal);
    Database::SetStatementHook(nullptr);
    EXPECT_TRUE(interfered);
    EXPECT_EQ(TypedText(row), sent);
  }
  EXPECT_EQ(State(), before);
}

TEST_P(RecordSuite, ValuesOfAnotherTypeAreRefused) {
  CreateSample();
  const std::string before = State();
  for (const Column* column : Written()) {
    for (const Variant& unfit : UnfitFor(column->sample)) {
      ExpectRefusedSaves("BadValue", [&](Dictionary& row) { row.Put(column->name, unfit); });
    }
  }
  for (const std::string_view key : {"MachineName", "IPAddress"}) {
    for (const Variant& unfit : UnfitFor("")) {
      ExpectRefusedSaves("BadValue", [&](Dictionary& row) { row.Put(key, unfit); });
    }
  }
  for (const char* method : {"Create", "Update"}) {
    const auto save = [&](const Variant& row) {
      return RefusalOf([&] {
        method[0] == 'C' ? Call(kind.update, method, props, row)
                         : Call(kind.update, method, props, Long{1}, row);
      });
    };
    EXPECT_EQ(save(Nothing), "error 91") << method;
    EXPECT_EQ(save("a text"), "error 13") << method;
    EXPECT_EQ(save(Make<Vector>()), "error 13") << method;
  }
  EXPECT_EQ(State(), before);
}

TEST_P(RecordSuite, TextsAreDataWhateverTheyHold) {
  int number = 0;
  for (const std::string& text :
       {"'; DROP TABLE " + std::string(kind.table) + "; -- \" \\ ? :p1 $1 %s",
        std::string(" 元 😀 \xC3\xA9 \n\t "), std::string("NULL"), std::string("%_[a-z]*")}) {
    const Ref<Dictionary> row = Sent(Values::kSample, ++number);
    for (const Column* column : WrittenFreely()) row->Put(column->name, text);
    const Long id = Create(row);
    for (const Column* column : WrittenFreely()) {
      EXPECT_EQ(CStr(Detail(id)->Value(column->name)), text) << column->name;
      const Ref<Recordset> found =
          List(0, std::string(column->name) + " = " + Literal(text) + " AND " +
                      std::string(kind.id) + " = " + std::to_string(id));
      EXPECT_EQ(found->RecordCount(), 1) << column->name;
    }
  }
  EXPECT_EQ(Breaches(), "");
}

TEST_P(RecordSuite, TextsAreAsLongAsTheirColumnsAllow) {
  const Ref<Dictionary> row = Sent(Values::kSample);
  std::string before;
  for (const Column* column : WrittenFreely()) {
    const std::size_t* longest = Find(kind.longest, column->name);
    std::string text(longest == nullptr ? 100'000 : *longest - 4, 'x');
    text += "😀元x";  // 4 UTF-16 units
    row->Put(column->name, text);
  }
  const Long id = Create(row);
  for (const Column* column : WrittenFreely()) {
    EXPECT_EQ(CStr(Detail(id)->Value(column->name)), CStr(row->Value(column->name)))
        << column->name;
  }
  before = State();
  for (const auto& [column, longest] : kind.longest) {
    const std::string text = std::string(longest - 3, 'x') + "😀😀";
    ExpectRefusedSaves("BadValue", [&, key = column](Dictionary& sent) { sent.Put(key, text); });
    const Ref<Dictionary> too_long = Sent(Values::kSample, 1);
    too_long->Put(column, text);
    EXPECT_EQ(SentenceOf([&] { Create(too_long); }), std::string(kind.noun) + ": " +
                                                         std::string(column) + " is longer than " +
                                                         std::to_string(longest) + " characters.");
  }
  EXPECT_EQ(State(), before);
}

// ---- Rights ----

TEST_P(RecordSuite, EveryMethodAsksForItsRole) {
  using Method = RecordKind::Method;
  std::vector<Method> methods = {{kind.info, "GetDetail", kind.reader},
                                 {kind.info, "GetList", kind.reader},
                                 {kind.update, "Create", kind.writer},
                                 {kind.update, "Update", kind.writer},
                                 {kind.update, "Delete", kind.writer}};
  if (!kind.id_argument.empty()) methods.push_back({kind.info, "ExistenceCheck", kind.reader});
  if (!kind.text_key.empty()) methods.push_back({kind.info, kind.detail_by_text, kind.reader});
  methods.insert(methods.end(), kind.further_methods.begin(), kind.further_methods.end());
  for (const ServerComponent& component : ServerComponents()) {
    if (component.prog_id != kind.info && component.prog_id != kind.update) continue;
    for (const ClassMember& member : component.table->members()) {
      EXPECT_EQ(std::ranges::count_if(methods,
                                      [&](const Method& method) {
                                        return method.component == component.prog_id &&
                                               method.name == member.row.name;
                                      }),
                1)
          << component.prog_id << "." << member.row.name << ": who may call it is not declared";
    }
  }

  const Long id = CreateSample();
  const auto call = [&](const Method& method, const std::string& who) {
    const Ref<Object> component = Component(method.component);
    if (method.name == "GetList") return void(component->Call("GetList", who));
    if (method.name == kind.detail_by_text) return void(component->Call(method.name, who, "x"));
    if (method.name == "Create") {
      return void(component->Call("Create", who, Sent(Values::kSample, 1)));
    }
    if (method.name == "Update") {
      const Ref<Dictionary> row = Sent(Values::kSample);
      row->Put(kVersion, Long{1});
      return void(component->Call("Update", who, id, row));
    }
    std::vector<Argument> arguments = {who, id};
    arguments.insert(arguments.end(), method.arguments.begin(), method.arguments.end());
    component->Invoke(method.name, CallKind::kMethod, arguments);
  };

  const std::string administrator = props;
  const std::string_view all[] = {"reader",  "preparer", "checker",
                                  "cashier", "poster",   "administrator"};
  std::vector<std::string> callers = {""};
  std::string but_administrators, but_writers;
  for (const std::string_view role : all) {
    callers.emplace_back(role);
    for (std::string* roles : {&but_administrators, &but_writers}) {
      if (role == "administrator" || (roles == &but_writers && role == kind.writer)) continue;
      *roles += (roles->empty() ? "" : ", ") + std::string(role);
    }
  }
  callers.push_back(but_administrators);
  if (but_writers != but_administrators) callers.push_back(but_writers);

  std::string expected, actual;
  const auto ask = [&](const Method& method, const std::string& caller, const std::string& who,
                       std::string_view answer) {
    const std::string cell =
        std::string(method.component) + "." + std::string(method.name) + ", " + caller + ": ";
    expected += cell + std::string(answer) + "\n";
    // What is allowed is done in a batch that is taken back.
    const bool allowed = answer == "none";
    if (allowed) Call(kBatch, "Begin", administrator);
    actual += cell + RefusalOf([&] { call(method, who); }) + "\n";
    if (allowed) Call(kBatch, "RollBack", administrator);
  };
  for (const std::string& roles : callers) {
    props = administrator;
    AddUser("the " + roles, roles);
    const std::string who = Login("the " + roles);
    const std::string before = State();
    for (const Method& method : methods) {
      ask(method, roles, who, May(roles, method.role) ? "none" : "NotPermitted");
    }
    EXPECT_EQ(State(), before) << roles;
  }
  const std::string before = State();
  const std::string ended = Login("administrator");
  Call("QDSVGLSession.SessionUpdate", "Logout", ended);
  for (const Method& method : methods) {
    ask(method, "nobody", connection, "NotLoggedIn");
    ask(method, "who has left", ended, "NotLoggedIn");
  }
  EXPECT_EQ(State(), before);
  EXPECT_EQ(actual, expected);
}

// ---- Failures and batches ----

TEST_P(RecordSuite, AFailureAtAnyStatementLeavesEverythingAsItWas) {
  const Ref<Dictionary> row = Sent(Values::kSample);
  const auto sent = [&] { return TypedText(row); };
  FailEachStatement([&] { Create(row); }, sent);
  const auto id = row->Value(kind.id).As<Long>();
  for (const Column* column : Written()) row->Put(column->name, column->changed);
  FailEachStatement([&] { Update(id, row); }, sent);
  EXPECT_EQ(TypedText(Detail(id)), Saved(Values::kChanged, id, 2));
  if (kind.mark_by_sign) FailEachStatement([&] { Delete(id, 1); });
  FailEachStatement([&] { Delete(id); });
  EXPECT_EQ(Detail(id), nullptr);
  if (kind.used_is_marked) {
    const Long used = CreateSample();
    kind.uses.front()(*this, used);
    FailEachStatement([&] { Delete(used); });
    EXPECT_TRUE(Detail(used)->Value(kind.mark).As<Boolean>());
  }
  EXPECT_EQ(Breaches(), "");
}

TEST_P(RecordSuite, ABatchThatIsRolledBackLeavesNothing) {
  const Long first = CreateSample(1), second = CreateSample(2);
  const std::string before = State();
  const auto work = [&] {
    Call(kBatch, "Begin", props);
    const Long id = CreateSample();
    const Ref<Dictionary> row = Detail(first);
    for (const Column* column : Written()) row->Put(column->name, column->changed);
    Update(first, row);
    Update(first, row);
    Delete(second);
    EXPECT_EQ(RefusalOf([&] { Delete(second); }), "NotFound");
    return id;
  };
  work();
  EXPECT_NE(State(), before);
  Call(kBatch, "RollBack", props);
  EXPECT_EQ(State(), before);
  const Long id = work();
  InAnotherSession([&] { EXPECT_EQ(Detail(id), nullptr) << "others don't see it yet"; });
  Call(kBatch, "Commit", props);
  InAnotherSession([&] {
    EXPECT_NE(Detail(id), nullptr);
    EXPECT_EQ(VersionOf(first), 3);
    EXPECT_EQ(Detail(second), nullptr);
  });
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
  EXPECT_NE(CreateSample(), id) << "ids are not given twice";
}

TEST_P(UsedRecordSuite, AUsedRecordIsNotRemoved) {
  int number = 0;
  for (const RecordKind::Deed use : kind.uses) {
    const Long id = CreateSample(++number);
    use(*this, id);
    const std::string before = State(), row = TypedText(Detail(id));
    if (kind.used_is_marked) {
      Delete(id);
      EXPECT_TRUE(Detail(id)->Value(kind.mark).As<Boolean>());
    } else {
      EXPECT_EQ(RefusalOf([&] { Delete(id); }), "InUse") << number;
      EXPECT_EQ(SentenceOf([&] { Delete(id); }).substr(0, Called(*Detail(id)).size() + 2),
                Called(*Detail(id)) + ": ");
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
    const Ref<Dictionary> old = Detail(id);
    mark(id);
    EXPECT_TRUE(Detail(id)->Value(kind.mark).As<Boolean>());
    EXPECT_FALSE(Detail(other)->Value(kind.mark).As<Boolean>());
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
    const Ref<Dictionary> row = Detail(id);
    row->Put(kind.mark, false);
    Update(id, row);
    EXPECT_EQ(Listed(id) == nullptr, Has(kind.kept_by_server, kind.mark));
  }
  EXPECT_GT(number, 0);
}

// ---- Finding ----

TEST_P(FoundRecordSuite, ARecordIsReadByItsText) {
  const Long id = CreateSample();
  CreateSample(1);
  const String text = Detail(id)->Value(kind.text_key).As<String>();
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
  Variant key = id, text = Detail(id)->Value(kind.text_key);
  EXPECT_EQ(Existence(ByRef(key)), id);
  EXPECT_EQ(Existence(other), other);
  EXPECT_EQ(Existence(Named(kind.id_argument, ByRef(key))), id);
  EXPECT_EQ(Existence(Named(kind.text_argument, ByRef(text))), id);
  if (const Variant* spelled = Find(kind.spelled, kind.text_key)) {
    EXPECT_EQ(Existence(Named(kind.text_argument, *spelled)), id);
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

// ---- The audit trail ----

TEST_P(RecordSuite, DeedsAreOnTheAuditTrail) {
  AddUser("clerk", std::string(kind.writer));
  Login("clerk");
  const auto trail = [&] {
    return TextOf(
        Call("QDSVGLAudit.AuditInfo", "GetList", props, "FUserName = 'clerk'").As<Recordset>(),
        {"FUserName", "FMachineName", "FIPAddress", "FSubject", "FRecordID", "FRecord", "FAction",
         "FOrigin", "FChanges"});
  };
  std::string expected;
  const std::string here = GetMachineName() + " " + GetIPAddress(), host = "HOST 10.0.0.1";
  Long id = 0;
  const auto expect = [&](const std::string& from, const std::string& record,
                          const std::string& action, const std::string& changes = "") {
    expected += "clerk " + from + " " + std::string(kind.subject) + " " + std::to_string(id) + " " +
                record + " " + action + " 1 " + changes + "\n";
    EXPECT_EQ(trail(), expected);
  };
  const Ref<Dictionary> row = Sent(Values::kSample);
  row->Put("MachineName", "DESK");
  row->Put("IPAddress", "10.0.0.7");
  id = Create(row);
  expect("DESK 10.0.0.7", NameIn(*Detail(id)), "Create");

  std::string changes;
  for (const Column* column : Written()) {
    row->Put(column->name, column->changed);
    if (Equals(column->sample, column->changed)) continue;
    changes += (changes.empty() ? "" : "; ") + std::string(column->name) + ": " +
               CStr(column->sample) + " -> " + CStr(column->changed);
  }
  Update(id, row);
  expect("DESK 10.0.0.7", NameIn(*Detail(id)), "Update", changes);
  Update(id, Detail(id));
  expect(here, NameIn(*Detail(id)), "Update");

  const Ref<Dictionary> wrong = Detail(id);
  wrong->Put("FNmae", "x");
  EXPECT_EQ(RefusalOf([&] { Update(id, wrong); }), "BadValue");
  EXPECT_EQ(RefusalOf([&] { Delete(kNoRecord); }), "NotFound");
  EXPECT_EQ(trail(), expected) << "what is refused was not done";

  const std::string name = NameIn(*Detail(id));
  if (kind.mark_by_sign) {
    Delete(id, 1);
    expect(host, name, "Delete");
  }
  Delete(id);
  expect(host, name, "Delete");
  id = Create(Sent(Values::kSample));
  expect(here, NameIn(*Detail(id)), "Create");
  const std::string last = NameIn(*Detail(id));
  Call(kind.update, "Delete", props, id);
  expect(here, last, "Delete");
}

TEST_P(MarkedRecordSuite, MarkingIsOnTheAuditTrail) {
  if (kind.used_is_marked) {
    const Long id = CreateSample();
    kind.uses.front()(*this, id);
    Delete(id);
    EXPECT_EQ(
        TextOf(Call("QDSVGLAudit.AuditInfo", "GetList", props,
                    "FSubject = '" + std::string(kind.subject) + "' AND FMachineName = 'HOST'")
                   .As<Recordset>(),
               {"FRecordID", "FRecord", "FAction", "FChanges"}),
        std::to_string(id) + " " + NameIn(*Detail(id)) + " Delete \n");
  }
  if (!Has(kind.kept_by_server, kind.mark)) {
    const Long id = CreateSample(1);
    const Ref<Dictionary> row = Detail(id);
    row->Put(kind.mark, true);
    row->Put("MachineName", "DESK");
    Update(id, row);
    EXPECT_EQ(TextOf(Call("QDSVGLAudit.AuditInfo", "GetList", props, "FMachineName = 'DESK'")
                         .As<Recordset>(),
                     {"FRecordID", "FAction", "FChanges"}),
              std::to_string(id) + " Update " + std::string(kind.mark) + ": False -> True\n");
  }
}

}  // namespace
}  // namespace qdclgl::server::testing
