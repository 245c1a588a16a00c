#include "qdclgl/automation/foreign.h"

#include <array>
#include <initializer_list>
#include <vector>

#include "qdclgl/automation/crossing.h"
#include "qdclgl/automation/errors.h"
#include "qdclgl/automation/values.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/objects/nesting.h"

namespace qdclgl::automation {

namespace {

// What stands for an object of others.
class Foreign {
 public:
  // Null when it stands for it no more.
  virtual IUnknown* object() const = 0;

 protected:
  ~Foreign() = default;
};

// One argument of an outgoing call: by value, or by reference to a variable that lives here.
class Outgoing {
 public:
  void Take(const Argument& argument, VARIANT& place) {
    place.vt = VT_EMPTY;
    ToVariant(argument.Value(), variable_.get());
    if (!argument.IsByRef()) {
      place = *variable_;  // without a reference of its own: the variable outlives the call
    } else if (argument.reference().IsVariant()) {
      place.vt = VT_BYREF | VT_VARIANT;
      place.pvarVal = variable_.get();
    } else if (variable_->vt == VT_DECIMAL) {
      place.vt = VT_BYREF | VT_DECIMAL;
      place.pdecVal = &variable_->decVal;
    } else {
      place.vt = static_cast<VARTYPE>(VT_BYREF | variable_->vt);
      place.byref = &variable_->bVal;
    }
  }

  void WriteBack(const Argument& argument) const {
    if (argument.IsByRef()) argument.Put(FromVariant(*variable_, Taking::kCopy));
  }

 private:
  OwnedVariant variable_;
};

// Any object of others, called by name.
class ForeignObject final : public Object, public Foreign {
 public:
  explicit ForeignObject(IUnknown* object)
      : object_(object), dispatch_(Query<IDispatch>(object, IID_IDispatch)) {}

  std::string_view ClassName() const override { return "Object"; }
  IUnknown* object() const override { return object_.get(); }

  // Whether it answers to all of these names.
  bool Offers(std::initializer_list<const wchar_t*> names) const {
    if (!dispatch_) return false;
    for (const wchar_t* name : names) {
      auto* text = const_cast<LPOLESTR>(name);
      DISPID id;
      if (FAILED(dispatch_->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id))) {
        return false;
      }
    }
    return true;
  }

  Variant Invoke(std::string_view name, CallKind kind, std::span<Argument> arguments) override {
    CheckThread();
    std::vector<std::wstring> names = {ToWide(name)};
    for (const Argument& argument : arguments) {
      if (!argument.name().empty()) names.push_back(ToWide(argument.name()));
    }
    return InvokeId(Resolve(names), kind, arguments);
  }

  Variant DefaultValue() override {
    CheckThread();
    if (!dispatch_) RaiseError(error_number::kMemberNotFound);
    return InvokeId({DISPID_VALUE}, CallKind::kGet, {});
  }

 private:
  // The id of the member and, behind it, those of the named arguments.
  std::vector<DISPID> Resolve(std::vector<std::wstring>& names) const {
    if (!dispatch_) RaiseError(error_number::kMemberNotFound);
    std::vector<LPOLESTR> texts;
    for (std::wstring& name : names) texts.push_back(name.data());
    std::vector<DISPID> ids(names.size(), DISPID_UNKNOWN);
    const HRESULT code = dispatch_->GetIDsOfNames(
        IID_NULL, texts.data(), static_cast<UINT>(texts.size()), LOCALE_USER_DEFAULT, ids.data());
    if (FAILED(code)) {
      const bool member_known = ids[0] != DISPID_UNKNOWN;
      RaiseFailure(member_known && code == DISP_E_UNKNOWNNAME ? DISP_E_PARAMNOTFOUND : code);
    }
    return ids;
  }

  Variant InvokeId(std::vector<DISPID> ids, CallKind kind, std::span<Argument> arguments) {
    const bool puts = Includes(kind, CallKind::kLet | CallKind::kSet);
    std::vector<DISPID> named(ids.rbegin(), ids.rend() - 1);
    const std::size_t positional = arguments.size() - named.size();
    std::vector<Outgoing> outgoing(arguments.size());
    std::vector<VARIANT> places(arguments.size());
    // The last argument stands first. The value of a put is the last positional one of ours; there
    // it is a named one, in front of the others.
    std::vector<std::size_t> order;
    if (puts) {
      if (positional == 0) RaiseError(error_number::kWrongArgumentCount);
      named.insert(named.begin(), DISPID_PROPERTYPUT);
      order.push_back(positional - 1);
    }
    for (std::size_t i = arguments.size(); i > positional; --i) order.push_back(i - 1);
    for (std::size_t i = positional - (puts ? 1 : 0); i > 0; --i) order.push_back(i - 1);
    for (std::size_t i = 0; i < order.size(); ++i) {
      outgoing[i].Take(arguments[order[i]], places[i]);
    }

    DISPPARAMS params{places.data(), named.data(), static_cast<UINT>(places.size()),
                      static_cast<UINT>(named.size())};
    OwnedVariant result;
    EXCEPINFO exception{};
    UINT bad_argument = 0;
    const auto call = [&](WORD flags) {
      return dispatch_->Invoke(ids[0], IID_NULL, LOCALE_USER_DEFAULT, flags, &params,
                               puts ? nullptr : result.get(), &exception, &bad_argument);
    };
    HRESULT code;
    if (!puts) {
      // By name alone a method can't be told from a property.
      code = call(DISPATCH_METHOD | DISPATCH_PROPERTYGET);
    } else {
      code = call(Includes(kind, CallKind::kSet) ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT);
      // An object may be put either way.
      if (code == DISP_E_MEMBERNOTFOUND && Includes(kind, CallKind::kSet)) {
        code = call(DISPATCH_PROPERTYPUT);
      }
    }
    if (FAILED(code)) RaiseFailure(code, &exception);

    for (std::size_t i = 0; i < order.size(); ++i) outgoing[i].WriteBack(arguments[order[i]]);
    return FromVariant(*result, Taking::kCopy);
  }

  Com<IUnknown> object_;
  Com<IDispatch> dispatch_;  // empty for an object that can't be called by name
};

// A recordset of another library. Its errors pass as they are.
class ForeignRecordset final : public Recordset, public Foreign {
 public:
  explicit ForeignRecordset(Ref<ForeignObject> rows) : rows_(std::move(rows)) {}

  IUnknown* object() const override { return rows_->object(); }

  void AddNew() override { rows_->Call("AddNew"); }
  Ref<Recordset> Clone(Long LockType) override {
    return rows_->Call("Clone", LockType).As<Recordset>();
  }
  void Close() override { rows_->Call("Close"); }
  void Find(std::string_view Criteria) override { rows_->Call("Find", Criteria); }
  void MoveFirst() override { rows_->Call("MoveFirst"); }
  void MoveNext() override { rows_->Call("MoveNext"); }
  void Open() override { rows_->Call("Open"); }
  void Update() override { rows_->Call("Update"); }
  Boolean Bof() const override { return rows_->Get("BOF").As<Boolean>(); }
  Boolean Eof() const override { return rows_->Get("EOF").As<Boolean>(); }
  Long RecordCount() const override { return rows_->Get("RecordCount").As<Long>(); }
  Long State() const override { return rows_->Get("State").As<Long>(); }

  Ref<Dictionary> Row() const override {
    const Ref<Object> columns = Columns();
    const Long count = columns->Get("Count").As<Long>();
    Ref<Dictionary> row = Dictionary::Create(static_cast<std::size_t>(count));
    for (Long i = 0; i < count; ++i) {
      const auto column = columns->Get("Item", i).As<Object>();
      row->Put(column->Get("Name").As<String>(), column->Get("Value"));
    }
    row->ResetModified();
    return row;
  }
  Long FieldCount() const override { return Columns()->Get("Count").As<Long>(); }
  String FieldName(Long position) const override {
    return Column(position)->Get("Name").As<String>();
  }
  Variant FieldValue(Long position) const override { return Column(position)->Get("Value"); }
  void SetFieldValue(Long position, Variant value) override {
    Column(position)->Let("Value", std::move(value));
  }
  void AppendField(std::string_view name) override {
    constexpr Long kVariantColumn = 12;
    Columns()->Call("Append", name, kVariantColumn);
  }

 private:
  Ref<Object> Columns() const { return rows_->Get("Fields").As<Object>(); }
  Ref<Object> Column(Long position) const { return Columns()->Get("Item", position).As<Object>(); }

  Ref<ForeignObject> rows_;
};

void Fill(Dictionary& copy, Object& foreign) {
  const NestingLevel level;
  const Long count = foreign.Get("Count").As<Long>();
  for (Long i = 1; i <= count; ++i) {
    const String key = foreign.Get("Name", i).As<String>();
    copy.Put(key, foreign.Get("Value", key));
  }
  copy.EndFilling();
}

void Fill(Vector& copy, Object& foreign) {
  const NestingLevel level;
  const Long first = foreign.Get("LowerBound").As<Long>();
  const Long last = foreign.Get("UpperBound").As<Long>();
  copy.LowerBound(first);
  // In 64 bits: there may be no index behind the last one.
  for (std::int64_t i = first; i <= last; ++i) {
    copy.Append(foreign.Get("Item", static_cast<Long>(i)));
  }
  copy.EndFilling();
}

template <class Container>
Ref<Container> CopyOf(Object& foreign) {
  auto copy = Make<Container>();
  Fill(*copy, foreign);
  return copy;
}

// A copy of a container of others that stands for it, see Taking::kStandIn.
template <class Container>
class StandIn final : public Container, public Foreign {
 public:
  explicit StandIn(Ref<ForeignObject> original) : original_(std::move(original)) {
    Fill(*this, *original_);
  }

  IUnknown* object() const override {
    return this->WrittenWithin() ? nullptr : original_->object();
  }
  Ref<Container> CopyWith(Variant (*copy_object)(const Variant&)) const override {
    if (this->WrittenWithin()) return Container::CopyWith(copy_object);
    Ref<Container> now = CopyOf<Container>(*Ref(original_));
    return copy_object == nullptr ? now : now->CopyWith(copy_object);
  }

 private:
  Ref<ForeignObject> original_;
};

template <class Container>
Ref<Object> Taken(const Ref<ForeignObject>& foreign, Taking taking) {
  if (taking == Taking::kCopy) return CopyOf<Container>(*foreign);
  return Make<StandIn<Container>>(foreign);
}

}  // namespace

Ref<Object> TakeIn(IUnknown* object, Taking taking) {
  if (object == nullptr) return nullptr;
  if (Ref<Object> own = Unwrap(object)) return own;
  auto foreign = Make<ForeignObject>(object);
  if (foreign->Offers({L"MoveNext", L"MoveFirst", L"Fields", L"EOF"})) {
    return Make<ForeignRecordset>(foreign);
  }
  if (foreign->Offers({L"Lookup", L"Name", L"Value", L"Count"})) {
    return Taken<Dictionary>(foreign, taking);
  }
  if (foreign->Offers({L"LowerBound", L"UpperBound", L"Append", L"Item"})) {
    return Taken<Vector>(foreign, taking);
  }
  return foreign;
}

IUnknown* ForeignBehind(Object* object) {
  const auto* foreign = dynamic_cast<const Foreign*>(object);
  return foreign != nullptr ? foreign->object() : nullptr;
}

Ref<Object> CreateForeign(std::string_view prog_id) {
  CLSID class_id;
  if (FAILED(CLSIDFromProgID(ToWide(prog_id).c_str(), &class_id))) return nullptr;
  Com<IUnknown> object;
  const HRESULT code =
      CoCreateInstance(class_id, nullptr, CLSCTX_SERVER, IID_IUnknown, object.PutVoid());
  if (code == REGDB_E_CLASSNOTREG) return nullptr;
  if (FAILED(code)) RaiseFailure(code);
  return TakeIn(object.get(), Taking::kCopy);
}

}  // namespace qdclgl::automation
