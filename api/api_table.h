// The printed list of every public member, docs/api.tsv: the record of the public surface, and what
// a change of it is reviewed by.
#pragma once

#include <string>

namespace qdclgl {

// Tab-separated lines under a header, a line for each way of using a member (method, get, let, set).
std::string ApiTable();

}  // namespace qdclgl
