#include "qdclgl/masterdata/custom_property.h"

#include "qdclgl/frame/entities/walkers.h"
#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/nesting.h"
#include "qdclgl/frame/objects/variant_kind.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(CustomProperty)
QD_DEFINE_MEMBERS(CustomPropertySet)
QD_DEFINE_MEMBERS(WalkCustomPropertySet)

namespace {

constexpr RowKey kBehavior("FBehavior");
constexpr RowKey kComCallOfReads("FComCall");
constexpr RowKey kComCallOfWrites("ComCall");
constexpr RowKey kDataType("FDataType");
constexpr RowKey kDisplayField("FDisplayField");
constexpr RowKey kNewName("FNewName");
constexpr RowKey kPageName("FPageName");
constexpr RowKey kPrecision("FPrecision");
constexpr RowKey kPropID("FPropID");
constexpr RowKey kSaveRule("FSaveRule");
constexpr RowKey kScale("FScale");
constexpr RowKey kSrcField("FSrcField");
constexpr RowKey kSrcTable("FSrcTable");
constexpr RowOptions kPlain;

constexpr Integer kFirstOwnField = 101;  // below are the fields of the system
constexpr Integer kUnsavedField = 32767;

enum SortOrder : Long { kByPropID, kByName, kByPageAndName };

int Sign(std::strong_ordering order) { return order < 0 ? -1 : order > 0 ? 1 : 0; }

int CompareTexts(const String& left, const String& right) {
  return Sign(ToUpper(left) <=> ToUpper(right));
}

int Compare(const Dictionary& left, const Dictionary& right, Long sort_type) {
  if (sort_type == kByPropID) {
    return Sign(CustomProperty::PropIDIn(left) <=> CustomProperty::PropIDIn(right));
  }
  if (sort_type == kByPageAndName) {
    const int pages =
        CompareTexts(CustomProperty::PageNameIn(left), CustomProperty::PageNameIn(right));
    if (pages != 0) return pages;
  }
  return CompareTexts(CustomProperty::NameIn(left), CustomProperty::NameIn(right));
}

Ref<CustomProperty> ViewOf(const Ref<Dictionary>& row, const Ref<Collection>& names,
                           const Ref<ChangeFlag>& flag) {
  auto property = Make<CustomProperty>();
  property->Init(row, names, flag);
  return property;
}

}  // namespace

// ---- CustomProperty ----

void CustomProperty::Init(const Ref<Dictionary>& row, const Ref<Collection>& names,
                          const Ref<ChangeFlag>& flag) {
  Attach(row, true, flag, 0);
  m_Names = names;
}

Integer CustomProperty::PropIDIn(const Dictionary& row) {
  return FieldOf<Integer>(row.Find(kPropID), kPlain);
}

String CustomProperty::NameIn(const Dictionary& row) {
  return FieldOf<String>(row.Find(kNewName), kPlain);
}

String CustomProperty::PageNameIn(const Dictionary& row) {
  static constexpr RowOptions kFirstPage(row_options::Default(strings::BasicDataPage.data()));
  return FieldOf<String>(row.Find(kPageName), kFirstPage);
}

void CustomProperty::RequireOwn() const {
  if (PropID() < kFirstOwnField) RaiseError(error_number::kPropertyNotSettable);
}

void CustomProperty::PutGuarded(const RowKey& key, const Variant& value) {
  const Ref self(this);
  RequireOwn();
  Bag().SetValue(key, value);
}

Boolean CustomProperty::Modified() const { return Bag().Modified(); }

String CustomProperty::Behavior() const { return ReadField<String>(kBehavior, kPlain); }

void CustomProperty::Behavior(String value) {
  Bag().SetValue(kBehavior, value.empty() ? Variant(Null) : Variant(value));
}

String CustomProperty::ComCall() const { return ReadField<String>(kComCallOfReads, kPlain); }

void CustomProperty::ComCall(String value) { Bag().SetValue(kComCallOfWrites, Variant(value)); }

Long CustomProperty::DataType() const {
  static constexpr RowOptions kText(row_options::Default(200));
  return ReadField<Long>(kDataType, kText);
}

void CustomProperty::DataType(Long value) {
  const Ref self(this);
  if (value == DataType()) return;
  if (PropID() != kUnsavedField) RaiseError(error_number::kPropertyNotSettable);
  Bag().SetValue(kDataType, Variant(value));
}

String CustomProperty::DisplayField() const { return ReadField<String>(kDisplayField, kPlain); }

void CustomProperty::DisplayField(String value) {
  PutGuarded(kDisplayField, Variant(TrimBlanks(value)));
}

Long CustomProperty::Precision() const { return ReadField<Long>(kPrecision, kPlain); }

void CustomProperty::Precision(Long value) { PutGuarded(kPrecision, Variant(value)); }

String CustomProperty::SaveRule() const { return ReadField<String>(kSaveRule, kPlain); }

void CustomProperty::SaveRule(String value) { PutGuarded(kSaveRule, Variant(TrimBlanks(value))); }

Integer CustomProperty::Scales() const { return ReadField<Integer>(kScale, kPlain); }

void CustomProperty::Scales(Integer value) { PutGuarded(kScale, Variant(value)); }

String CustomProperty::SrcField() const { return ReadField<String>(kSrcField, kPlain); }

void CustomProperty::SrcField(String value) { PutGuarded(kSrcField, Variant(TrimBlanks(value))); }

String CustomProperty::SrcTable() const { return ReadField<String>(kSrcTable, kPlain); }

void CustomProperty::SrcTable(String value) { PutGuarded(kSrcTable, Variant(value)); }

String CustomProperty::Name() const { return NameIn(*Bag().Dictionary()); }

void CustomProperty::Name(String value) {
  const Ref self(this);
  try {
    RequireOwn();
    const String name(TrimBlanks(value));
    const String former = Name();
    if (name == former) return;
    if (!name.empty()) m_Names->Add(Variant(name), Variant(name));
    if (!former.empty()) m_Names->Remove(Variant(former));
    Bag().SetValue(kNewName, Variant(name));
  } catch (const Error& error) {
    // A name in use is told; any other failure leaves the name as it is and is not.
    if (error.number() != error_number::kDuplicateKey) return;
    throw Error(error_number::kInvalidCall, "QDCLGL.CustomProperty", "名称重复，请重新输入");
  }
}

// ---- CustomPropertySet ----

void CustomPropertySet::Init(const Ref<Vector>& vector, const Ref<ChangeFlag>& flag) {
  const CallingOut out(this);
  m_Vector = vector;
  m_Flag = flag;
  m_Names = Make<Collection>();
  for (Long i = 1; i <= vector->Count(); ++i) {
    try {
      const String name = CustomProperty::NameIn(*RowAt(vector, i));
      if (!name.empty()) m_Names->Add(Variant(name), Variant(name));
    } catch (const Error&) {
      // A repeated name, or a row that has none that can be read, is left out.
    }
  }
}

const Ref<Vector>& CustomPropertySet::Rows() const {
  if (!m_Vector) RaiseError(error_number::kObjectNotSet);
  return m_Vector;
}

Ref<CustomProperty> CustomPropertySet::At(Long position) const {
  return ViewOf(RowAt(Rows(), position), m_Names, m_Flag);
}

Long CustomPropertySet::Find(const String& name) const {
  const Ref<Vector> rows = Rows();
  for (Long i = 1; i <= rows->Count(); ++i) {
    const Ref<Dictionary> row = RowAt(rows, i);
    if (CustomProperty::NameIn(*row) == name) return i;
  }
  return 0;
}

Long CustomPropertySet::PositionOf(const Variant& index) const {
  return IsVariantKind(index, variant_kind::kNumber) ? CLng(index) : Find(CStr(index));
}

Ref<CustomProperty> CustomPropertySet::Add(String Name, Long DataType, String /*Behavior*/,
                                           Long Precision, Integer Scales) {
  const CallingOut out(this);
  auto row = Make<Dictionary>();
  row->Put(kPropID, Variant(kUnsavedField));
  Rows()->Append(Variant(row));
  const Ref<CustomProperty> property = At(Rows()->Count());
  m_Flag->Modified(true);
  property->Name(std::move(Name));
  property->DataType(DataType);
  property->Scales(Scales);
  property->Precision(Precision);
  return property;
}

Long CustomPropertySet::ExistenceCheck(String Name, Integer /*PropID*/) {
  const CallingOut out(this);
  return Find(Name);
}

Ref<Object> CustomPropertySet::GetPageNameList() {
  const CallingOut out(this);
  const Ref<Vector> rows = Rows();
  auto pages = Make<Dictionary>();
  for (Long i = 1; i <= rows->Count(); ++i) {
    const Ref<Dictionary> row = RowAt(rows, i);
    const String page = CustomProperty::PageNameIn(*row);
    if (!pages->Lookup(page)) pages->Put(page, Variant(page));
  }
  return pages;
}

Ref<Enumerator> CustomPropertySet::NewEnum() {
  auto walker = Make<WalkCustomPropertySet>();
  walker->Init(Rows(), m_Names, m_Flag);
  return EnumFactory().CreateEnum(walker);
}

EnumeratorRange<CustomProperty>::Iterator CustomPropertySet::begin() {
  return EnumeratorRange<CustomProperty>::Iterator(NewEnum());
}

void CustomPropertySet::Remove(Variant index) {
  const CallingOut out(this);
  const Long position = PositionOf(index);
  const Ref<Dictionary> row = RowAt(Rows(), position);
  if (CustomProperty::PropIDIn(*row) < kFirstOwnField) {
    RaiseError(error_number::kSystemFieldNotRemovable);
  }
  const String name = CustomProperty::NameIn(*row);
  Rows()->Remove(position, 1);
  m_Flag->Modified(true);
  if (!name.empty()) m_Names->Remove(Variant(name));
}

void CustomPropertySet::Sort(Long SortType, Boolean bDesc) {
  if (SortType < kByPropID || SortType > kByPageAndName) RaiseError(error_number::kInvalidCall);
  const CallingOut out(this);
  const Ref<Vector> rows = Rows();
  const int ahead = bDesc ? -1 : 1;
  // Each position against all behind it: rows that compare equal may change their order.
  for (Long i = 1; i < rows->Count(); ++i) {
    for (Long j = i + 1; j <= rows->Count(); ++j) {
      const Ref<Dictionary> first = RowAt(rows, i);
      const Ref<Dictionary> second = RowAt(rows, j);
      if (Compare(*first, *second, SortType) != ahead) continue;
      rows->Item(i, Variant(second));
      rows->Item(j, Variant(first));
    }
  }
}

Long CustomPropertySet::Count() const { return Rows()->Count(); }

Ref<CustomProperty> CustomPropertySet::Item(Variant index) const {
  const CallingOut out(this);
  return At(PositionOf(index));
}

Boolean CustomPropertySet::Modified() const {
  Rows();
  return m_Flag->Modified();
}

// ---- WalkCustomPropertySet ----

void WalkCustomPropertySet::Init(const Ref<Vector>& vector, const Ref<Collection>& names,
                                 const Ref<ChangeFlag>& flag) {
  m_Vector = vector;
  m_Names = names;
  m_ChangeFlag = flag;
  m_Pos = 0;
}

bool WalkCustomPropertySet::Advance() {
  if (!m_Vector) RaiseError(error_number::kObjectNotSet);
  if (m_Pos >= m_Vector->Count()) return false;
  m_Pos = NextPosition(m_Pos);
  return true;
}

void WalkCustomPropertySet::Next(Variant& Item, Boolean& Done) {
  const CallingOut out(this);
  if (!Advance()) return;
  Item = Variant(ViewOf(RowAt(m_Vector, m_Pos), m_Names, m_ChangeFlag));
  Done = true;
}

void WalkCustomPropertySet::Skip(Boolean& Done) {
  if (Advance()) Done = true;
}

void WalkCustomPropertySet::Reset() { m_Pos = 0; }

}  // namespace qdclgl
