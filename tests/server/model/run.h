// Work done beside the model, and what is found where they part.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/server/books_fixture.h"
#include "tests/server/model/operation.h"

namespace qdclgl::server::testing::model {

// Does the work in new books and in the model. Where an answer differs, or every few steps and at
// the end the state, the difference as text; nothing when all agrees. `answers` counts them, as
// "Create NotBalanced" and "Post none".
std::optional<std::string> Run(DatabaseKind database, const std::vector<Operation>& work,
                               std::map<std::string, int>* answers = nullptr);

// The shortest work that still fails: operations are left out, then lines of their vouchers, as
// long as it fails without them.
std::vector<Operation> Shrunk(std::vector<Operation> work,
                              const std::function<bool(const std::vector<Operation>&)>& fails);

}  // namespace qdclgl::server::testing::model
