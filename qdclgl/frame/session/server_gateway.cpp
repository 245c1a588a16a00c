#include "qdclgl/frame/session/server_gateway.h"

#include <mutex>
#include <unordered_map>

#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

namespace {

struct Components {
  std::mutex mutex;
  std::unordered_map<std::string, ComponentFactory> factories;  // by folded ProgID
  ComponentCreator foreign;
};

Components& ProcessComponents() {
  static Components components;
  return components;
}

thread_local Gateway* replaced_gateway = nullptr;

}  // namespace

void RegisterComponent(std::string_view prog_id, ComponentFactory factory) {
  Components& components = ProcessComponents();
  const std::lock_guard lock(components.mutex);
  components.factories[FoldAsciiCase(prog_id)] = std::move(factory);
}

void UnregisterComponent(std::string_view prog_id) {
  Components& components = ProcessComponents();
  const std::lock_guard lock(components.mutex);
  components.factories.erase(FoldAsciiCase(prog_id));
}

ComponentCreator SetForeignComponentCreator(ComponentCreator creator) {
  Components& components = ProcessComponents();
  const std::lock_guard lock(components.mutex);
  return std::exchange(components.foreign, std::move(creator));
}

Ref<Object> CreateObject(std::string_view prog_id) {
  ComponentFactory factory;
  ComponentCreator foreign;
  {
    Components& components = ProcessComponents();
    const std::lock_guard lock(components.mutex);
    const auto found = components.factories.find(FoldAsciiCase(prog_id));
    if (found != components.factories.end()) factory = found->second;
    foreign = components.foreign;
  }
  // Called outside the lock: a component may create others.
  Ref<Object> object = factory ? factory() : foreign ? foreign(prog_id) : nullptr;
  if (!object) {
    throw Error(error_number::kCannotCreateObject, "QDCLGL",
                "No component is registered as " + std::string(prog_id) + ".");
  }
  return object;
}

Ref<Object> Gateway::CreateInstance(std::string_view ProgID, const Variant&) {
  return CreateObject(ProgID);
}

Gateway& ServerGateway() {
  static Gateway own_gateway;  // it has no state, so one serves every apartment
  return replaced_gateway != nullptr ? *replaced_gateway : own_gateway;
}

Gateway* SetServerGateway(Gateway* gateway) { return std::exchange(replaced_gateway, gateway); }

}  // namespace qdclgl
