// What the server refuses, each with a number of its own. The sentence that goes with a number says
// which record and why; docs/server.md tells an administrator what to do about it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "qdclgl/frame/vocabulary/errors.h"

// Code above 0x80044200, name, meaning.
#define QDCLGL_REFUSALS(REFUSAL)                                                                \
  REFUSAL(0x00, NotLoggedIn, "There is no session behind the connection text.")                 \
  REFUSAL(0x01, LoginRefused, "The user or the password is wrong, or the user is disabled.")    \
  REFUSAL(0x02, NotPermitted, "The user's roles do not allow this.")                            \
  REFUSAL(0x03, BadConnectionText, "The connection text can't be understood.")                  \
  REFUSAL(0x04, NoBooks, "There are no books where the connection text says.")                  \
  REFUSAL(0x05, BooksExist, "There are books already.")                                         \
  REFUSAL(0x06, WrongSchema, "The books are of another version than this program.")             \
  REFUSAL(0x07, DatabaseFailed, "The database reported a failure.")                             \
  REFUSAL(0x08, DatabaseBusy, "Others kept the database busy for too long; try again.")         \
  REFUSAL(0x09, ConnectionLost, "The connection to the database is lost; try again.")           \
  REFUSAL(0x0A, BadBatch, "A batch is under way already, or there is none to end.")             \
  REFUSAL(0x0B, BatchFailed, "The database has failed in the batch; roll it back.")             \
  REFUSAL(0x0C, OutcomeUnknown, "Whether the change is saved can't be told now.")               \
  REFUSAL(0x0D, ReadOnly, "The books can only be read here.")                                   \
  REFUSAL(0x0E, LoginDelayed, "Logins have failed; the next one has to wait.")                  \
  REFUSAL(0x0F, Damaged, "The file of the books is damaged.")                                   \
  REFUSAL(0x10, BadFilter, "The filter text can't be understood.")                              \
  REFUSAL(0x11, BadSort, "The sort text can't be understood.")                                  \
  REFUSAL(0x12, BadValue, "A value does not fit its column.")                                   \
  REFUSAL(0x13, NotFound, "There is no such record.")                                           \
  REFUSAL(0x14, Changed, "Somebody else has saved the record in the meantime.")                 \
  REFUSAL(0x15, NoVersion, "The row does not say which version of the record it changes.")      \
  REFUSAL(0x16, NumberTaken, "Another record has that number.")                                 \
  REFUSAL(0x17, NameTaken, "Another record has that name.")                                     \
  REFUSAL(0x18, Required, "A value that the record needs is missing.")                          \
  REFUSAL(0x19, InUse, "Other records need this one.")                                          \
  REFUSAL(0x1A, BadReference, "What a row refers to must exist and be in use.")                 \
  REFUSAL(0x20, NoLines, "A voucher has lines.")                                                \
  REFUSAL(0x21, NotBalanced, "Debits and credits of a voucher are equal in base currency.")     \
  REFUSAL(0x22, BadAccount, "A line's account must exist, be in use and have no sub-accounts.") \
  REFUSAL(0x23, BadCurrency, "A line's currency must exist and be in use.")                     \
  REFUSAL(0x24, BadSide, "A line is a debit (1) or a credit (0).")                              \
  REFUSAL(0x25, BadGroup, "A voucher's group must exist and be in use.")                        \
  REFUSAL(0x26, PeriodClosed, "The period is closed.")                                          \
  REFUSAL(0x27, WrongPeriod, "Year and period do not belong to the voucher's date.")            \
  REFUSAL(0x28, VoucherChecked, "The voucher is checked.")                                      \
  REFUSAL(0x29, VoucherPosted, "The voucher is posted.")                                        \
  REFUSAL(0x2A, VoucherDeleted, "The voucher is deleted.")                                      \
  REFUSAL(0x2B, WrongStep, "The voucher is not in the state that the step needs.")              \
  REFUSAL(0x2C, OwnVoucher, "Who had a hand in a voucher does not take this step.")             \
  REFUSAL(0x2D, TooLarge, "Amounts, totals or data are beyond what the books hold.")            \
  REFUSAL(0x2E, VoucherCashed, "The voucher is cashed.")                                        \
  REFUSAL(0x2F, BadItem, "A line names an item of each class that its account asks for.")       \
  REFUSAL(0x30, NoParent, "The record above is missing.")                                       \
  REFUSAL(0x31, ParentInUse, "Vouchers use the record above itself.")                           \
  REFUSAL(0x32, HasChildren, "There are records below this one.")                               \
  REFUSAL(0x33, BadNumber, "The number can't stand as the number of such a record.")            \
  REFUSAL(0x40, UnknownCategory, "There is no such category of settings.")                      \
  REFUSAL(0x41, SettingFixed, "The setting can't be changed this way.")                         \
  REFUSAL(0x42, BadSetting, "The setting can't have that value.")                               \
  REFUSAL(0x50, NotAllPosted, "The period has vouchers that are not posted.")                   \
  REFUSAL(0x51, LaterPostings, "Vouchers are posted in the period or behind it.")               \
  REFUSAL(0x52, FirstPeriod, "The books begin with this period.")                               \
  REFUSAL(0x60, NotAtRate, "A line's amount is its foreign amount at its rate.")                \
  REFUSAL(0x61, NegativeAmount, "The books take no negative amounts.")

namespace qdclgl::server {

struct RefusalRow {
  std::int32_t number;
  std::string_view name;
  std::string_view meaning;
};

namespace refusal {
#define QDCLGL_REFUSAL_NUMBER(code, name, meaning) \
  inline constexpr std::int32_t k##name = error_number::Own(0x200 + (code));
QDCLGL_REFUSALS(QDCLGL_REFUSAL_NUMBER)
#undef QDCLGL_REFUSAL_NUMBER
}  // namespace refusal

#define QDCLGL_REFUSAL_ROW(code, name, meaning) RefusalRow{refusal::k##name, #name, meaning},
inline constexpr auto kRefusals = std::to_array<RefusalRow>({QDCLGL_REFUSALS(QDCLGL_REFUSAL_ROW)});
#undef QDCLGL_REFUSAL_ROW

// The source of every error that the server raises itself.
inline constexpr std::string_view kErrorSource = "QDSVGL";

// Raises one of the refusals; `sentence` names the record and the reason.
[[noreturn]] inline void Refuse(std::int32_t number, std::string sentence) {
  throw Error(number, std::string(kErrorSource), std::move(sentence));
}

}  // namespace qdclgl::server
