// Notes: print forms for pre-printed paper, each a named, typed block of format data that is not
// looked into here. The help texts of a note's members are those of its interface.
//
// Server components: QDSVGLNote.NoteInfo reads, .NoteUpdate writes.
#pragma once

#include "qdclgl/frame/entities/entity.h"
#include "qdclgl/frame/entities/entity_set.h"

namespace qdclgl {

class Note final : public Entity {
  QD_MEMBERS(Note, Entity, Creatable, "套打项")

 public:
  QD_INHERITED_AS(CancelChanges, "取消上次保存以来所做的全部修改")
  QD_INHERITED_AS(Construct, "根据字典的内容构造对象")
  QD_INHERITED_AS(Refresh, "刷新对象")
  QD_INHERITED_AS(SaveChanges, "保存对此对象的修改")
  QD_PROPERTY(GetLet, DateTime, CreateDate, "创建日期")
  QD_FIELD(GetLet, String, CreatorName, "FCreatorName", "创建者姓名")
  QD_PROPERTY(GetLet, Variant, Data, "套打项对应的格式数据")
  QD_FIELD(GetLet, String, ModifierName, "FModifierName", "修改者姓名")
  QD_PROPERTY(GetLet, DateTime, ModifyDate, "最近一次修改日期")
  QD_FIELD(GetLet, String, Name, "FName", "套打项名称", DefaultMember)
  QD_PROPERTY(Get, Long, NoteID, "套打项ID")
  QD_FIELD(GetLet, String, NoteType, "FType", "单据类型")
  QD_INHERITED_AS(Properties, "属性集合")

 protected:
  const EntityProtocol& Protocol() const override;
  // The server gets the data alone.
  void StampMachine() override {}

 private:
  // What stands under a key; the day and the time of the call where there is none.
  DateTime DateOrNow(const RowKey& key) const;
};

class NoteSet final : public EntitySet<Note> {
  QD_MEMBERS(NoteSet, EntitySet<Note>, Creatable, "套打项集合")

 public:
  QD_INHERITED(ListOptions)
  QD_INHERITED(Filter)
  QD_INHERITED(Sort)
  QD_METHOD(Ref<Note>, CreateNew, (Variant Name = Missing),
            "A new note, with that name when one is given; it is not saved.")
  QD_METHOD(Long, ExistenceCheck, (Variant NoteID = Missing, Variant Name = Missing),
            "The id of the note with that id or name, 0 when there is none or neither is given; "
            "the id goes first. Calls ExistenceCheck.")
  QD_INHERITED(GetCurrent)
  QD_INHERITED(GetNext)
  QD_INHERITED(NewEnum)
  QD_INHERITED(Refresh)
  QD_METHOD(void, Remove, (Variant Key),
            "Deletes the note of an id (a number) or a name (a text); the list keeps showing it "
            "until Refresh. Error 5 when there is none and for any other key. Calls Delete.")
  QD_INHERITED(Count)
  QD_INDEXED(Get, Ref<Note>, Item, (Variant Key),
             "The note of an id (a number) or of a name (a text), read from the server; an empty "
             "one when the server knows no such note. Error 5 for any other key. Calls GetDetail "
             "or GetDetailByName.")
  QD_PROPERTY(GetSet, Ref<Recordset>, RecordSet,
              "The list, fetched on first use; a recordset put here takes its place.")

 protected:
  const SetProtocol& Protocol() const override;
};

using WalkNoteSet = EntityWalker<Note>;

}  // namespace qdclgl
