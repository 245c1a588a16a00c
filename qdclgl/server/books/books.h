// The books as a whole: making them, upgrading them, and checking that everything in them agrees.
#pragma once

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/objects/members.h"
#include "qdclgl/server/access/component.h"

namespace qdclgl::server {

class BooksUpdate final : public Object {
  QD_MEMBERS(BooksUpdate, Object, Creatable, "Makes and upgrades books.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLBooks.BooksUpdate";

  QD_METHOD(
      void, Create,
      (std::string_view ConnectionText, std::string_view CurrencyNumber, Long nYear = {},
       Long PeriodCount = 12, Long StartMonth = 1, std::string_view UserName = "administrator",
       std::string_view Password = "", Boolean NoPassword = false,
       std::string_view ProgramRole = ""),
      "Makes empty books with a base currency (id 1) and an administrator; a SQLite file is "
      "made, a PostgreSQL database must be there. They begin with the first period of the "
      "year, this year for 0. A count of periods that does not divide 12 is counted in "
      "weeks. An empty password only with NoPassword. ProgramRole is the PostgreSQL role that "
      "programs will log in with, when it is not the one that makes the books and so owns "
      "the tables. Errors: BooksExist, BadSetting, BadNumber, Required, BadValue.")
  QD_METHOD(
      Long, Upgrade, (std::string_view ConnectionText),
      "Brings books of an older version to this program's version, all or nothing, and "
      "returns the version they had. WrongSchema for books of a newer one, DatabaseBusy beside a "
      "batch of the same thread. On PostgreSQL the owner of the tables does it.")
  QD_METHOD(
      Ref<Dictionary>, Restore,
      (std::string_view BackupText, std::string_view ConnectionText,
       std::string_view ProgramRole = ""),
      "Makes new books that are those of a backup, all or nothing, and tells which: FVersion, "
      "FVouchers (how many), FVoucher and FDate of the last one, FHead of the audit trail. "
      "ProgramRole as in Create. Errors: NoBooks, BooksExist, WrongSchema, Damaged when they do "
      "not pass the check.")
};

class BooksInfo final : public Object {
  QD_MEMBERS(BooksInfo, Object, Creatable, "Looks at the books as a whole.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLBooks.BooksInfo";
  static constexpr MethodRight kRights[] = {{"Check", {Role::kReader, "check the books"}},
                                            {"BackUp", {Role::kAdministrator, "back up the books"}},
                                            {"CopyTo", {Role::kAdministrator, "copy the books"}}};

  QD_METHOD(Long, Version, (std::string_view ConnectionText),
            "The version of the books' schema, 0 when there are none in the database.")
  QD_METHOD(Ref<Recordset>, Check, (std::string_view PropsString, std::string_view KeptHead = ""),
            "Tests every rule that the books must keep, and lists what breaks one: FRule, "
            "FSubject, FRecordID, FRecord, FProblem. No row: all is well. With KeptHead, which "
            "GetHead of AuditInfo gave some time, the audit trail must lead to it too.")
  QD_METHOD(Ref<Dictionary>, BackUp, (std::string_view PropsString, std::string_view BackupText),
            "Makes new books, a SQLite file say, that are these books as they are at one moment, "
            "passwords included, and tells which they are as Restore does; others "
            "work on meanwhile. All or nothing: the copy has passed the check. BooksExist, "
            "Damaged.")
  QD_METHOD(Ref<Dictionary>, CopyTo,
            (std::string_view PropsString, std::string_view ConnectionText,
             std::string_view ProgramRole = ""),
            "The same in steps: a copy that was broken off goes on with the next call, and is no "
            "books before it is whole. Tells besides FWentOn, whether there was such a copy, and "
            "FBeganAnew, whether it no longer went with the books and was thrown away. "
            "ProgramRole as in Create of BooksUpdate.")
};

}  // namespace qdclgl::server
