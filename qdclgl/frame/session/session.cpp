#include "qdclgl/frame/session/session.h"

#include <algorithm>
#include <array>

#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

namespace {

// A plain pointer with a reference of its own: a thread that ends must not run a destructor of
// this library, which may be unloaded by then.
thread_local Object* g_SessionObject = nullptr;

constexpr std::array<std::string_view, 14> kSessionKeys = {
    "UserName", "UserID", "PropsString", "LogStatus",   "AcctName", "AcctType", "Setuptype",
    "AcctID",   "SubID",  "AcctClosed",  "MachineName", "IP",       "UUID",     "QDCLogin"};

String SessionText(const char* name) {
  // Held: what answers may put another session in its place.
  if (const Ref<Object> session = SessionObject()) return session->Get(name).As<String>();
  return GetSessionProperty(name).As<String>();
}

// Runs one statement; its failure leaves everything as it stands and the next statement follows.
template <class Statement>
bool ResumeNext(Statement statement) {
  try {
    statement();
    return true;
  } catch (const Error&) {
    return false;
  }
}

// A store's answer: asked once for its kind, once for the value. When the first question fails the
// object form is the one that is tried.
Variant AskStore(const Ref<Object>& store, const char* method, Long process_id, const String& key) {
  const auto ask = [&] { return store->Call(method, ByRef(process_id), key); };
  bool is_object = false;
  const bool told = ResumeNext([&] { is_object = ask().IsObject(); });
  Variant result;
  ResumeNext([&] {
    Variant answer = ask();
    if ((is_object || !told) && !answer.IsObject()) RaiseError(error_number::kTypeMismatch);
    result = std::move(answer);
  });
  return result;
}

}  // namespace

String GetPropsString() { return SessionText("PropsString"); }

String GetSessionUserName() { return SessionText("UserName"); }

Variant GetSessionProperty(const String& Key) {
  Long process_id = CurrentPlatform().ProcessId();
  Ref<Object> facade;
  ResumeNext([&] { facade = CreateObject("QDCMtsCacheService.CacheFacade"); });
  // A store that can't be asked counts as an ordinary login.
  Long outer_login = 0;
  if (facade) {
    ResumeNext([&] {
      outer_login = facade->Call("GetItem", ByRef(process_id), "IsOuterLogin").As<Long>();
    });
  }

  Variant result;
  if (outer_login == 1) {
    if (std::find(kSessionKeys.begin(), kSessionKeys.end(), Key) != kSessionKeys.end()) {
      result = AskStore(facade, "GetItem", process_id, Key);
    }
  } else if (outer_login == 0) {
    Ref<Object> store;
    if (ResumeNext([&] { store = CreateObject("QDCPropsMgr.ShareProps"); })) {
      result = AskStore(store, "GetProperty", process_id, Key);
    }
  }
  return result;
}

String GetPropsValue(const String& Props, const String& Key, const String& Delimiter) {
  const String folded = ToUpper(Props);
  const auto start = folded.find(ToUpper(Key));
  if (start == String::npos) return {};
  // Folding keeps every character's length, so positions agree.
  const std::string_view tail = std::string_view(Props).substr(start);
  const std::string_view folded_tail = std::string_view(folded).substr(start);
  const auto position = [&](std::string_view text) {
    const auto found = folded_tail.find(ToUpper(text));
    return found == std::string_view::npos ? std::ptrdiff_t{0}
                                           : static_cast<std::ptrdiff_t>(found) + 1;
  };
  const std::ptrdiff_t delimiter = position(Delimiter);
  const std::ptrdiff_t length = position(";") - delimiter - 1;
  if (length < 0) RaiseError(error_number::kInvalidCall);
  String value(tail.substr(static_cast<std::size_t>(delimiter), static_cast<std::size_t>(length)));
  if (value.ends_with('}')) value.pop_back();
  return value;
}

Ref<Object> SessionObject() { return Ref<Object>(g_SessionObject); }

void SetSessionObject(const Ref<Object>& session) {
  Ref<Object> former = Ref<Object>::Adopt(g_SessionObject);
  g_SessionObject = Ref<Object>(session).Detach();
}

}  // namespace qdclgl
