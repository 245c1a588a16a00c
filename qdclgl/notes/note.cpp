#include "qdclgl/notes/note.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/platform/platform.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(Note)
QD_DEFINE_MEMBERS(NoteSet)

namespace {

constexpr RowKey kCreateDate("FCreateDate");
constexpr RowKey kData("FData");
constexpr RowKey kModifyDate("FModifyDate");

// Whether format data are none. Asked of the value itself: data have no text form to go by.
bool IsNoData(const Variant& value) {
  switch (value.Type()) {
    case VariantType::kEmpty:
    case VariantType::kNull: return true;
    case VariantType::kString: return value.TextView().empty();
    case VariantType::kByteArray: return value.BytesView().empty();
    default: return false;
  }
}

}  // namespace

// ---- Note ----

const EntityProtocol& Note::Protocol() const {
  static constexpr EntityProtocol kProtocol = {
      .info_component = "QDSVGLNote.NoteInfo",
      .update_component = "QDSVGLNote.NoteUpdate",
      .id_key = "FNoteID",
  };
  return kProtocol;
}

DateTime Note::DateOrNow(const RowKey& key) const {
  const Ref self(this);
  return Bag().GetValue(key, Variant(CurrentPlatform().Now())).As<DateTime>();
}

DateTime Note::CreateDate() const { return DateOrNow(kCreateDate); }

void Note::CreateDate(DateTime value) { Bag().SetValue(kCreateDate, Variant(value)); }

DateTime Note::ModifyDate() const { return DateOrNow(kModifyDate); }

void Note::ModifyDate(DateTime value) { Bag().SetValue(kModifyDate, Variant(value)); }

Variant Note::Data() const {
  const Variant* stored = Bag().Find(kData);
  return stored == nullptr || IsNoData(*stored) ? Variant("") : *stored;
}

void Note::Data(Variant value) { Bag().SetValue(kData, std::move(value)); }

Long Note::NoteID() const { return m_ID; }

// ---- NoteSet ----

const SetProtocol& NoteSet::Protocol() const {
  static constexpr SetProtocol kProtocol = {
      .info_component = "QDSVGLNote.NoteInfo",
      .update_component = "QDSVGLNote.NoteUpdate",
      .text_key_method = "GetDetailByName",
  };
  return kProtocol;
}

Ref<Note> NoteSet::CreateNew(Variant Name) {
  Ref<Note> note = MakeEntity(Nothing);
  if (!Name.IsMissing()) note->Name(CStr(Name));
  return note;
}

Long NoteSet::ExistenceCheck(Variant NoteID, Variant Name) {
  return CheckExistence({ByRef(NoteID), Named("Name", ByRef(Name))});
}

void NoteSet::Remove(Variant Key) {
  const CallingOut out(this);
  DeleteRow(IdOf(Key, [&] { return ExistenceCheck(Missing, Key); }));
}

Ref<Note> NoteSet::Item(Variant Key) const { return EntitySet::Item(std::move(Key)); }

Ref<Recordset> NoteSet::RecordSet() const { return List(); }

void NoteSet::RecordSet(Ref<Recordset> value) { EntitySet::RecordSet(std::move(value)); }

}  // namespace qdclgl
