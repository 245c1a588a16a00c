// The columns of a multi-column ledger: for each an account and a side. No server call is made
// here.
#pragma once

#include "qdclgl/ledgers/column_list.h"

namespace qdclgl {

class MultiColumn final : public LineView {
  QD_MEMBERS(MultiColumn, LineView, Internal, "A column of a multi-column ledger.")

 public:
  QD_FIELD(GetLet, Long, AccountID, "FAccountID",
           "Id of the column's account; a write leaves its number as it is. Error 13 for a read "
           "while there is none.",
           NoDefault)
  QD_FIELD(Get, String, AccountNumber, "FAccountNumber",
           "Number of the column's account, as the server filled it in.")
  QD_FIELD(GetLet, Long, ColumnID, "FColumnID",
           "The column's number in its ledger. Error 13 for a read while there is none.", NoDefault)
  QD_FIELD(GetLet, String, ColumnName, "FColumnName", "The column's heading.")
  QD_FIELD(GetLet, Long, DC, "FDC",
           "The side that the column counts: 1 debit, 0 credit; any number is taken. Error 13 for "
           "a read while there is none.",
           NoDefault)
  QD_PROPERTY(Get, String, DCText,
              "The side as a word: 借 for DC 1, 贷 for any other. Error 13 while there is no DC.")
  QD_INHERITED(Modified)
  QD_INHERITED(Properties)
};

class MultiColumnSet final : public ColumnList<MultiColumn> {
  QD_MEMBERS(MultiColumnSet, ColumnList<MultiColumn>, Creatable,
             "The columns of one multi-column ledger.")

 public:
  QD_INHERITED(Add)
  QD_INHERITED(NewEnum)
  QD_INHERITED(Remove)
  QD_METHOD(void, SortByAccountNumber, (),
            "Sorts the columns by the numbers of their accounts, compared as texts. The change "
            "flags stay at their positions.")
  QD_METHOD(void, SortByDC, (),
            "Brings the debit columns before the credit columns; those of one side may change "
            "their order. The change flags stay at their positions.")
  QD_INHERITED(Count)
  QD_INHERITED(Item)
  QD_INHERITED(Modified)

 private:
  Variant Cell(Long index, const RowKey& key) const;
  void Exchange(Long index, Long other) const;
};

using WalkMultiColumnSet = VectorWalker<MultiColumn>;

}  // namespace qdclgl
