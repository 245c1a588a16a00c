#include "python/core/released.h"

#include "python/core/gil.h"
#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/access/login.h"
#include "qdclgl/server/server.h"

namespace qdclgl::python {

namespace {

class Released final : public Object {
 public:
  explicit Released(Ref<Object> component) : component_(std::move(component)) {}

  Object& component() const { return *component_; }

  std::string_view ClassName() const override { return component_->ClassName(); }
  Variant Invoke(std::string_view name, CallKind kind, std::span<Argument> arguments) override {
    CheckThread();
    const WithoutLock others_run;
    return component_->Invoke(name, kind, arguments);
  }

 private:
  Ref<Object> component_;
};

bool IsSessionStore(const server::ServerComponent& component) {
  return component.prog_id == server::CacheFacade::kProgID ||
         component.prog_id == server::ShareProps::kProgID;
}

}  // namespace

void RegisterReleasedComponents() {
  for (const server::ServerComponent& component : server::ServerComponents()) {
    if (IsSessionStore(component)) continue;
    RegisterComponent(component.prog_id,
                      [make = component.make] { return Ref<Object>(Make<Released>(make())); });
  }
}

Object& Behind(Object& object) {
  const auto* released = dynamic_cast<const Released*>(&object);
  return released != nullptr ? released->component() : object;
}

}  // namespace qdclgl::python
