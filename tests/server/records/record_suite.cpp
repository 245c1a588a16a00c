#include "tests/server/records/record_suite.h"

#include <algorithm>
#include <limits>
#include <ostream>
#include <thread>

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server::testing {

using Column = RecordKind::Column;

namespace {

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

std::string Literal(const Variant& value) {
  const std::string text = CStr(value);
  if (value.Type() == VariantType::kDate) return "#" + text + "#";
  if (!value.IsString()) return text;
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? "''" : std::string(1, c);
  return quoted + "'";
}

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
    // Of the texts, the last is half a character.
    default: return {std::string("a\0b", 3), "\xFF\xFE", "a\xED\xA0\xBD", list};
  }
}

std::string TypedText(const Dictionary& row) {
  std::string text;
  for (std::uint32_t i = 0; i < row.size(); ++i) {
    if (row.key_at(i).starts_with('_')) continue;
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

RecordSuite::RecordSuite() : RecordBooks(GetParam().database), kind(*GetParam().kind) {
  const std::string own = props;
  other_session_ = Login("administrator");
  props = own;
  if (kind.prepare != nullptr) kind.prepare(*this);
}

Variant RecordSuite::ValueOf(const Column& column, Values values, int number) const {
  Variant value = values == Values::kChanged ? column.changed : column.sample;
  if (values == Values::kAbsent && !IsNeeded(column.name)) {
    const Variant* absent = Find(kind.absent, column.name);
    if (absent != nullptr) {
      value = *absent;
    } else if (IsWritten(column)) {
      value = ZeroOf(column.sample);
    }
  }
  const std::string_view* followed = Find(kind.follows, column.name);
  if (number != 0 && Find(kind.unique, followed != nullptr ? *followed : column.name) != nullptr) {
    value = value.As<String>() + std::to_string(number);
  }
  return value;
}

Ref<Dictionary> RecordSuite::Sent(Values values, int number) const {
  auto row = Make<Dictionary>();
  for (const Column* column : Written()) {
    if (values == Values::kAbsent && !IsNeeded(column->name)) continue;
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

Ref<Dictionary> RecordSuite::WithoutLists(const Ref<Dictionary>& record) const {
  if (record) {
    for (const std::string_view key : kind.lists) EXPECT_TRUE(record->Erase(key)) << key;
  }
  return record;
}

Ref<Dictionary> RecordSuite::Detail(Long id) {
  return WithoutLists(Call(kind.info, "GetDetail", props, ByRef(id)).As<Dictionary>());
}

Ref<Dictionary> RecordSuite::Record(Long id) {
  Ref<Dictionary> record = Detail(id);
  if (!record) Refuse(refusal::kNotFound, "There is no " + std::string(kind.noun) + ".");
  return record;
}

Ref<Dictionary> RecordSuite::DetailByText(std::string_view text) {
  Variant key = text;
  return WithoutLists(Call(kind.info, kind.detail_by_text, props, ByRef(key)).As<Dictionary>());
}

Ref<Recordset> RecordSuite::List(Long options, std::string filter, std::string sort,
                                 const Variant& page) {
  return (kind.has_list_options
              ? Call(kind.info, "GetList", props, ByRef(options), ByRef(filter), ByRef(sort),
                     Named("Page", page))
              : Call(kind.info, "GetList", props, ByRef(filter), ByRef(sort), Named("Page", page)))
      .As<Recordset>();
}

Ref<Dictionary> RecordSuite::Listed(Long id, Long options) {
  const Ref<Recordset> list = List(options, std::string(kind.id) + " = " + std::to_string(id));
  return list->Eof() ? nullptr : list->Row();
}

Long RecordSuite::Existence(Argument argument) {
  return Call(kind.info, "ExistenceCheck", props, std::move(argument)).As<Long>();
}

std::string RecordSuite::NameIn(const Dictionary& record) const {
  const String name = record.Value(kind.name).As<String>();
  return record.Contains("FNumber") ? record.Value("FNumber").As<String>() + " (" + name + ")"
                                    : name;
}

std::string RecordSuite::Called(const Dictionary& record) const {
  return std::string(kind.noun) + " " + NameIn(record);
}

Variant RecordSuite::Marked(bool is_marked) const {
  const auto mark = std::ranges::find(kind.columns, kind.mark, &Column::name);
  if (mark->sample.Is(VariantType::kBoolean)) return is_marked;
  return Integer{is_marked};
}

bool RecordSuite::IsNeeded(std::string_view column) const {
  const auto refers = std::ranges::find(kind.references, column, &RecordKind::Reference::column);
  const bool is_referred = refers != kind.references.end() && refers->is_required;
  return Has(kind.required, column) || (is_referred && Find(kind.absent, column) == nullptr);
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
    return !column->sample.IsString() || Has(kind.coded, column->name);
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
  const Ref<Dictionary> created = Sent(Values::kSample, 99), updated = Record(id);
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
    props = other_session_;
    operation();
    Connections::OfThisThread().CloseAll();
  }).join();
  props = own;
}

Ref<Dictionary> ReferringRecordSuite::SentWith(const Reference& reference, Long id,
                                               int number) const {
  Ref<Dictionary> row = Sent(Values::kSample, number);
  row->Put(reference.column, id);
  return row;
}

void ReferringRecordSuite::RemoveReferred(const Reference& reference, Long id) {
  Call(reference.update, "Delete", props, ByRef(id));
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
      const Ref<Dictionary> row = Record(id);
      row->Put(kind.mark, true);
      Update(id, row);
    });
  }
  return ways;
}

}  // namespace qdclgl::server::testing
