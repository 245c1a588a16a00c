// Creation of server components by ProgID.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "qdclgl/frame/objects/late_bound.h"

namespace qdclgl {

using ComponentFactory = std::function<Ref<Object>()>;

// The components of this process, by ProgID; case is ignored. Registration may happen on any
// thread; a component is made on the thread that asks for it.
void RegisterComponent(std::string_view prog_id, ComponentFactory factory);
void UnregisterComponent(std::string_view prog_id);

// Asked for every ProgID that is not registered in the process: on Windows the machine's own
// registration. Returns Nothing for a ProgID it does not know. Returns the former creator.
using ComponentCreator = std::function<Ref<Object>(std::string_view prog_id)>;
ComponentCreator SetForeignComponentCreator(ComponentCreator creator);

// A new object of the class `prog_id`. Error 429 when there is no such class.
Ref<Object> CreateObject(std::string_view prog_id);

// Makes every server component of the library. A component is made for one call or one operation
// and released behind it.
class Gateway {
 public:
  virtual ~Gateway() = default;
  // Error 429 for an unknown ProgID; what else the component's creation raises passes through. The
  // second argument is for gateways that know options; the library gives none.
  virtual Ref<Object> CreateInstance(std::string_view ProgID, const Variant& Options = Missing);
};

// The gateway of this apartment, made on first use and kept to its end.
Gateway& ServerGateway();
// Puts another gateway in its place in this apartment, or takes it away again (null). Returns the
// former one, null for the library's own. The caller keeps ownership.
Gateway* SetServerGateway(Gateway* gateway);

}  // namespace qdclgl
