#include "qdclgl/frame/session/startup.h"

#include <utility>

#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/session/registry.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/session/session.h"

namespace qdclgl {

namespace {

thread_local Boolean g_Offline = false;
thread_local bool started = false;

constexpr const char* kRegistryPath = "SoftWare\\Quenda\\LocalDatabase\\";

}  // namespace

Boolean QueryNeedOffline() {
  constexpr Integer kTrue = -1;
  const Ref<Object> info = ServerGateway().CreateInstance("QDSVBase.BaseInfo");
  const String props = GetPropsString();
  String computer = GetComputerNameOrNoName();
  return info->Call("IsNeedOffline", props, kTrue, ByRef(computer)).As<Boolean>();
}

Variant SetOfflineState(Boolean Offline) {
  g_Offline = Offline;
  const String database = GetPropsValue(GetPropsString(), "Initial catalog", "=");
  try {
    const String status = Offline ? "OFFLINE" : "ONLINE";
    Reg().SetValue(registry_root::kLocalMachine, kRegistryPath + GetSessionUserName(), database,
                   Variant(status), registry_type::kText);
    g_Offline = Offline;  // what was called on the way may have changed it
    return {};
  } catch (const Error& error) {
    return Variant(error.description().empty() ? error.what() : error.description());
  }
}

Boolean IsOffline() { return g_Offline; }

void Main() {
  try {
    g_Offline = QueryNeedOffline();
    SetOfflineState(g_Offline);
  } catch (const Error&) {
    g_Offline = false;
  }
}

void StartApartment() {
  if (started) return;
  started = true;  // first, so that objects made on the way do not start it again
  Main();
}

bool SetApartmentStarted(bool value) { return std::exchange(started, value); }

}  // namespace qdclgl
