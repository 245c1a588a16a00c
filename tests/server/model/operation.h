// Pieces of work as plain data: drawn at random, done by books and model alike, and left out one by
// one to find what a failure needs.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "tests/server/model/model.h"

namespace qdclgl::server::testing::model {

enum class Kind {
  kCreate,
  kUpdate,
  kDelete,
  kCheck,
  kApprove,
  kCash,
  kPost,
  kClearCashFlow,
  kClose,
  kReopen,
  kSet,
  kAddAccount,
  kMarkAccount,
  kRemoveAccount,
  kAddCurrency,
  kChangeOperator,
  kRemoveCurrency,
};

struct Operation {
  Kind kind;
  std::size_t user = 0;
  std::size_t voucher = 0;  // counted round the vouchers that there are
  bool way = false;         // there or back, for good or marked, on or off, divided or not
  bool is_stale = false;    // an update of a version before
  std::string name = {};    // of an account, a currency or a setting
  // Of a voucher: the period counts from where the books stand; lines at a rate get their amount
  // when they are saved, and a last line takes what the others leave.
  Content content = {};
};

// The people who work.
std::vector<User> Users();

Operation DrawOperation(std::mt19937& random);
std::string_view NameOf(Kind kind);
std::string TextOf(const Operation& operation);

// What the operation saves in books at this state.
Content ContentOf(const Operation& operation, const Model& model);

}  // namespace qdclgl::server::testing::model
