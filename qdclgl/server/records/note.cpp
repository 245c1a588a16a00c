// Notes: print forms, whose data are kept beside them.
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/note_data.h"
#include "qdclgl/server/records/record_save.h"

namespace qdclgl::server {

namespace {

constexpr std::string_view kData = "FData";

class NoteInfo final : public RecordInfo {
  QD_BASE_MEMBERS(RecordInfo)

 public:
  using RecordInfo::RecordInfo;

  QD_METHOD(Ref<Dictionary>, GetDetail, (std::string_view PropsString, const Long& RecordID),
            "{A record} with its data (FData), Nothing when there is none.")
  QD_METHOD(Ref<Dictionary>, GetDetailByName,
            (std::string_view PropsString, std::string_view RecordKey), "The same by its {key}.")
  QD_INHERITED(GetList)
  QD_INHERITED(ExistenceCheck)

 private:
  Ref<Dictionary> Read(Database& db, Long id) const;
};

Ref<Dictionary> NoteInfo::Read(Database& db, Long id) const {
  Ref<Dictionary> record = kind().Read(db, id);
  if (!record) return record;
  const NoteData data{record->Value("FDataKind").As<String>(), ReadNoteContent(db, id)};
  if (!data.kind.empty()) record->Put(kData, data.ToValue());
  record->SetTrackState(0);
  return record;
}

Ref<Dictionary> NoteInfo::GetDetail(std::string_view PropsString, const Long& RecordID) {
  const Caller caller = Enter(PropsString, kind().reading());
  const Transaction view(caller.db, Transaction::Kind::kRead);
  return Read(caller.db, RecordID);
}

Ref<Dictionary> NoteInfo::GetDetailByName(std::string_view PropsString,
                                          std::string_view RecordKey) {
  const Caller caller = Enter(PropsString, kind().reading());
  const Transaction view(caller.db, Transaction::Kind::kRead);
  return Read(caller.db, kind().IdWithKey(caller.db, RecordKey));
}

// What a row says of the data; null where it says nothing, and they stay as they are: rows of lists
// are without them.
const Variant* SentData(const RecordSave& save) { return save.sent().Find(kData); }

NoteData DataOf(const RecordSave& save, const Variant& sent) {
  try {
    return NoteData::From(sent);
  } catch (const Error& error) {
    save.Refuse(error.number(), error.description());
  }
}

void Check(RecordSave& save) {
  CheckKey(save);
  const Variant now(CurrentPlatform().Now());
  const Variant user(save.session().user_name);
  Dictionary& record = save.record();
  if (save.is_new()) {
    record.Put("FCreatorName", user);
    record.Put("FCreateDate", now);
  }
  record.Put("FModifierName", user);
  record.Put("FModifyDate", now);
  if (const Variant* sent = SentData(save)) {
    const NoteData data = DataOf(save, *sent);
    record.Put("FDataKind", data.kind);
    record.Put("FDataSize", static_cast<Long>(data.content.size()));
    record.Put("FDataHash", data.Hash());
  }
}

void Follow(RecordSave& save) {
  const Variant* sent = SentData(save);
  if (sent == nullptr) return;
  RemoveNoteContent(save.db(), save.id());
  WriteNoteContent(save.db(), save.id(), NoteData::From(*sent).content);
}

void Remove(RecordRemoval& removal) {
  RemoveNoteContent(removal.db(), removal.id());
  removal.Remove();
}

}  // namespace

const MasterData& Notes() {
  using enum ColumnType;
  using enum Keeper;
  static const MasterData kKind({
      .component = "QDSVGLNote.Note",
      .noun = "note",
      .nouns = "notes",
      .list = {"notes", "Lists the notes, which print forms are made of",
               "FNoteID FName FType FDataSize FModifierName FModifyDate"},
      .table = "t_Note",
      .id = "FNoteID",
      .key = {"FName"},
      .columns = {{{"FName", kText}},
                  {{"FType", kText}},
                  {{"FCreatorName", kText}, kServer},
                  {{"FCreateDate", kDate}, kServer},
                  {{"FModifierName", kText}, kServer},
                  {{"FModifyDate", kDate}, kServer},
                  {{"FDataKind", kText}, kServer},
                  {{"FDataSize", kLong}, kServer},
                  {{"FDataHash", kText}, kServer}},
      .keys = {kData},
      .tables = {NoteDataTable()},
      .check = Check,
      .follow = Follow,
      .remove = Remove,
      .info = RecordClassOf<NoteInfo>(),
      .errors = "Required, NameTaken, BadValue, TooLarge",
      .helps =
          {{"GetList",
            "The notes without their data; bit 1 of ListOptions has no meaning. {page} BadFilter, "
            "BadSort, BadValue."},
           {"Create",
            "Saves a new note with its data (FData), a Variant of any kind; who made and "
            "changed it and when is the server's to keep. Its id and version come back in the "
            "row too. Errors: {errors}."},
           {"Update",
            "Saves a note; data that the row doesn't have stay as they are. The new version "
            "comes back in the row. Errors: NotFound, NoVersion, Changed, and those of "
            "Create."}},
  });
  return kKind;
}

}  // namespace qdclgl::server
