// What a voucher and its template share: one tree of a header with lines, saved as a whole when
// the flag of the tree tells of a change.
#pragma once

#include "qdclgl/frame/containers/deep_copy.h"
#include "qdclgl/frame/entities/entity.h"
#include "qdclgl/vouchers/voucher_entry.h"

namespace qdclgl {

class VoucherDocument : public Entity {
  QD_BASE_MEMBERS(Entity)

 public:
  QD_INHERITED(CancelChanges)
  QD_INHERITED(Construct)
  QD_INHERITED_AS(Refresh,
                  "Reads the object again; does nothing for one that is not saved. All views taken "
                  "earlier stay with the old data. Calls GetDetail.")
  QD_METHOD(void, ResetModified, (),
            "Clears the change flags of the object and of everything below it; the data stays.")
  QD_INHERITED(SaveChanges)
  QD_FIELD(GetLet, Long, Attachments, "FAttachments", "The number of attached papers.")
  QD_PROPERTY(Get, Ref<Dictionary>, DictOrig,
              "The baseline that CancelChanges goes back to, Nothing for a new object.")
  QD_PROPERTY(Get, Ref<VoucherEntrySet>, Entries,
              "The lines. Reading them marks nothing modified. Key _Entries.")
  QD_FIELD(GetLet, Long, GroupID, "FGroupID", "Id of the voucher group.")
  QD_PROPERTY(Get, Boolean, Modified, "Whether the object, a line or a detail was written.")
  QD_INHERITED(Properties)
  QD_FIELD(GetLet, String, Reference, "FReference", "The reference text.")

 protected:
  bool HasChanges() const override { return Modified(); }
  // A row that was read again makes the object anew.
  void TakeRow(Ref<Dictionary> row) override { Construct(row, m_Xa); }

  // A copy of the working data with a copy of the baseline, unmodified and without a context.
  template <class Document>
  Ref<Document> CloneAs() {
    const CallingOut out(this);
    auto clone = Make<Document>();
    clone->Construct(CloneDictionary(Bag().Dictionary()), Nothing);
    clone->m_DictOrig = CloneDictionary(m_DictOrig);
    return clone;
  }

  // The list of lines, made on first use.
  Ref<Vector> Lines() const;
};

}  // namespace qdclgl
