// The journal voucher: a header with lines and their details, held as one tree, opened from the
// server, edited, saved, and taken through check, approval and cash and back.
//
// Server components: QDSVGLVoucher.VoucherInfo reads, .VoucherUpdate writes.
#pragma once

#include "qdclgl/vouchers/voucher_document.h"

namespace qdclgl {

class Voucher final : public VoucherDocument {
  QD_MEMBERS(Voucher, VoucherDocument, Creatable, "A journal voucher.")

 public:
  QD_PROPERTY(Let, Long, ShowDeleted,
              "Whether Refresh asks for the voucher even when it is deleted; any value but 0 is "
              "true.")
  QD_METHOD(void, Approve, (),
            "Approves a checked voucher that is not posted, then reads it again; otherwise does "
            "nothing. Unsaved edits are lost. Calls Approve.")
  QD_INHERITED(CancelChanges)
  QD_METHOD(void, Cash, (),
            "Marks a saved voucher as cashed, sending its working data, then reads it again. Calls "
            "Cash.")
  QD_METHOD(void, Check, (),
            "Checks a saved voucher that is neither checked nor posted, then reads it again; "
            "otherwise does nothing. Unsaved edits are lost. Calls Check.")
  QD_METHOD(Ref<Voucher>, Clone, (),
            "A copy of the working data with the same baseline, unmodified and without a "
            "transaction context.")
  QD_INHERITED(Construct)
  QD_METHOD(void, ConstructEx, (Ref<Dictionary> dict, const Ref<Object>& xa), "As Construct.")
  QD_INHERITED(Refresh)
  QD_METHOD(void, Refresh1, (),
            "Takes the working data as saved: it becomes the baseline and nothing is modified. No "
            "server call.")
  QD_INHERITED(ResetModified)
  QD_METHOD(void, SaveChanges, (),
            "Saves a modified voucher. An empty foot note is saved as one blank. A new voucher is "
            "read again. Calls CheckExistCashProfit, ClearCashFlow, Update, or Create and "
            "GetDetail.")
  QD_METHOD(void, SaveChanges2, (),
            "As SaveChanges, with the server told by a marker before the connection text of Update "
            "and by the kind 2 behind Create.")
  QD_METHOD(void, SaveChanges1, (),
            "Saves a modified voucher as it stands; it is not read again and stays modified.")
  QD_METHOD(void, UnApprove, (),
            "Takes an approval back, then reads the voucher again; does nothing unless it is "
            "checked, approved and not posted. Calls Approve.")
  QD_METHOD(void, UnCash, (),
            "Takes the cashing of a saved voucher back, sending its working data, then reads it "
            "again. Calls Cash.")
  QD_METHOD(void, UnCheck, (),
            "Takes the check of a voucher back that is not posted, then reads it again; otherwise "
            "does nothing. Calls Check.")
  QD_METHOD(Boolean, ValueChanged, (),
            "Compares the voucher with its own copy; see ValueDifferent.")
  QD_METHOD(Boolean, ValueDifferent, (const Ref<Voucher>& vch),
            "Reads both vouchers field by field up to the first difference. Always true; reading "
            "the details of a line may mark its voucher modified.")
  QD_PROPERTY(GetLet, Long, AmortizeSchemeID,
              "Reads the key FIsAmortize and writes the key FAmortizeSchemeID.")
  QD_FIELD(Get, Integer, ApproveID, "FApproveID", "Who approved the voucher, -1 nobody.",
           Default(-1))
  QD_PROPERTY(Get, String, Approver,
              "Name of who approved; empty text while CheckerID is -1. Key FApprover.")
  QD_INHERITED(Attachments)
  QD_PROPERTY(GetLet, Ref<Dictionary>, BillInfo,
              "A bill that travels with the voucher, Nothing when there is none. Key BillInfo.")
  QD_PROPERTY(GetLet, Boolean, BlankOutFlag,
              "True exactly when the number 1 is stored. Key FBlankOutFlag.")
  QD_PROPERTY(Get, String, Cashier,
              "Name of who cashed; empty text while CashierID is -1. Key FCashier.")
  QD_FIELD(Get, Integer, CashierID, "FCashierID", "Who cashed the voucher, -1 nobody.", Default(-1))
  QD_FIELD(Get, Boolean, Checked, "FChecked", "Whether the voucher is checked.")
  QD_PROPERTY(Get, String, Checker,
              "Name of who checked; empty text while CheckerID is -1. Key FChecker.")
  QD_FIELD(Get, Integer, CheckerID, "FCheckerID", "Who checked the voucher, -1 nobody.",
           Default(-1))
  QD_FIELD(Get, Currency, CreditTotal2, "FCreditTotal", "The credit total as the server stored it.")
  QD_PROPERTY(Get, Currency, CreditTotal,
              "The sum of the lines' credits, now. Error 6 beyond the range of Currency.")
  QD_FIELD(Get, Currency, DebitTotal2, "FDebitTotal", "The debit total as the server stored it.")
  QD_PROPERTY(Get, Currency, DebitTotal,
              "The sum of the lines' debits, now. Error 6 beyond the range of Currency.")
  QD_INHERITED(DictOrig)
  QD_FIELD(GetLet, String, EditMode, "EditMode", "A text that travels to the server.", Default("2"))
  QD_INHERITED(Entries)
  QD_PROPERTY(GetLet, String, Explanation,
              "Reads the first explanation that a line has; a write stores the key FExplanation, "
              "which no read looks at.")
  QD_FIELD(GetLet, String, FootNote, "FFootNote", "The foot note.")
  QD_FIELD(GetLet, String, Group, "FGroup", "The word of the voucher's group.")
  QD_INHERITED(GroupID)
  QD_FIELD(GetLet, String, Handler, "FHandler", "Who handled the business.")
  QD_PROPERTY(Get, Boolean, HasForCyOrUnit,
              "Whether a line has a currency other than 1 or a unit. Error 6 behind the 32,767th "
              "line.")
  QD_FIELD(GetLet, String, InternalInd, "FInternalInd", "Carried for the server.")
  QD_FIELD(GetLet, Boolean, LockDate, "FLockDate", "Carried for the server.")
  QD_INHERITED(Modified)
  QD_FIELD(GetLet, Long, Number, "FNumber", "The number within year, period and group.")
  QD_PROPERTY(GetLet, String, ObjectName,
              "Carried for the server; empty text is stored as Null. Key FObjectName.")
  QD_FIELD(Get, Integer, OwnerGroupID, "FOwnerGroupID", "The group of the owner, -1 none.",
           Default(-1))
  QD_PROPERTY(GetLet, String, Parameter,
              "Carried for the server; empty text is stored as Null. Key FParameter.")
  QD_FIELD(GetLet, Long, Period, "FPeriod", "The accounting period.")
  QD_FIELD(Get, Boolean, Posted, "FPosted", "Whether the voucher is posted.")
  QD_PROPERTY(Get, String, Poster,
              "Name of who posted; empty text while PosterID is -1. Key FPoster.")
  QD_FIELD(Get, Integer, PosterID, "FPosterID", "Who posted the voucher, -1 nobody.", Default(-1))
  QD_FIELD(GetLet, String, Preparer, "FPreparer", "Name of who prepared the voucher.")
  QD_FIELD(GetLet, Integer, PreparerID, "FPreparerID", "Who prepared the voucher, -1 nobody.",
           Default(-1))
  QD_INHERITED(Properties)
  QD_INHERITED(Reference)
  QD_FIELD(GetLet, Long, SerialNum, "FSerialNum", "The serial number.")
  QD_FIELD(Get, Boolean, Summarized, "FSummarized", "Whether the voucher is summarized.")
  QD_PROPERTY(GetLet, DateTime, TransDate, "The date of the business. Key FTransDate.")
  QD_FIELD(GetLet, Long, TranType, "FTranType", "The kind of business.")
  QD_FIELD(GetLet, DateTime, VoucherDate, "FDate", "The date of the voucher.")
  QD_PROPERTY(GetLet, Long, VoucherID,
              "The id of the voucher, 0 while it is not saved. A write changes no key and sets no "
              "flag.")
  QD_FIELD(GetLet, Long, Year, "FYear", "The accounting year.")

 protected:
  const EntityProtocol& Protocol() const override;
  // GetDetail(PropsString, VoucherID by reference, ShowDeleted by reference).
  Ref<Dictionary> FetchRow(Object& info) override;

 private:
  struct SaveRule;

  void Save(const SaveRule& rule);
  void SaveExisting(Object& update, const SaveRule& rule);
  void SaveNew(Object& update, const SaveRule& rule);
  // One call that changes the voucher's state on the server, and the reading back.
  void ChangeState(const char* method, Boolean state);
  void ChangeCash(Boolean state);
  bool CanChangeState() const { return !Posted() && m_ID != 0; }

  // The name under a key, empty while `person` is nobody.
  String NameOf(const RowKey& name, Integer (Voucher::*person)() const) const;
  void StoreTextOrNull(const RowKey& key, const String& text);
  // The sum over all lines of what stands on one side.
  Currency Total(Currency (*side)(const Dictionary& row)) const;

  void VisitDifferences(Voucher& other);

  Boolean m_ShowDeleted = false;
};

}  // namespace qdclgl
