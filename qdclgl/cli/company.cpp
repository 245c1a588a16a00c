#include "qdclgl/cli/company.h"

#include "qdclgl/settings/system_profile.h"

namespace qdclgl::cli {

Company CompanyOfBooks() {
  const auto profile = Make<SystemProfile>();
  return {profile->CompanyName(), profile->CompanyAddress()};
}

}  // namespace qdclgl::cli
