// Voucher templates: stored skeletons of vouchers, a header with lines.
//
// Server components: QDSVGLVoucherTemp.VoucherTempInfo reads, .VoucherTempUpdate writes.
#pragma once

#include "qdclgl/frame/entities/entity_set.h"
#include "qdclgl/vouchers/voucher.h"

namespace qdclgl {

class VoucherTemp final : public VoucherDocument {
  QD_MEMBERS(VoucherTemp, VoucherDocument, Creatable, "A voucher template.")

 public:
  QD_INHERITED(CancelChanges)
  QD_METHOD(Ref<VoucherTemp>, Clone, (),
            "A copy of the working data with a copy of the baseline, unmodified and without a "
            "transaction context. The copy of a saved template saves over the same one.")
  QD_METHOD(void, Construct, (const Ref<Dictionary>& dict, const Ref<Object>& xa),
            "Makes the template of a row, or an empty one of Nothing; it keeps a copy of the row. "
            "One that can't be copied leaves the template as it was. No server call.")
  QD_INHERITED(Refresh)
  QD_INHERITED(ResetModified)
  QD_INHERITED_AS(SaveChanges,
                  "Saves a template that is modified, in a line or a detail too, and reads it "
                  "again. Calls Create or Update, then GetDetail.")
  QD_INHERITED(Attachments)
  QD_INHERITED(DictOrig)
  QD_INHERITED(Entries)
  QD_INHERITED(GroupID)
  QD_INHERITED(Modified)
  QD_FIELD(GetLet, String, Name, "FName", "The template's name.")
  QD_INHERITED(Properties)
  QD_INHERITED(Reference)
  QD_FIELD(GetLet, String, SaveFlag, "FSaveFlag", "Carried for the server.", Default("0"))
  QD_FIELD(GetLet, Long, TypeID, "FTypeID", "Carried for the server.")
  QD_FIELD(GetLet, Long, VoucherID, "FVoucherID", "Id of a voucher; carried for the server.")
  QD_PROPERTY(Get, Long, VoucherTempID, "The id of the template; 0 while it is not saved.")

 protected:
  const EntityProtocol& Protocol() const override;
  void TakeRow(Ref<Dictionary> row) override { Construct(row, m_Xa); }
  // The server gets the data alone.
  void StampMachine() override {}
};

// The list of templates. It stands half way between templates and vouchers: CreateNew and a walk
// make vouchers.
class VoucherTempSet final : public EntitySet<VoucherTemp> {
  QD_MEMBERS(VoucherTempSet, EntitySet<VoucherTemp>, Creatable, "The list of voucher templates.")

 public:
  QD_INHERITED_AS(ListOptions, "Carried along; no call sends it.")
  QD_INHERITED(Filter)
  QD_INHERITED(Sort)
  QD_METHOD(Ref<VoucherTemp>, CreateNew,
            (Variant Period = Missing, Variant Group = Missing, Variant Number = Missing),
            "Prepares a new voucher with what is given and always ends in error 13, since a "
            "voucher is no template. A new template is a VoucherTemp that is constructed of "
            "Nothing.")
  QD_METHOD(Long, ExistenceCheck,
            (Variant VoucherID = Missing, Variant Period = Missing, Variant Group = Missing,
             Variant Number = Missing),
            "The id of the template with that id, or with that period, group and number when all "
            "three are given; 0 when there is none. Calls ExistenceCheck.")
  QD_INHERITED(GetCurrent)
  QD_INHERITED(GetNext)
  QD_METHOD(Ref<Enumerator>, NewEnum, (), "A voucher of each row; the set's cursor stays.")
  QD_INHERITED(Refresh)
  QD_METHOD(void, Remove,
            (Variant Key = Missing, Variant Period = Missing, Variant Group = Missing,
             Variant Number = Missing),
            "Deletes the template of an id, or, without a key, of a period, group and number; the "
            "list keeps showing it until Refresh. Error 5 when there is none and for a text key. "
            "Calls Delete.")
  QD_INHERITED(Count)
  QD_INDEXED(Get, Ref<VoucherTemp>, Item,
             (Variant Key = Missing, Long Period = {}, String Group = {}, Long Number = {}),
             "The template of an id (a number), read by GetDetail; with any other key or none that "
             "of the period, group and number, read by GetDetailByNumber. An empty one when the "
             "server knows no such template.")
  QD_INHERITED(RecordSet)

  EnumeratorRange<Voucher>::Iterator begin() {
    return EnumeratorRange<Voucher>::Iterator(NewEnum());
  }

 protected:
  const SetProtocol& Protocol() const override;
  // GetList(PropsString, Filter, Sort), the two by reference.
  Ref<Recordset> FetchList(Object& info, Query& query) const override;
};

}  // namespace qdclgl
