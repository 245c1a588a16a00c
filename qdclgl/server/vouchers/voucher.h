// Vouchers: reading them as one tree of header, lines and details, saving them under the rules of
// the books, and the steps of their workflow.
#pragma once

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/server/access/component.h"
#include "qdclgl/server/db/list.h"

namespace qdclgl::server {

class VoucherInfo final : public Object {
  QD_MEMBERS(VoucherInfo, Object, Creatable, "Reads vouchers.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLVoucher.VoucherInfo";
  static constexpr Right kRead{Role::kReader, "read vouchers"};
  static constexpr MethodRight kRights[] = {{"GetDetail", kRead},
                                            {"GetDetailByNumber", kRead},
                                            {"GetList", {Role::kReader, "list vouchers"}},
                                            {"GetJournal", kRead},
                                            {"ExistenceCheck", kRead},
                                            {"CheckExistCashProfit", kRead}};
  static constexpr NamedList kList{"vouchers", "Lists the vouchers",
                                   "FVoucherID FDate FGroup FNumber FReference FExplanation "
                                   "FDebitTotal FChecked FApprover FCashier FPosted"};

  QD_METHOD(Ref<Dictionary>, GetDetail,
            (std::string_view PropsString, Long VoucherID, Boolean ShowDeleted = {}),
            "The voucher with its lines (_Entries) and their details (_Details). Nothing when "
            "there is none, or only a deleted one and ShowDeleted is False.")
  QD_METHOD(Ref<Dictionary>, GetDetailByNumber,
            (std::string_view PropsString, Long nYear, Long Period, const Variant& Group,
             Long Number, Boolean ShowDeleted = {}),
            "The same by year, period, group (its name or id) and number.")
  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, Long& ListOptions, String& Filter, String& Sort,
             const Variant& Page = Missing),
            "The headers of the vouchers that meet the filter, by date and number unless Sort says "
            "otherwise; with bit 1 of ListOptions the deleted ones too. " QDCLGL_PAGE_HELP
            " BadFilter, BadSort, BadValue.")
  QD_METHOD(Ref<Vector>, GetJournal,
            (std::string_view PropsString, DateTime DateFrom, Long AfterID, DateTime DateTo,
             Long Count),
            "At most Count vouchers as GetDetail gives them, in the order of date and id: those "
            "behind the one with DateFrom and AfterID (0: from that day on) up to DateTo (day 0: "
            "all), without deleted ones. Its cost goes with the vouchers that it gives.")
  QD_METHOD(Long, ExistenceCheck,
            (std::string_view PropsString, const Variant& VoucherID = Missing,
             const Variant& nYear = Missing, const Variant& Period = Missing,
             const Variant& Group = Missing, const Variant& Number = Missing),
            "The id of the voucher with that id, or with that year (the current one when left "
            "out), period, group (name or id) and number; 0 when there is none or it is deleted.")
  QD_METHOD(Long, CheckExistCashProfit, (std::string_view PropsString, const Long& VoucherID),
            "1 when lines of the stored voucher have a cash flow item, otherwise 0. Never 3, the "
            "answer that makes a client clear them before a save: here a save replaces them with "
            "the lines, so a refused save loses none.")
};

class VoucherUpdate final : public Object {
  QD_MEMBERS(VoucherUpdate, Object, Creatable,
             "Saves vouchers and takes them through their workflow.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLVoucher.VoucherUpdate";
  static constexpr Right kSave{Role::kPreparer, "save vouchers"};
  static constexpr Right kPost{Role::kPoster, "post vouchers"};
  static constexpr MethodRight kRights[] = {{"Create", kSave},
                                            {"Update", kSave},
                                            {"Delete", {Role::kPreparer, "delete vouchers"}},
                                            {"Check", {Role::kChecker, "check vouchers"}},
                                            {"Approve", {Role::kChecker, "approve vouchers"}},
                                            {"Cash", {Role::kCashier, "cash vouchers"}},
                                            {"Post", kPost},
                                            {"UnPost", kPost},
                                            {"ClearCashFlow", kSave}};

  QD_METHOD(
      Long, Create,
      (std::string_view PropsString, const Ref<Dictionary>& Voucher, const Variant& Kind = Missing),
      "Saves a new voucher and returns its id; id, version, number, year and period are "
      "written into the row as well. Number 0: the next one of year, period and group; one that "
      "is given is at most 999999999. Year "
      "and period 0: those of the date. Kind 2 marks an automatic save in the audit trail. "
      "Errors: all the rules of the books.")
  QD_METHOD(void, Update,
            (std::string_view PropsString, const Long& VoucherID, const Ref<Dictionary>& Voucher),
            "Saves a changed voucher, its lines and details in place of the former ones; the new "
            "version is written into the row. \"<>1\" before the connection text marks an "
            "automatic save. Errors: Changed, NoVersion, VoucherChecked, VoucherCashed, "
            "VoucherPosted and all the rules of the books.")
  QD_METHOD(void, Delete,
            (std::string_view PropsString, const Long& VoucherID, Boolean Purge = {},
             std::string_view MachineName = "", std::string_view IPAddress = ""),
            "Marks a voucher as deleted; its number stays taken. With Purge its rows are removed. "
            "VoucherChecked, VoucherCashed, VoucherPosted, PeriodClosed.")
  QD_METHOD(void, Check,
            (std::string_view PropsString, const Long& VoucherID, const Boolean& Checked),
            "Checks a voucher or takes the check back. WrongStep when it is in that state already "
            "or approved; OwnVoucher when setting CheckerNotPreparer is on and the caller made the "
            "voucher or changed a part of it.")
  QD_METHOD(
      void, Approve, (std::string_view PropsString, const Long& VoucherID, const Boolean& Approved),
      "Approves a checked voucher or takes the approval back. WrongStep; OwnVoucher by setting "
      "ApproverNotPreparer.")
  QD_METHOD(
      void, Cash,
      (std::string_view PropsString, const Long& VoucherID, const Boolean& Cashed,
       const Variant& Voucher = Missing),
      "Marks a voucher as cashed by the caller or takes that back. Of a row that comes along "
      "only the version counts: Changed when it is an old one. WrongStep; OwnVoucher by setting "
      "CashierNotPreparer.")
  QD_METHOD(void, Post, (std::string_view PropsString, const Long& VoucherID),
            "Posts a voucher into the balances of its period. WrongStep when it is posted already, "
            "or not checked and setting CheckBeforePost is on; OwnVoucher by setting "
            "PosterNotPreparer; PeriodClosed; TooLarge when what is posted would not add up any "
            "more.")
  QD_METHOD(void, UnPost, (std::string_view PropsString, const Long& VoucherID),
            "Takes a posted voucher out of the balances again. WrongStep, PeriodClosed.")
  QD_METHOD(
      void, ClearCashFlow, (std::string_view PropsString, const Long& VoucherID),
      "Takes the cash flow items off the voucher's lines; the voucher has a new version then. "
      "VoucherChecked, VoucherCashed, VoucherPosted, PeriodClosed.")
};

}  // namespace qdclgl::server
