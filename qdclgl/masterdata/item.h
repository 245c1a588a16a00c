// Items: the rows of item classes, with the values of the fields that their class describes.
//
// Server components: QDSVGLItem.ItemInfo reads, .ItemUpdate writes.
#pragma once

#include "qdclgl/frame/entities/entity.h"
#include "qdclgl/frame/entities/entity_set.h"

namespace qdclgl {

class Item final : public Entity {
  QD_MEMBERS(Item, Entity, Creatable, "An auxiliary item of an item class.")

 public:
  QD_PROPERTY(Let, Boolean, UNDetail,
              "Carried for the server; False removes the key. Key FUNDetail.")
  QD_PROPERTY(Set, Ref<Dictionary>, DictDeifne,
              "The values of defined fields that UpdateDefineField hands to the server.")
  QD_INHERITED(CancelChanges)
  QD_INHERITED(Construct)
  QD_METHOD(void, Refresh, (),
            "Reads the item again; does nothing for one that is not saved. A failure is shown to "
            "the user, leaves the item as it is and raises nothing. Calls GetDetail.")
  QD_METHOD(void, SaveChanges, (),
            "Writes a changed item to the server and reads it again as Refresh does; does nothing "
            "without a change. Calls Create with the item's class or Update, then GetDetail.")
  QD_METHOD(Boolean, UpdateDefineField, (),
            "Hands the values of defined fields to the server, of the item's class and not of the "
            "item, then reads the item again as Refresh does; gives the server's answer. Calls "
            "UpdateDefineField, then GetDetail.")
  QD_FIELD(Get, Long, ChkUserID, "FChkUserID", "Id of the user who checked the item.")
  QD_FIELD(GetLet, Boolean, Deleted, "FDeleted", "Whether the item is deleted.")
  QD_FIELD(Get, Boolean, Detail, "FDetail", "Whether the item has no items below it.")
  QD_FIELD(Get, String, FullName, "FFullName", "The full name, set by the server.")
  QD_FIELD(GetLet, String, HelpCode, "FHelpCode", "A short code to find the item by.")
  QD_PROPERTY(Get, Long, ItemClassID, "The id of the item's class.")
  QD_PROPERTY(Get, Long, ItemID, "The id of the item; 0 while it is not saved.")
  QD_FIELD(Get, String, ItemModel, "FModel", "The model of the item, set by the server.")
  QD_FIELD(Get, Integer, Level, "FLevel", "The level in the tree, set by the server.")
  QD_FIELD(GetLet, String, Name, "FName", "The item's name.")
  QD_PROPERTY(GetLet, String, Number, "The item's number, stored in upper case. Key FNumber.")
  QD_FIELD(Get, Long, ParentID, "FParentID", "Id of the item above, set by the server.")
  QD_INHERITED(Properties)
  QD_PROPERTY(GetLet, String, UUID,
              "The item's global identifier. Error 5 with words for more than 38 characters.")

 protected:
  const EntityProtocol& Protocol() const override;
  // The id, and that of the class.
  void TakeIds(const Dictionary& row) override;
  // Create(PropsString, id of the class as it stands in the row, row).
  Long CreateRow(Object& update, const Ref<Dictionary>& row) override;

 private:
  Long m_ItemClassID = 0;
  Ref<Dictionary> m_DefinedFields;
};

class ItemSet final : public EntitySet<Item> {
  QD_MEMBERS(ItemSet, EntitySet<qdclgl::Item>, Creatable, "The list of the items of a class.")

 public:
  QD_INHERITED(ListOptions)
  QD_INHERITED(Filter)
  QD_INHERITED(Sort)
  QD_PROPERTY(GetLet, Long, ItemClassID,
              "The item class of the list and of whatever is asked for without one.")
  QD_METHOD(Ref<Object>, CreateNew,
            (Long ItemClassID, Long ParentID, Variant Number = Missing, Variant Name = Missing),
            "A new Item of that class below that parent, with the number as it is and the name "
            "where given; it is not saved, and unmodified until a member is written. Error "
            "0x80044104 without a class.")
  QD_METHOD(Long, ExistenceCheck,
            (Variant ItemID = Missing, Long ItemClassID = {}, Variant Number = Missing),
            "The id of the item with that id, or with that number in the class given or else the "
            "set's; 0 when there is none or neither is given. Calls ExistenceCheck.")
  QD_METHOD(Ref<Object>, GetCurrent, (Boolean blNoCheck = false),
            "The Item of the row under the cursor, read from the server by its id. Error 5 behind "
            "the last row. Calls GetDetail.")
  QD_METHOD(Ref<qdclgl::Item>, GetNext, (),
            "The item of the row under the cursor, as GetCurrent reads it; then the cursor moves "
            "on. Error 5 behind the last row.")
  QD_INHERITED(NewEnum)
  QD_INHERITED(Refresh)
  QD_METHOD(void, Remove, (Long ItemID),
            "Deletes the item of an id, whatever it is; the list keeps showing it until Refresh. "
            "Calls Delete.")
  QD_INHERITED(Count)
  QD_INDEXED(Get, Ref<Object>, Item,
             (Long ItemID = {}, Long ClassID = {}, String Number = {}, Boolean blNoCheck = false,
              String strFilter = {}),
             "The Item of an id, or without one of a number in the class given or else the set's, "
             "read from the server; an empty one when the server knows no such item. Error "
             "0x80044104 without a class, error 5 without a number. Calls GetDetail or "
             "GetDetailByNumber.",
             DefaultMember)
  QD_PROPERTY(GetSet, Ref<Object>, Parameters,
              "An object that goes to the server with the next Refresh.")
  QD_PROPERTY(GetSet, Ref<Recordset>, RecordSet,
              "The list, fetched on first use; a recordset put here takes its place.")
  QD_PROPERTY(GetLet, Boolean, IgnoreRight, "Carried for the server, for the next Refresh.")

 protected:
  const SetProtocol& Protocol() const override;
  // GetList with the class in front of the usual arguments, the parameters and the mark behind.
  Ref<Recordset> FetchList(Object& info, Query& query) const override;

 private:
  Ref<qdclgl::Item> ItemOf(const Ref<Recordset>& list, Boolean no_check) const;
  Ref<qdclgl::Item> Read(Long id, Long item_class, String number, Boolean no_check,
                         String filter) const;

  // A server may write these when a reader fetches the list.
  mutable Long m_ItemClassID = 0;
  mutable Ref<Object> m_Parameters;
  mutable Boolean m_IgnoreRight = false;
};

using WalkItemSet = EntityWalker<Item>;

}  // namespace qdclgl
