// Counts the vouchers of books by the automation server, with nothing but the system's headers:
//   count_vouchers books.db
// The password comes from QDCLGL_PASSWORD.
// clang-format off
#include <windows.h>
#include <oleauto.h>
#include <shellapi.h>
// clang-format on

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

// Calls a member, or reads it. What the object says of a failure is printed.
bool Call(IDispatch* object, const wchar_t* member, std::vector<const wchar_t*> texts,
          VARIANT* result) {
  LPOLESTR name = const_cast<LPOLESTR>(member);
  DISPID id = 0;
  if (FAILED(object->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id))) return false;
  std::vector<VARIANT> arguments(texts.size());  // the last one first
  for (std::size_t i = 0; i < texts.size(); ++i) {
    VARIANT& argument = arguments[texts.size() - 1 - i];
    VariantInit(&argument);
    V_VT(&argument) = VT_BSTR;
    V_BSTR(&argument) = SysAllocString(texts[i]);
  }
  DISPPARAMS parameters{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
  EXCEPINFO error{};
  VariantInit(result);
  const HRESULT code =
      object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET,
                     &parameters, result, &error, nullptr);
  for (VARIANT& argument : arguments) VariantClear(&argument);
  if (code == DISP_E_EXCEPTION) std::printf("%ls\n", error.bstrDescription);
  SysFreeString(error.bstrSource);
  SysFreeString(error.bstrDescription);
  SysFreeString(error.bstrHelpFile);
  return SUCCEEDED(code);
}

IDispatch* Create(const wchar_t* prog_id) {
  CLSID id;
  void* object = nullptr;
  if (FAILED(CLSIDFromProgID(prog_id, &id)) ||
      FAILED(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &object))) {
    std::printf("%ls can't be created; is the server registered?\n", prog_id);
    return nullptr;
  }
  return static_cast<IDispatch*>(object);
}

bool Count(const wchar_t* books) {
  const wchar_t* password = _wgetenv(L"QDCLGL_PASSWORD");
  IDispatch* session = Create(L"QDSVGLSession.SessionUpdate");
  IDispatch* vouchers = session == nullptr ? nullptr : Create(L"QDCLGL.VoucherSet");
  VARIANT props, count, nothing;
  const bool is_counted =
      vouchers != nullptr &&
      Call(session, L"Login", {books, L"administrator", password == nullptr ? L"" : password},
           &props) &&
      Call(vouchers, L"Count", {}, &count) && Call(session, L"Logout", {V_BSTR(&props)}, &nothing);
  if (is_counted) std::printf("%ld vouchers\n", V_I4(&count));
  if (vouchers != nullptr) vouchers->Release();
  if (session != nullptr) session->Release();
  return is_counted;
}

}  // namespace

int main() {
  int count = 0;
  LPWSTR* words = CommandLineToArgvW(GetCommandLineW(), &count);
  if (count != 2) return 2;
  CoInitialize(nullptr);
  const bool is_counted = Count(words[1]);
  CoUninitialize();
  LocalFree(words);
  return is_counted ? 0 : 1;
}
