// Item classes: kinds of auxiliary items, each with the descriptions of the fields that its items
// have. The descriptions travel inside the class, which is the only way in which they are saved.
//
// Server components: QDSVGLItemClass.ItemClassInfo reads, .ItemClassUpdate writes.
#pragma once

#include "qdclgl/frame/entities/entity.h"
#include "qdclgl/frame/entities/entity_set.h"
#include "qdclgl/masterdata/custom_property.h"

namespace qdclgl {

class ItemClass final : public Entity {
  QD_MEMBERS(ItemClass, Entity, Creatable, "A kind of auxiliary items.")

 public:
  QD_METHOD(void, CancelChanges, (),
            "Constructs the object anew from the row as it last came: descriptions handed out "
            "before belong to it no more. No server call.")
  QD_INHERITED(Construct)
  QD_METHOD(Ref<Recordset>, GetF7ShownFields, (),
            "The fields that the list shows which items are chosen from. Calls GetShownF7Fields.")
  QD_METHOD(void, Refresh, (),
            "Reads the class again and constructs the object of it, its id included: descriptions "
            "handed out before belong to it no more. Does nothing for a class that is not saved. "
            "Calls GetDetail.")
  QD_METHOD(Long, SaveChanges, (),
            "Writes a changed class to the server and reads it again; does nothing without a "
            "change. 0, or -1 when the server answers a new class with it: the id is then -1, and "
            "nothing is read. Calls Create or Update, then GetDetail.")
  QD_PROPERTY(Get, Ref<CustomPropertySet>, CustomProperties,
              "The descriptions of the items' fields, one set until the object is constructed "
              "again. The first read on a class without any makes their list and so marks the "
              "class modified. Key _PropDesc.")
  QD_FIELD(GetLet, Integer, DType, "FType", "The kind of the class.", Default(1))
  QD_FIELD(Get, Long, Import, "FImport", "Set by the server.")
  QD_PROPERTY(Get, Boolean, IsCustom,
              "Whether the class is one of a user's own: an id from 1000 to 1999 or from 3000 to "
              "9999.")
  QD_PROPERTY(GetLet, Long, ItemClassID,
              "The id of the class, 0 while it is not saved. A write changes no key and sets no "
              "flag.")
  QD_PROPERTY(Get, Boolean, Modified, "Whether the class or a description was written.")
  QD_FIELD(Get, String, Name_Chs, "FName", "The name in simplified Chinese.")
  QD_FIELD(GetLet, String, Name_Cht, "FName_Cht", "The name in traditional Chinese.")
  QD_FIELD(GetLet, String, Name_en, "FName_en", "The name in English.")
  QD_PROPERTY(GetLet, String, Name,
              "The name in the session's language; a write goes to the key FName.")
  QD_PROPERTY(GetLet, String, Number, "The class's number, stored in upper case. Key FNumber.")
  QD_INHERITED(Properties)
  QD_FIELD(GetLet, String, Remark, "FRemark", "A remark.")

 protected:
  const EntityProtocol& Protocol() const override;
  bool HasChanges() const override { return Modified(); }

 private:
  // The list of descriptions, each with the name that the server knows as the one to be edited.
  Ref<Vector> Descriptions() const;

  // The descriptions as a set, and the row that they are of: another row has another set.
  mutable Ref<CustomPropertySet> m_CustomProperties;
  mutable Ref<Dictionary> m_DescribedRow;
};

class ItemClassSet final : public EntitySet<ItemClass> {
  QD_MEMBERS(ItemClassSet, EntitySet<ItemClass>, Creatable, "The list of item classes.")

 public:
  QD_INHERITED(ListOptions)
  QD_INHERITED(Filter)
  QD_INHERITED(Sort)
  QD_METHOD(Ref<ItemClass>, CreateNew, (Variant Number = Missing, Variant Name = Missing),
            "A new item class, with that number (in upper case) and name where given; it is not "
            "saved.")
  QD_METHOD(Long, ExistenceCheck, (Variant ItemClassID = Missing, Variant Number = Missing),
            "The id of the item class with that id or number, 0 when there is none or neither is "
            "given; the id goes first. Calls ExistenceCheck.")
  QD_INHERITED(GetCurrent)
  QD_INHERITED(GetNext)
  QD_INHERITED(NewEnum)
  QD_METHOD(void, Refresh, (Long lngSign = 0),
            "Drops the list and fetches it again, with a sign for the server. Calls GetList.")
  QD_METHOD(void, Remove, (Variant Key),
            "Deletes the item class of an id (a number) or a number (a text); the list keeps "
            "showing it until Refresh. Error 5 when there is none. Calls Delete.")
  QD_INHERITED(Count)
  QD_INDEXED(Get, Ref<ItemClass>, Item,
             (Variant Key, String sFilter = {}, Boolean bBatchUpdate = false),
             "The item class of an id (a number), with a filter and a mark for the server, or of a "
             "number (a text), without them, read from the server; an empty one when the server "
             "knows no such class. Error 5 for any other key. Calls GetDetail or "
             "GetDetailByNumber.",
             DefaultMember)
  QD_INHERITED(RecordSet)

 protected:
  const SetProtocol& Protocol() const override;
  Ref<Recordset> FetchList(Object& info, Query& query) const override;

 private:
  // GetList with a left-out argument and the sign behind the usual ones.
  static Ref<Recordset> FetchSigned(Object& info, Query& query, Long sign);
};

using WalkItemClassSet = EntityWalker<ItemClass>;

}  // namespace qdclgl
