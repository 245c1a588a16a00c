#include "qdclgl/automation/foreign_object.h"

#include "qdclgl/automation/errors.h"
#include "qdclgl/automation/values.h"

namespace qdclgl::automation {

namespace {

// The stack that another program takes is not ours to know: a hundred of its calls in each other
// must do with that of a thread, 1 MB.
constexpr int kLevelsOfACall = kDeepestNesting / 100;

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

}  // namespace

bool ForeignObject::Offers(std::initializer_list<const wchar_t*> names) const {
  if (!dispatch_) return false;
  for (const wchar_t* name : names) {
    auto* text = const_cast<LPOLESTR>(name);
    DISPID id;
    const HRESULT code = AnswerOf(
        [&] { return dispatch_->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id); });
    if (FAILED(code)) return false;
  }
  return true;
}

Variant ForeignObject::Invoke(std::string_view name, CallKind kind, std::span<Argument> arguments) {
  const CallingOut out(this, kLevelsOfACall);
  std::vector<std::wstring> names = {ToWide(name)};
  for (const Argument& argument : arguments) {
    if (!argument.name().empty()) names.push_back(ToWide(argument.name()));
  }
  return InvokeId(Resolve(names), kind, arguments);
}

Variant ForeignObject::PlainValue() {
  const CallingOut out(this, kLevelsOfACall);
  if (!dispatch_) RaiseError(error_number::kMemberNotFound);
  return InvokeId({DISPID_VALUE}, CallKind::kGet, {});
}

// The id of the member and, behind it, those of the named arguments.
std::vector<DISPID> ForeignObject::Resolve(std::vector<std::wstring>& names) const {
  if (!dispatch_) RaiseError(error_number::kMemberNotFound);
  std::vector<LPOLESTR> texts;
  for (std::wstring& name : names) texts.push_back(name.data());
  std::vector<DISPID> ids(names.size(), DISPID_UNKNOWN);
  const HRESULT code = CallOut([&] {
    return dispatch_->GetIDsOfNames(IID_NULL, texts.data(), static_cast<UINT>(texts.size()),
                                    LOCALE_USER_DEFAULT, ids.data());
  });
  if (FAILED(code)) {
    const bool member_known = ids[0] != DISPID_UNKNOWN;
    RaiseFailure(member_known && code == DISP_E_UNKNOWNNAME ? DISP_E_PARAMNOTFOUND : code);
  }
  return ids;
}

Variant ForeignObject::InvokeId(std::vector<DISPID> ids, CallKind kind,
                                std::span<Argument> arguments) {
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
    return CallOut([&] {
      return dispatch_->Invoke(ids[0], IID_NULL, LOCALE_USER_DEFAULT, flags, &params,
                               puts ? nullptr : result.get(), &exception, &bad_argument);
    });
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

void detail::RaiseUnfit(std::int32_t number, std::string_view member, const std::string& what) {
  throw Error(number, "QDCLGL", std::string(member) + " of a foreign object is " + what + ".");
}

Long NumberOf(Object& foreign, std::string_view member, std::int64_t least, std::int64_t most) {
  const auto number = AnswerAs<Long>(foreign, member);
  if (number < least || number > most) {
    detail::RaiseUnfit(error_number::kOverflow, member,
                       std::to_string(number) + ", not from " + std::to_string(least) + " to " +
                           std::to_string(most));
  }
  return number;
}

}  // namespace qdclgl::automation
