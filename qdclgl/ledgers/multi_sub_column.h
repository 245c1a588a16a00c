// The sub-columns of a multi-column ledger: for each a currency. No server call is made here.
#pragma once

#include "qdclgl/ledgers/column_list.h"

namespace qdclgl {

class MultiSubColumn final : public LineView {
  QD_MEMBERS(MultiSubColumn, LineView, Internal, "A sub-column of a multi-column ledger.")

 public:
  QD_FIELD(GetLet, Long, CurrencyID, "FCurrencyID",
           "Id of the sub-column's currency; a write leaves its number and rate as they are. Error "
           "13 for a read while there is none.",
           NoDefault)
  QD_FIELD(Get, String, CurrencyNumber, "FCurrencyNumber",
           "Number of the currency, as the server filled it in.")
  QD_FIELD(Get, Double, ExchangeRate, "FExchangeRate",
           "The currency's rate, as the server filled it in. Error 13 while there is none.",
           NoDefault)
  QD_INHERITED(Modified)
  QD_INHERITED(Properties)
  QD_FIELD(GetLet, Long, SerialNo, "FSerialNo",
           "The sub-column's number in its ledger; nothing else renumbers it. Error 13 for a read "
           "while there is none.",
           NoDefault)
  QD_FIELD(GetLet, String, SubColumnName, "FSubColumnName", "The sub-column's heading.")
};

class MultiSubColumnSet final : public ColumnList<MultiSubColumn> {
  QD_MEMBERS(MultiSubColumnSet, ColumnList<MultiSubColumn>, Creatable,
             "The sub-columns of one multi-column ledger.")

 public:
  QD_INHERITED(Add)
  QD_INHERITED(NewEnum)
  QD_INHERITED(Remove)
  QD_INHERITED(Count)
  QD_INHERITED(Item)
  QD_INHERITED(Modified)
};

using WalkMultiSubColumnSet = VectorWalker<MultiSubColumn>;

}  // namespace qdclgl
