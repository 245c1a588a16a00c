// Lines of a journal voucher: an account, a side, an amount, and everything that hangs on the line.
// No server call is made here.
#pragma once

#include "qdclgl/vouchers/voucher_detail.h"

namespace qdclgl {

class VoucherEntry final : public LineView {
  QD_MEMBERS(VoucherEntry, LineView, Internal, "A line of a journal voucher.")

 public:
  QD_METHOD(Ref<VoucherEntry>, Clone, (), "A detached deep copy of the line, unmodified.")
  QD_METHOD(Boolean, IsEmpty, (),
            "True when the line has no account, currency, amount, explanation and details. Asking "
            "for the details may mark the line modified, as Details does.")
  QD_FIELD(GetLet, Long, AccountID2, "FAccountID2", "Id of the second account.", Clear(0))
  QD_FIELD(GetLet, Long, AccountID, "FAccountID", "Id of the account.", Clear(0))
  QD_FIELD(GetLet, String, AccountName, "FAccountName", "Name of the account.", Clear(""))
  QD_FIELD(GetLet, String, AccountNumber, "FAccountNumber", "Number of the account.", Clear(""))
  QD_FIELD(GetLet, Currency, AmountFor, "FAmountFor", "The amount in the line's currency.")
  QD_PROPERTY(GetLet, Currency, Amount,
              "The amount in base currency, on the side that DC tells. A write stores the side "
              "too, and raises error 380 on a line whose side is neither 0 nor 1. Key FAmount.")
  QD_PROPERTY(GetLetVariant, Ref<Object>, CashFlow,
              "An object that travels with the line; Nothing removes it. A write takes a Variant "
              "that holds the object, error 13 for any other. Key CashFlow.")
  QD_FIELD(GetLet, Long, CashFlowItem, "FCashFlowItem", "Id of the cash flow item.", Clear(0))
  QD_FIELD(Get, Double, Coefficient, "FCoefficient", "Coefficient of the unit.")
  QD_FIELD(GetLet, Long, ContrastID, "FContrastID", "Carried for the server.")
  QD_PROPERTY(GetLet, Currency, Credit,
              "The amount of a credit line, 0 on any other. A write makes the line a credit line "
              "of that amount; writing 0 beside a debit does nothing.")
  QD_FIELD(GetLet, Long, CurrencyID, "FCurrencyID", "Id of the currency; 1 is the base currency.",
           Clear(0))
  QD_FIELD(GetLet, String, CurrencyName, "FCurrencyName", "Name of the currency.", Clear(""))
  QD_FIELD(GetLet, String, CurrencyNumber, "FCurrencyNumber", "Number of the currency.", Clear(""))
  QD_FIELD(GetLet, String, CussentDatabaseLocation, "FCussentDatabaseLocation",
           "Carried for the server.")
  QD_FIELD(GetLet, Long, CussentFrameworkID, "FCussentFrameworkID", "Carried for the server.")
  QD_FIELD(GetLet, String, CussentFrameWorkName, "FCussentFrameWorkName", "Carried for the server.")
  QD_PROPERTY(GetLet, String, CussentFrameWorkNum,
              "A read copies what is stored to CussentFrameWorkName and gives empty text. Key "
              "FCussentFrameWorkNum.")
  QD_FIELD(GetLet, Long, CussentID, "FCussentID", "Carried for the server.")
  QD_FIELD(GetLet, String, CussentPassword, "FCussentPassword", "Carried for the server.")
  QD_FIELD(GetLet, String, CussentPropsstring, "CussentPropsstring", "Carried for the server.")
  QD_FIELD(GetLet, String, CussentUserName, "FCussentUserName", "Carried for the server.")
  QD_PROPERTY(GetLet, Long, DC,
              "The side: 1 debit, 0 credit. Error 380 for any other value. Key FDC.")
  QD_PROPERTY(GetLet, Currency, Debit,
              "The amount of a debit line, 0 on any other. A write makes the line a debit line of "
              "that amount; writing 0 beside a credit does nothing.")
  QD_FIELD(Get, Long, DetailID, "FDetailID", "Id of the line's set of details.")
  QD_PROPERTY(Get, Ref<VoucherDetailSet>, Details,
              "The auxiliary details. The first read on a line without any makes their list and so "
              "marks the line modified. Key _Details.")
  QD_FIELD(GetLet, Double, ExchangeRate, "FExchangeRate", "Rate of the line's currency.", Clear(0))
  QD_FIELD(GetLet, String, Explanation, "FExplanation", "What the line is for.", Clear(""))
  QD_FIELD(GetLet, String, InternalInd, "FInternalInd", "Carried for the server.", Clear(""))
  QD_FIELD(GetLet, Boolean, IsReadOnly, "FIsReadOnly", "Stored only; no member looks at it.")
  QD_FIELD(GetLet, Boolean, LockAmount, "LockAmount",
           "Stored only; the amount members do not look at it.")
  QD_PROPERTY(GetLet, String, MeasureUnit,
              "Name of the unit; empty text while MeasureUnitID is 0. Key FMeasureUnit.")
  QD_FIELD(GetLet, Long, MeasureUnitID, "FMeasureUnitID", "Id of the unit.", Clear(0))
  QD_PROPERTY(GetLet, String, MeasureUnitNumber,
              "Number of the unit; empty text while MeasureUnitID is 0. Key FMeasureUnitNumber.")
  QD_PROPERTY(GetSet, Ref<Dictionary>, MGBill,
              "A bill that travels with the line; Nothing removes it. Error 13 when a line without "
              "one is read. Key FMgBill.")
  QD_FIELD(GetLet, Long, MGBillID, "FMgBillID", "Id of the bill.", Clear(0))
  QD_FIELD(GetLet, Currency, MGBillMoney, "FMgBillMoney", "Amount of the bill.", Clear(0))
  QD_FIELD(GetLet, Long, MGDetailID, "FMgDetailID", "Id of the bill's detail.", Clear(0))
  QD_INHERITED(Modified)
  QD_INHERITED(Properties)
  QD_FIELD(GetLet, Double, Quantity, "FQuantity", "The quantity.")
  QD_FIELD(GetLet, Long, ResourceID, "FResourceID", "Carried for the server.", Clear(0))
  QD_FIELD(GetLet, String, SettleNo, "FSettleNo", "Number of the settlement document.", Clear(""))
  QD_FIELD(GetLet, String, SettleType, "FSettleType", "Number of the settlement type.", Clear(""))
  QD_FIELD(GetLet, Long, SettleTypeID, "FSettleTypeID", "Id of the settlement type.", Clear(0))
  QD_FIELD(GetLet, String, SettleTypeName, "FSettleTypeName", "Name of the settlement type.",
           Clear(""))
  QD_FIELD(GetLet, Long, TaskID, "FTaskID", "Carried for the server.", Clear(0))
  QD_FIELD(GetLet, String, TransNo, "FTransNo", "Number of the business transaction.", Clear(""))
  QD_FIELD(GetLet, Long, UnitGroupID, "FUnitGroupID", "Id of the unit's group.", Clear(0))
  QD_FIELD(GetLet, Double, UnitPrice, "FUnitPrice", "The price of one unit.")

  // What a line with that row has on the debit side and on the credit side: for sums over many
  // lines, which need no view of each.
  static Currency DebitOf(const Dictionary& row);
  static Currency CreditOf(const Dictionary& row);

 private:
  String UnitText(const RowKey& key) const;
};

class VoucherEntrySet final : public LineList<VoucherEntry> {
  QD_MEMBERS(VoucherEntrySet, LineList<VoucherEntry>, Internal, "The lines of one document.")

 public:
  QD_INHERITED(Add)
  QD_METHOD(Ref<VoucherEntry>, CreateNewEntry, (),
            "A new line that belongs to no document; put it in by Item.")
  QD_INHERITED(NewEnum)
  QD_INHERITED(Remove)
  QD_INHERITED(Count)
  QD_INDEXED(GetSet, Ref<VoucherEntry>, Item, (Long index),
             "The line at a position from 1, Nothing behind the last one; error 9 below 1. A line "
             "put in takes the place of the one at that position and shares its data with the "
             "document from then on.",
             DefaultMember)
  QD_INHERITED(Modified)
};

using WalkVoucherEntry = VectorWalker<VoucherEntry>;

}  // namespace qdclgl
