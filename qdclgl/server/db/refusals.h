// What the server refuses, each with a number of its own, and what to do about it. The sentence
// that goes with a number says which record and why.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "qdclgl/frame/vocabulary/errors.h"

// Code above 0x80044200, name, meaning, what to do.
#define QDCLGL_REFUSALS(REFUSAL)                                                                   \
  REFUSAL(0x00, NotLoggedIn, "There is no session behind the connection text.",                    \
          "Log in, and hand on the text that the login gives. A session ends with its process, "   \
          "at the logout, for want of use, and when its user is disabled, removed or renamed.")    \
  REFUSAL(0x01, LoginRefused, "The user or the password is wrong, or the user is disabled.",       \
          "Try name and password again; case counts in both. An administrator can set another "    \
          "password or enable the user.")                                                          \
  REFUSAL(0x02, NotPermitted, "The user's roles do not allow this.",                               \
          "The sentence names user and roles. Have an administrator give the role.")               \
  REFUSAL(0x03, BadConnectionText, "The connection text can't be understood.",                     \
          "The sentence names the key. The keys are told in server.md.")                           \
  REFUSAL(0x04, NoBooks, "There are no books where the connection text says.",                     \
          "Look at file, database and schema; make books where there are to be some.")             \
  REFUSAL(0x05, BooksExist, "There are books already.",                                            \
          "Log in to them, or choose another file or schema. Nothing was touched.")                \
  REFUSAL(0x06, WrongSchema, "The books are of another version than this program.",                \
          "Older books: back them up and upgrade them. Newer ones: use the program that upgraded " \
          "them.")                                                                                 \
  REFUSAL(0x07, DatabaseFailed, "The database reported a failure.",                                \
          "The sentence holds the database's own words: look at disk space, rights and the "       \
          "database's log. Nothing was saved.")                                                    \
  REFUSAL(0x08, DatabaseBusy, "Others kept the database busy for too long; try again.",            \
          "Try again. When it comes often, look for a batch or another program that keeps its "    \
          "transaction open; on PostgreSQL the sentence names it.")                                \
  REFUSAL(0x09, ConnectionLost, "The connection to the database is lost; try again.",              \
          "Try again; the next call connects anew. A batch that was under way is undone. When it " \
          "stays, see whether server, database and user are there.")                               \
  REFUSAL(0x0A, BadBatch, "A batch is under way already, or there is none to end.",                \
          "End the batch that is under way, or begin one.")                                        \
  REFUSAL(0x0B, BatchFailed, "The database has failed in the batch; roll it back.",                \
          "Nothing of the batch is saved. Roll it back, and do it again from its beginning once "  \
          "the database works.")                                                                   \
  REFUSAL(0x0C, OutcomeUnknown, "Whether the change is saved can't be told now.",                  \
          "The database failed while a change was being made final. When it works again, look "    \
          "whether the change is there, and repeat it only if it is not.")                         \
  REFUSAL(0x0D, ReadOnly, "The books can only be read here.",                                      \
          "Get the right to write to the file and its folder.")                                    \
  REFUSAL(0x0E, LoginDelayed, "Logins have failed; the next one has to wait.",                     \
          "Wait as long as the sentence says, or have an administrator set the password.")         \
  REFUSAL(0x0F, Damaged, "The file of the books is damaged.",                                      \
          "Keep the file as it is, and go on with the last backup. What SQLite can still read of " \
          "it, `sqlite3 books.db .recover` writes down.")                                          \
  REFUSAL(0x10, BadFilter, "The filter text can't be understood.",                                 \
          "The sentence tells the character and what is wrong there.")                             \
  REFUSAL(0x11, BadSort, "The sort text can't be understood.",                                     \
          "The sentence tells the character and what is wrong there.")                             \
  REFUSAL(0x12, BadValue, "A value does not fit its column.",                                      \
          "The sentence names the column. Texts hold no zero bytes and are UTF-8; keys that no "   \
          "column has are refused too.")                                                           \
  REFUSAL(0x13, NotFound, "There is no such record.",                                              \
          "Read the list again: the record was deleted in the meantime, or never there.")          \
  REFUSAL(                                                                                         \
      0x14, Changed, "Somebody else has saved the record in the meantime.",                        \
      "Read the record again, look at what the others changed, and make the change once more.")    \
  REFUSAL(0x15, NoVersion, "The row does not say which version of the record it changes.",         \
          "Change a row that was read from the server; its key FVersion belongs to it.")           \
  REFUSAL(0x16, NumberTaken, "Another record has that number.",                                    \
          "Choose another number, or leave the number of a voucher at 0. A deleted record keeps "  \
          "its number.")                                                                           \
  REFUSAL(0x17, NameTaken, "Another record has that name.",                                        \
          "Choose another name. A deleted record keeps its name.")                                 \
  REFUSAL(0x18, Required, "A value that the record needs is missing.",                             \
          "The sentence says what is missing.")                                                    \
  REFUSAL(0x19, InUse, "Other records need this one.",                                             \
          "Mark the record deleted instead, or remove first what uses it. Make another "           \
          "administrator before the last one goes.")                                               \
  REFUSAL(0x1A, BadReference, "What a row refers to must exist and be in use.",                    \
          "The sentence tells what there is none of. Choose one of its list, or enter the new "    \
          "one first.")                                                                            \
  REFUSAL(0x20, NoLines, "A voucher has lines.", "Add the lines, or delete the voucher.")          \
  REFUSAL(0x21, NotBalanced, "Debits and credits of a voucher are equal in base currency.",        \
          "The sentence tells both totals and the difference.")                                    \
  REFUSAL(0x22, BadAccount, "A line's account must exist, be in use and have no sub-accounts.",    \
          "The sentence names line and account. Choose a detail account that is in use.")          \
  REFUSAL(0x23, BadCurrency, "A line's currency must exist and be in use.",                        \
          "Choose a currency of the list, or enter the new one first.")                            \
  REFUSAL(0x24, BadSide, "A line is a debit (1) or a credit (0).", "The sentence names the line.") \
  REFUSAL(0x25, BadGroup, "A voucher's group must exist and be in use.",                           \
          "Choose a group of the list.")                                                           \
  REFUSAL(0x26, PeriodClosed, "The period is closed.",                                             \
          "Date the voucher in an open period, or have the period reopened.")                      \
  REFUSAL(0x27, WrongPeriod, "Year and period do not belong to the voucher's date.",               \
          "Leave year and period at 0, or give those of the date; the sentence tells them.")       \
  REFUSAL(0x28, VoucherChecked, "The voucher is checked.", "Have the check taken back first.")     \
  REFUSAL(0x29, VoucherPosted, "The voucher is posted.",                                           \
          "Have it unposted first, or correct it by another voucher.")                             \
  REFUSAL(0x2A, VoucherDeleted, "The voucher is deleted.",                                         \
          "Make a new voucher; a deleted one only remains to be looked at.")                       \
  REFUSAL(                                                                                         \
      0x2B, WrongStep, "The voucher is not in the state that the step needs.",                     \
      "The sentence tells the state. Read the voucher again; the steps are told in server.md.")    \
  REFUSAL(0x2C, OwnVoucher, "Who had a hand in a voucher does not take this step.",                \
          "Have somebody else take it, or switch off the step's setting (CheckerNotPreparer and "  \
          "the like).")                                                                            \
  REFUSAL(0x2D, TooLarge, "Amounts, totals or data are beyond what the books hold.",               \
          "Look for a slip in the amount or the quantity that the sentence names; the data of a "  \
          "note have at most 16 MB, and item classes of one's own end with the id 1999. A "        \
          "posting may be refused for what others have posted: unpost what is wrong.")             \
  REFUSAL(0x2E, VoucherCashed, "The voucher is cashed.", "Have the cashing taken back first.")     \
  REFUSAL(0x2F, BadItem, "A line names an item of each class that its account asks for.",          \
          "The sentence names line, account, class and item. Give the line an item of the class "  \
          "that is in use and has none below it, or take the detail off that the account does "    \
          "not ask for.")                                                                          \
  REFUSAL(0x30, NoParent, "The record above is missing.",                                          \
          "Make the account or item above first, or take its deletion mark off.")                  \
  REFUSAL(0x31, ParentInUse, "Vouchers use the record above itself.",                              \
          "Put the new account or item elsewhere. An account gets sub-accounts before its first "  \
          "voucher.")                                                                              \
  REFUSAL(0x32, HasChildren, "There are records below this one.",                                  \
          "Deal with the accounts or items below it first.")                                       \
  REFUSAL(0x33, BadNumber, "The number can't stand as the number of such a record.",               \
          "The sentence tells what such a number may be.")                                         \
  REFUSAL(0x40, UnknownCategory, "There is no such category of settings.",                         \
          "The fifteen categories are in settings.md; case counts.")                               \
  REFUSAL(0x41, SettingFixed, "The setting can't be changed this way.",                            \
          "Close or reopen a period to change where the books stand. A calendar is chosen before " \
          "the first voucher.")                                                                    \
  REFUSAL(0x42, BadSetting, "The setting can't have that value.",                                  \
          "The sentence tells what the setting may be.")                                           \
  REFUSAL(0x50, NotAllPosted, "The period has vouchers that are not posted.",                      \
          "Post or delete the vouchers that the sentence counts, then close.")                     \
  REFUSAL(0x51, LaterPostings, "Vouchers are posted in the period or behind it.",                  \
          "Unpost them first, or have an administrator reopen with ReopenTo.")                     \
  REFUSAL(0x52, FirstPeriod, "The books begin with this period.",                                  \
          "There is nothing before it to reopen.")                                                 \
  REFUSAL(0x60, NotAtRate, "A line's amount is its foreign amount at its rate.",                   \
          "The sentence tells the three numbers. Look for the slip, give the rate that was paid, " \
          "or leave the rate at 0.")                                                               \
  REFUSAL(0x61, NegativeAmount, "The books take no negative amounts.",                             \
          "Write the amount on the other side, or switch off setting NoNegativeAmounts.")

namespace qdclgl::server {

struct RefusalRow {
  std::int32_t number;
  std::string_view name;
  std::string_view meaning;
  std::string_view advice;
};

namespace refusal {
#define QDCLGL_REFUSAL_NUMBER(code, name, meaning, advice) \
  inline constexpr std::int32_t k##name = error_number::Own(0x200 + (code));
QDCLGL_REFUSALS(QDCLGL_REFUSAL_NUMBER)
#undef QDCLGL_REFUSAL_NUMBER
}  // namespace refusal

#define QDCLGL_REFUSAL_ROW(code, name, meaning, advice) \
  RefusalRow{refusal::k##name, #name, meaning, advice},
inline constexpr auto kRefusals = std::to_array<RefusalRow>({QDCLGL_REFUSALS(QDCLGL_REFUSAL_ROW)});
#undef QDCLGL_REFUSAL_ROW

// The source of every error that the server raises itself.
inline constexpr std::string_view kErrorSource = "QDSVGL";

// Raises one of the refusals; `sentence` names the record and the reason.
[[noreturn]] inline void Refuse(std::int32_t number, std::string sentence) {
  throw Error(number, std::string(kErrorSource), std::move(sentence));
}

}  // namespace qdclgl::server
