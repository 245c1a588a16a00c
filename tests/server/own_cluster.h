// Tests beside a database server of another kind than the suite has: encrypted, doubled, pooled.
#pragma once

#include <string>

namespace qdclgl::server::testing {

// Runs those tests of this program that `filter` names beside a cluster that
// `scripts/with-postgresql OPTION` makes, and expects that there are so many and that all pass.
void ExpectToPassBeside(const std::string& option, const std::string& filter, int count);

}  // namespace qdclgl::server::testing
