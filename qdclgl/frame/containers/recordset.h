// Rows of a list, as a server component hands them out.
//
// The rows lie in memory; clones share them and have a cursor each. A row that is deleted is gone
// for all of them: a cursor that stands on it has no current row until it moves, to the row behind
// or before. The members are virtual, so that a recordset of another library can stand in. Errors:
// 3021 no current row, 3265 no such field, 3001 a refused argument or criterion, 3704 the recordset
// is closed.
#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/objects/enumeration.h"

namespace qdclgl {

class Fields;
class Vector;

class Recordset : public Object {
  QD_MEMBERS(Recordset, Object, Creatable, "Rows of a list with a cursor.")

 public:
  QD_METHOD(void, AddNew, (const Variant& FieldList = Missing, const Variant& Values = Missing),
            "Begins a new row behind the others and makes it the current one, with a value for a "
            "field by name or position, or with those of one Vector for the fields of another.",
            ArrayOf(1))
  virtual QD_METHOD(Ref<Recordset>, Clone, (Long LockType = -1),
                    "Another cursor over the same rows, on the first one.")
  virtual QD_METHOD(void, Close, (), "Gives up the rows.")
  virtual QD_METHOD(void, Find, (std::string_view Criteria),
                    "Moves from the current row on to the first row that meets `Column op "
                    "literal`, or behind the last row.")
  virtual QD_METHOD(void, MoveFirst, (), "Moves to the first row. Error 3021 when there is none.")
  virtual QD_METHOD(
      void, MoveNext, (),
      "Moves to the next row or behind the last one. Error 3021 when behind it already.")
  virtual QD_METHOD(void, Open, (),
                    "Makes a recordset ready for rows, once its fields were appended.")
  virtual QD_METHOD(void, Update, (), "Ends the edit of the current row.")
  virtual QD_PROPERTY(Get, Boolean, Bof,
                      "True when the cursor stands before the first row, as it does without rows.")
  virtual QD_PROPERTY(Get, Boolean, Eof, "True when the cursor stands behind the last row.")
  virtual QD_PROPERTY(Get, Ref<qdclgl::Fields>, Fields,
                      "The columns, with the values of the current row.", DefaultMember)
  virtual QD_PROPERTY(Get, Long, RecordCount, "The number of rows.")
  virtual QD_PROPERTY(Get, Long, State, "1 while the recordset is open, 0 while it is closed.")
  virtual QD_METHOD(void, Delete, (Long AffectRecords = 1),
                    "Takes the current row out, for all clones; there is no current row then until "
                    "the cursor moves. The argument is 1, for the current row, or error 3001.")
  QD_METHOD(Ref<Vector>, GetRows,
            (Long Rows = -1, const Variant& Start = Missing, const Variant& Fields = Missing),
            "The values of so many rows (-1: all) from the current one (or 0), the first (1) or "
            "the last (2) on, by field and row from 0 each: a Vector for each of the fields, given "
            "by name or position or by a Vector of such, otherwise for all. The cursor moves "
            "behind them. Error 3021 without a current row.",
            ArrayOf(2))
  virtual QD_METHOD(void, MoveLast, (), "Moves to the last row. Error 3021 when there is none.")
  virtual QD_METHOD(void, MovePrevious, (),
                    "Moves to the row before or before the first one. Error 3021 when before it "
                    "already.")

  // A closed recordset without fields.
  Recordset() : rows_(Make<Rows>()) {}
  // An open recordset with these columns and no rows.
  static Ref<Recordset> Create(std::initializer_list<std::string_view> columns);

  // Adds a whole row, a value for each column in order. The cursor stays.
  void AddRow(std::vector<Variant> values);
  // Adds a row of Nulls and makes it the current one.
  virtual void BeginRow();
  // The current row as a new Dictionary, keys in column order. Error 3021 without one.
  virtual Ref<Dictionary> Row() const;

  // The columns and the current row, by position from 0. Error 3265 outside.
  virtual Long FieldCount() const;
  virtual String FieldName(Long position) const;
  virtual Variant FieldValue(Long position) const;
  virtual void SetFieldValue(Long position, Variant value);
  virtual void AppendField(std::string_view name);
  // The position of the column `name`, case ignored. Error 3265 when there is none.
  Long FieldPosition(std::string_view name) const;

 private:
  static constexpr std::size_t kBeforeFirst = SIZE_MAX;  // one step before position 0

  struct Rows {
    mutable std::uint32_t references = 0;
    bool open = false;
    Ref<KeyList> columns = Make<KeyList>();
    std::vector<Variant> cells;  // row after row
    std::size_t count = 0;       // with the deleted ones, which keep their places
    std::vector<bool> deleted;   // as far as the last deleted row
    std::size_t deleted_count = 0;

    bool IsDeleted(std::size_t row) const { return row < deleted.size() && deleted[row]; }
    bool IsEmpty() const { return count == deleted_count; }
    // The row at a position or the next one behind, `count` when there is none.
    std::size_t RowFrom(std::size_t position) const {
      while (IsDeleted(position)) ++position;
      return position;
    }
    std::size_t RowBefore(std::size_t position) const {
      do --position;
      while (position != kBeforeFirst && IsDeleted(position));
      return position;
    }

    void AddRef() const { ++references; }
    void Release() const {
      if (--references == 0) delete this;
    }
  };

  void RequireOpen() const;
  void MoveTo(std::size_t position);
  // The cells of the current row. Error 3021 without one.
  std::span<Variant> CurrentRow() const;

  Ref<Rows> rows_;
  std::size_t position_ = 0;
};

// One column of a recordset, with its value in the current row.
class Field final : public Object {
  QD_MEMBERS(Field, Object, Internal, "A column of a recordset, with its value in the current row.")

 public:
  QD_PROPERTY(Get, String, Name, "The column's name.")
  QD_PROPERTY(GetLet, Variant, Value, "The value in the current row.", DefaultMember)

  Field(Ref<Recordset> recordset, Long position)
      : recordset_(std::move(recordset)), position_(position) {}

 private:
  Ref<Recordset> recordset_;
  Long position_;
};

class Fields final : public Object {
  QD_MEMBERS(Fields, Object, Internal, "The columns of a recordset.")

 public:
  QD_METHOD(void, Append,
            (std::string_view Name, Long Type = 0, Long DefinedSize = 0, Long Attrib = 0),
            "Adds a column to a closed recordset. The columns hold values of any type; type, size "
            "and attributes are accepted for the sake of callers that give them.")
  QD_METHOD(Ref<Enumerator>, NewEnum, (), "The columns in order.")
  QD_PROPERTY(Get, Long, Count, "The number of columns.")
  QD_INDEXED(Get, Ref<Field>, Item, (const Variant& Index),
             "A column by name or by position from 0. Error 3265 when there is "
             "none.",
             DefaultMember)

  explicit Fields(Ref<Recordset> recordset) : recordset_(std::move(recordset)) {}

 private:
  Ref<Recordset> recordset_;
};

// The current row as a new Dictionary: a key for each column, in column order, a Null staying Null.
// The cursor stays. Error 3021 at the end: test `Eof` first.
Ref<Dictionary> RowToDictionary(const Ref<Recordset>& rs);

}  // namespace qdclgl
