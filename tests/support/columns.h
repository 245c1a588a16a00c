// Checks of the members that are no more than a key of a row, driven by a table of expectations.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "qdclgl/frame/entities/entity.h"
#include "qdclgl/frame/entities/line_view.h"
#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/late_bound.h"
#include "tests/support/test_objects.h"
#include "tests/support/view_state.h"

namespace qdclgl::testing {

// What the write of zero, False or empty text does to the key.
enum class Zero { kIsStored, kRemovesTheKey };

template <class View>
struct Column {
  std::string name;
  std::string key;
  Variant zero;   // what the member reads as where the row has no value
  Variant value;  // another value of the member's type
  Zero on_zero = Zero::kIsStored;
  std::function<Variant(const View&)> read;
  std::function<void(View&, const Variant&)> write;  // null for a member that is only read
  std::string error = {};  // what a read raises where the row has no value, if anything
};

template <class T>
Variant SomeValue() {
  if constexpr (std::is_same_v<T, String>) return Variant("text");
  else if constexpr (std::is_same_v<T, Boolean>) return Variant(true);
  else if constexpr (std::is_same_v<T, Currency>) return Variant(Currency(12.5));
  else if constexpr (std::is_same_v<T, Double>) return Variant(2.25);
  else return Variant(T{1});
}

template <class T, class View>
Column<View> ReadOnlyColumn(const char* name, const char* key, T (View::*read)() const) {
  return {.name = name,
          .key = key,
          .zero = Variant(T{}),
          .value = SomeValue<T>(),
          .read = [read](const View& view) { return Variant((view.*read)()); },
          .write = nullptr};
}

template <class T, class View>
Column<View> WritableColumn(const char* name, const char* key, T (View::*read)() const,
                            void (View::*write)(T), Zero on_zero) {
  Column<View> column = ReadOnlyColumn<T, View>(name, key, read);
  column.on_zero = on_zero;
  column.write = [write](View& view, const Variant& value) { (view.*write)(value.As<T>()); };
  return column;
}

// The column of a member that reads as something else than zero where the row has no value.
template <class View>
Column<View> WithDefault(Column<View> column, Variant read_without_value, Variant value) {
  column.zero = std::move(read_without_value);
  column.value = std::move(value);
  return column;
}

// The column of a member that raises 13 where the row has no value.
template <class View>
Column<View> WithoutDefault(Column<View> column) {
  column.error = "error 13";
  return column;
}

// A view of its own, with a flag of its own, on a row; an entity of a row.
template <class View>
Ref<View> ViewOn(const Ref<Dictionary>& row) {
  if constexpr (std::is_base_of_v<Entity, View>) {
    auto entity = Make<View>();
    entity->Construct(row, Nothing);
    return entity;
  } else {
    return ViewOf<View>(row, Make<ChangeFlag>());
  }
}

// "{FKey: value}" for a stored value.
template <class View>
std::string RowText(const Column<View>& column, const Variant& value) {
  return "{" + column.key + ": " + StateText(value) + "}";
}

// What a member reads, or what its read raises.
template <class View>
std::string TextRead(const Column<View>& column, View& view) {
  const auto text_of = [](auto read) {
    std::string text;
    const std::string error = ErrorOf([&] { text = StateText(read()); });
    return error == "no error" ? text : error;
  };
  const std::string typed = text_of([&] { return column.read(view); });
  const std::string late = text_of([&] { return view.Get(column.name); });
  return typed == late ? typed : typed + ", but by name " + late;
}

// The same where the row has no value.
template <class View>
std::string TextWithoutValue(const Column<View>& column) {
  return column.error.empty() ? StateText(column.zero) : column.error;
}

template <class View>
void ExpectDefaults(const std::vector<Column<View>>& columns) {
  for (const Column<View>& column : columns) {
    SCOPED_TRACE(column.name);
    for (const Ref<Dictionary>& row : {Row({}), Row({{column.key, Null}}), Row({{column.key, ""}}),
                                       Row({{column.key, Variant()}})}) {
      const std::string before = StateText(Variant(row));
      const auto view = ViewOn<View>(row);
      EXPECT_EQ(TextRead(column, *view), TextWithoutValue(column)) << before;
      EXPECT_EQ(State(*view), before);
    }
  }
}

// A member reads its own key and no other, and a value of another type as the member's own.
template <class View>
void ExpectReads(const std::vector<Column<View>>& columns) {
  auto others = Make<Dictionary>();
  for (const Column<View>& column : columns) others->Put(column.key, column.value);
  for (const Column<View>& column : columns) {
    SCOPED_TRACE(column.name);
    const auto view = ViewOn<View>(Row({{column.key, column.value}}));
    EXPECT_EQ(TextRead(column, *view), StateText(column.value));
    EXPECT_EQ(State(*view), RowText(column, column.value));

    const auto text = ViewOn<View>(Row({{column.key, CStr(column.value)}}));
    EXPECT_EQ(TextRead(column, *text), StateText(column.value));

    const Ref<Dictionary> without = others->Clone();
    without->Remove(column.key);
    EXPECT_EQ(TextRead(column, *ViewOn<View>(without)), TextWithoutValue(column));
  }
}

template <class View>
void ExpectWrites(const std::vector<Column<View>>& columns) {
  for (const Column<View>& column : columns) {
    if (!column.write) continue;
    SCOPED_TRACE(column.name);
    const std::string written = RowText(column, column.value) + " modified flagged";

    const auto typed = ViewOn<View>(Row({}));
    column.write(*typed, column.value);
    EXPECT_EQ(State(*typed), written);

    const auto late = ViewOn<View>(Row({}));
    late->Let(column.name, column.value);
    EXPECT_EQ(State(*late), written);

    const auto converted = ViewOn<View>(Row({}));
    converted->Let(column.name, CStr(column.value));
    EXPECT_EQ(State(*converted), written);

    const auto same = ViewOn<View>(Row({{column.key, column.value}}));
    column.write(*same, column.value);
    EXPECT_EQ(State(*same), written) << "a write of what is there counts too";
  }
}

template <class View>
void ExpectWritesOfZero(const std::vector<Column<View>>& columns) {
  for (const Column<View>& column : columns) {
    if (!column.write) continue;
    SCOPED_TRACE(column.name);
    const bool removes = column.on_zero == Zero::kRemovesTheKey;
    const std::string row = removes ? "{}" : RowText(column, column.zero);
    const std::string on_absent = row + (removes ? " flagged" : " modified flagged");

    const auto typed = ViewOn<View>(Row({{column.key, column.value}}));
    column.write(*typed, column.zero);
    EXPECT_EQ(State(*typed), row + " modified flagged");
    EXPECT_EQ(TextRead(column, *typed), StateText(column.zero));

    const auto late = ViewOn<View>(Row({{column.key, column.value}}));
    late->Let(column.name, column.zero);
    EXPECT_EQ(State(*late), row + " modified flagged");

    const auto absent = ViewOn<View>(Row({}));
    column.write(*absent, column.zero);
    EXPECT_EQ(State(*absent), on_absent);
  }
}

// A let that does not convert leaves the row alone, and so does any let of a member that is only
// read.
template <class View>
void ExpectRefusedLets(const std::vector<Column<View>>& columns) {
  for (const Column<View>& column : columns) {
    SCOPED_TRACE(column.name);
    const auto view = ViewOn<View>(Row({{column.key, column.value}}));
    if (!column.write) {
      EXPECT_EQ(ErrorOf([&] { view->Let(column.name, column.value); }),
                "error 438 (" + std::string(View::kClassName) + "): The member " + column.name +
                    " can't be used this way.");
    } else {
      EXPECT_EQ(ErrorOf([&] { view->Let(column.name, Null); }), "error 13");
      if (!column.zero.IsString()) {
        EXPECT_EQ(ErrorOf([&] { view->Let(column.name, "many"); }), "error 13");
      }
    }
    EXPECT_EQ(State(*view), RowText(column, column.value));
  }
}

// A view that was never attached.
template <class View>
void ExpectUnusable(const std::vector<Column<View>>& columns) {
  const auto view = Make<View>();
  for (const Column<View>& column : columns) {
    SCOPED_TRACE(column.name);
    EXPECT_EQ(ErrorOf([&] { column.read(*view); }), "error 91");
    if (column.write) {
      EXPECT_EQ(ErrorOf([&] { column.write(*view, column.value); }), "error 91");
      EXPECT_EQ(ErrorOf([&] { column.write(*view, column.zero); }), "error 91");
    }
  }
}

// The members of a class in interface order, as text.
template <class View>
std::string MemberNames() {
  std::string names;
  for (const ClassMember& member : View::Table().members()) {
    names += (names.empty() ? "" : " ") + std::string(member.row.name);
  }
  return names;
}

}  // namespace qdclgl::testing
