#include "qdclgl/cli/kept_account.h"

#include "qdclgl/accounts/account_set.h"
#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/console.h"
#include "qdclgl/frame/vocabulary/strings.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/settings/system_profile.h"

namespace qdclgl::cli {

namespace {

const String kCategory(strings::categories::GL);

}  // namespace

Ref<Account> NamedOrKeptAccount(const std::string& number, const char* setting,
                                const std::string& wanting) {
  const auto accounts = Make<AccountSet>();
  if (number.empty()) {
    const String kept = Make<SystemProfile>()->Item(kCategory, setting);
    if (kept.empty() || kept == "0") throw UsageError(wanting);
    return accounts->Item(CLng(Variant(kept)));
  }
  const Long id = accounts->ExistenceCheck(Missing, ToUpper(number));
  if (id == 0) {
    throw Error(server::refusal::kNotFound, "qdclgl",
                "There is no account " + Quoted(number) + ".");
  }
  return accounts->Item(id);
}

void KeepAccount(const Account& account, const char* setting) {
  const auto profile = Make<SystemProfile>();
  const std::string id = std::to_string(account.AccountID());
  if (profile->Item(kCategory, setting) == id) return;
  try {
    profile->Item(kCategory, setting, id);
  } catch (const Error& error) {
    if (error.number() != server::refusal::kNotPermitted) throw;
  }
}

}  // namespace qdclgl::cli
