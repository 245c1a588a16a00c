#include "qdclgl/automation/errors.h"

#include <algorithm>
#include <array>
#include <new>
#include <string>

namespace qdclgl::automation {

namespace {

constexpr std::uint32_t kPlainBase = 0x800A0000;

// The codes with which an Invoke fails before the member is reached, and their numbers.
struct DispatchCode {
  HRESULT code;
  std::int32_t number;
};
constexpr std::array<DispatchCode, 9> kDispatchCodes = {{
    {DISP_E_MEMBERNOTFOUND, error_number::kMemberNotFound},
    {DISP_E_UNKNOWNNAME, error_number::kMemberNotFound},
    {DISP_E_TYPEMISMATCH, error_number::kTypeMismatch},
    {DISP_E_OVERFLOW, error_number::kOverflow},
    {DISP_E_BADINDEX, error_number::kSubscriptOutOfRange},
    {DISP_E_PARAMNOTFOUND, error_number::kNamedArgumentNotFound},
    {DISP_E_NONAMEDARGS, error_number::kNamedArgumentNotFound},
    {DISP_E_PARAMNOTOPTIONAL, error_number::kArgumentNotOptional},
    {DISP_E_BADPARAMCOUNT, error_number::kWrongArgumentCount},
}};

BSTR TextOrNull(const std::string& text) {
  if (text.empty()) return nullptr;
  const std::wstring wide = ToWide(text);
  return SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

void FileErrorInfo(const Error& error) {
  Com<ICreateErrorInfo> creator;
  if (FAILED(CreateErrorInfo(creator.Put()))) return;
  creator->SetSource(ToWide(error.source()).data());
  creator->SetDescription(ToWide(error.description()).data());
  if (const auto info = Query<IErrorInfo>(creator.get(), IID_IErrorInfo)) {
    SetErrorInfo(0, info.get());
  }
}

// What the exception under way is to a client; `answer` tells it for an Error.
template <class Answer>
HRESULT Translate(Answer answer) noexcept {
  try {
    throw;
  } catch (const Error& error) {
    try {
      FileErrorInfo(error);
      return answer(error);
    } catch (...) {
      return E_OUTOFMEMORY;
    }
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

// The text of an owned BSTR, which is released.
std::string Take(BSTR& text) {
  OwnedText owned;
  *owned.Put() = std::exchange(text, nullptr);
  return owned.ToText();
}

}  // namespace

HRESULT CodeOfNumber(std::int32_t number) {
  if (number == 0) return CodeOfNumber(error_number::kAutomationError);
  const bool plain = number > 0 && number <= 0xFFFF;
  return plain ? static_cast<HRESULT>(kPlainBase + static_cast<std::uint32_t>(number)) : number;
}

std::int32_t NumberOfCode(HRESULT code) {
  const auto bits = static_cast<std::uint32_t>(code);
  const bool plain = (bits & 0xFFFF0000) == kPlainBase;
  const std::int32_t number = plain ? static_cast<std::int32_t>(bits & 0xFFFF) : code;
  return number != 0 ? number : error_number::kAutomationError;
}

HRESULT ReportException() noexcept {
  return Translate([](const Error& error) {
    const HRESULT code = CodeOfNumber(error.number());
    return FAILED(code) ? code : E_FAIL;  // a number that is no failure must not pass for success
  });
}

HRESULT ReportInvokeException(EXCEPINFO* exception) noexcept {
  return Translate([exception](const Error& error) {
    if (exception != nullptr) {
      *exception = {};
      exception->scode = CodeOfNumber(error.number());
      exception->bstrSource = TextOrNull(error.source());
      exception->bstrDescription = TextOrNull(error.description());
    }
    return DISP_E_EXCEPTION;
  });
}

void RaiseFailure(HRESULT code, EXCEPINFO* exception) {
  if (code == DISP_E_EXCEPTION && exception != nullptr) {
    if (exception->pfnDeferredFillIn != nullptr) {
      AnswerOf([&] { return exception->pfnDeferredFillIn(exception); });
    }
    SysFreeString(exception->bstrHelpFile);
    std::string source = Take(exception->bstrSource);
    std::string description = Take(exception->bstrDescription);
    const std::int32_t number =
        exception->wCode != 0 ? exception->wCode : NumberOfCode(exception->scode);
    throw Error(number, std::move(source), std::move(description));
  }
  const auto known = std::find_if(kDispatchCodes.begin(), kDispatchCodes.end(),
                                  [&](const DispatchCode& entry) { return entry.code == code; });
  if (known != kDispatchCodes.end()) RaiseError(known->number);

  OwnedText source, description;
  Com<IErrorInfo> info;
  if (GetErrorInfo(0, info.Put()) == S_OK) {
    AnswerOf([&] { return info->GetSource(source.Put()); });
    AnswerOf([&] { return info->GetDescription(description.Put()); });
  }
  throw Error(NumberOfCode(code), source.ToText(), description.ToText());
}

}  // namespace qdclgl::automation
