// Descriptions of the fields that the items of an item class have. They are views over the rows of
// the class's list of descriptions and go to the server with the class. No server call is made
// here.
#pragma once

#include "qdclgl/frame/containers/collection.h"
#include "qdclgl/frame/entities/row_view.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/frame/vocabulary/strings.h"

namespace qdclgl {

class CustomProperty final : public RowView, private ApartmentMember {
  QD_MEMBERS(CustomProperty, RowView, Creatable,
             "The description of one field that the items of an item class have.")

 public:
  QD_FIELD(Get, Long, ActualSize, "FActualSize", "The size of the column, set by the server.")
  QD_FIELD(Get, Integer, ActualType, "FActualType", "The type of the column, set by the server.")
  QD_PROPERTY(GetLet, String, Behavior,
              "Carried for the server; empty text is stored as Null. Key FBehavior.")
  QD_PROPERTY(
      GetLet, String, ComCall,
      "Reads the key FComCall and writes the key ComCall: what is written is not read until "
      "the server has it.")
  QD_PROPERTY(
      GetLet, Long, DataType,
      "The type of the field, a number of the recordset library; 200, a text, unless it was "
      "chosen. Error 387 for another type once the description is saved. Key FDataType.")
  QD_FIELD(GetLet, String, DefaultValue, "FDefaultValue", "The value of the field in a new item.")
  QD_PROPERTY(GetLet, String, DisplayField,
              "The field of the source that is shown, without blanks around it. Error 387 for a "
              "field of the system. Key FDisplayField.")
  QD_FIELD(GetLet, String, FilterField, "FFilterField", "Carried for the server.")
  QD_FIELD(GetLet, Boolean, IsDisplay, "FIsDisplay", "Whether the field is shown.", Default(true))
  QD_FIELD(GetLet, Boolean, IsInput, "FIsInput", "Whether the field can be entered.", Default(true))
  QD_FIELD(GetLet, Boolean, IsShownF7, "FIsShownList",
           "Whether the field is shown in the list that items are chosen from.")
  QD_PROPERTY(Get, Boolean, Modified,
              "Whether the description was written since an object was last made of it.")
  QD_PROPERTY(
      GetLet, String, Name,
      "The name of the field, without blanks around it. A name in use, case ignored, raises "
      "error 5 with words and leaves the old one. A write to a field of the system does "
      "nothing. Key FNewName; the server knows the field by FName until the class is saved.")
  QD_FIELD(GetLet, String, PageName, "FPageName", "The page that the field stands on.",
           Default(strings::BasicDataPage.data()))
  QD_PROPERTY(GetLet, Long, Precision,
              "The size of the field. Error 387 for a field of the system. Key FPrecision.")
  QD_INHERITED(Properties)
  QD_FIELD(Get, Integer, PropID, "FPropID",
           "The id of the description: below 101 for a field of the system, 32767 for one that is "
           "not saved.")
  QD_PROPERTY(GetLet, String, SaveRule,
              "Carried for the server, without blanks around it. Error 387 for a field of the "
              "system. Key FSaveRule.")
  QD_PROPERTY(GetLet, Integer, Scales,
              "The number of decimals. Error 387 for a field of the system. Key FScale.")
  QD_FIELD(GetLet, Long, Search, "FSearch", "How the field may be searched.")
  QD_FIELD(Get, String, SQLColumnName, "FSQLColumnName",
           "The column of the server's table of items, set by the server.")
  QD_PROPERTY(GetLet, String, SrcField,
              "The field of the source that is stored, without blanks around it. Error 387 for a "
              "field of the system. Key FSrcField.")
  QD_PROPERTY(GetLet, String, SrcTable,
              "Where the values come from. Error 387 for a field of the system. Key FSrcTable.")
  QD_FIELD(GetLet, Long, ViewMask, "FViewMask", "Carried for the server.")

  // ---- For the library's own classes ----

  // Binds the view to `row` itself, to the names in use and to the flag of the list.
  void Init(const Ref<Dictionary>& row, const Ref<Collection>& names, const Ref<ChangeFlag>& flag);

  // What a description with that row has, for walks that need no view of each.
  static Integer PropIDIn(const Dictionary& row);
  static String NameIn(const Dictionary& row);
  static String PageNameIn(const Dictionary& row);

 private:
  // Error 387 for a field of the system.
  void RequireOwn() const;
  // The write of a member that a field of the system doesn't have.
  void PutGuarded(const RowKey& key, const Variant& value);

  Ref<Collection> m_Names;  // shared by all descriptions of the list
};

class CustomPropertySet final : public Object, private ApartmentMember {
  QD_MEMBERS(CustomPropertySet, Object, Creatable,
             "The descriptions of the fields that the items of an item class have.")

 public:
  QD_METHOD(Ref<CustomProperty>, Add,
            (String Name = {}, Long DataType = 200, String Behavior = {}, Long Precision = {},
             Integer Scales = {}),
            "A new description at the end. The behaviour is not taken over. A name in use raises "
            "error 5 with words and leaves a description without a name.")
  QD_METHOD(Long, ExistenceCheck, (String Name = {}, Integer PropID = {}),
            "The position of the first description with that name, case respected, 0 when there is "
            "none. The id is not looked at.")
  QD_METHOD(Ref<Object>, GetPageNameList, (),
            "A Dictionary of the pages in the order in which they first stand in the list, each "
            "under its own name.")
  QD_METHOD(Ref<Enumerator>, NewEnum, (), "The descriptions in order.")
  QD_METHOD(
      void, Remove, (Variant index),
      "Removes the description at a position (a number) or with a name (anything else). Error "
      "0x80044042 for a field of the system, error 9 when there is none; error 5, behind the "
      "removal, when another description took its name along.")
  QD_METHOD(void, Sort, (Long SortType, Boolean bDesc = false),
            "Sorts by id (0), name (1) or page and name (2), case ignored. Marks nothing modified. "
            "Error 5 for any other order.")
  QD_PROPERTY(Get, Long, Count, "The number of descriptions.")
  QD_INDEXED(
      Get, Ref<CustomProperty>, Item, (Variant index),
      "The description at a position (a number) or with a name (anything else), a new object "
      "each time. Error 9 when there is none.",
      DefaultMember)
  QD_PROPERTY(Get, Boolean, Modified, "Whether the list or any description was written.")

  // Binds the set to the list itself and to its flag. For the library's own classes.
  void Init(const Ref<Vector>& vector, const Ref<ChangeFlag>& flag);

  // The descriptions in order, for C++ callers: `for (auto& property : *set)`.
  EnumeratorRange<CustomProperty>::Iterator begin();
  std::default_sentinel_t end() const { return {}; }

 private:
  // The list. Error 91 for a set that was never bound.
  const Ref<Vector>& Rows() const;
  // The position that an index means, 0 for a name that no description has.
  Long PositionOf(const Variant& index) const;
  Long Find(const String& name) const;
  Ref<CustomProperty> At(Long position) const;

  Ref<Vector> m_Vector;
  Ref<ChangeFlag> m_Flag;
  Ref<Collection> m_Names;  // refuses duplicates; shared with the descriptions that are given out
};

// Enumerates a list of descriptions. The position has 16 bits: error 6 behind the 32,767th.
class WalkCustomPropertySet final : public IWalkVariant, private ApartmentMember {
  QD_MEMBERS(WalkCustomPropertySet, IWalkVariant, Creatable,
             "The walk behind the enumerator of a CustomPropertySet.")

 public:
  QD_OVERRIDE(void, Next, (Variant & Item, Boolean& Done),
              "Puts the next description and True into the caller's variables, and leaves both at "
              "the end.")
  QD_OVERRIDE(void, Skip, (Boolean & Done),
              "Passes a description and puts True into the caller's variable, which stays at the "
              "end.")
  QD_OVERRIDE(void, Reset, (), "Begins again at the first description.")

  // What the walk runs over. For the library's own classes.
  void Init(const Ref<Vector>& vector, const Ref<Collection>& names, const Ref<ChangeFlag>& flag);

 private:
  bool Advance();

  Ref<Vector> m_Vector;
  Ref<Collection> m_Names;
  Ref<ChangeFlag> m_ChangeFlag;
  Integer m_Pos = 0;
};

}  // namespace qdclgl
