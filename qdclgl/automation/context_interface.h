// ISetXactContext as C++ clients call it.
#pragma once

#include "qdclgl/automation/com.h"

namespace qdclgl::automation {

class ContextInterface : public IUnknown {
 public:
  // Keeps `xa` in place of the former context; null is accepted.
  virtual HRESULT STDMETHODCALLTYPE SetTransactionContext(IDispatch* xa) = 0;
};

}  // namespace qdclgl::automation
