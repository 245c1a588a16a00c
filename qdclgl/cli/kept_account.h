// An account that a command books on: named by an option, and kept as a setting for the next time.
#pragma once

#include <string>

#include "qdclgl/accounts/account.h"

namespace qdclgl::cli {

// The account of that number or, where there is none, the one that the setting of category GL
// keeps. UsageError with `wanting` where there is neither; NotFound.
Ref<Account> NamedOrKeptAccount(const std::string& number, const char* setting,
                                const std::string& wanting);
// Keeps it for the next time. That is for administrators; who isn't one names it again.
void KeepAccount(const Account& account, const char* setting);

}  // namespace qdclgl::cli
