// Records of items and units for books that people work on at once, or that fail on the way.
#pragma once

#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {

constexpr Long kCustomers = 3;  // an item class of all books

inline Ref<Vector> ListOf(std::initializer_list<Ref<Dictionary>> rows) {
  auto list = Make<Vector>();
  for (const Ref<Dictionary>& row : rows) list->Append(Variant(row));
  return list;
}

inline Ref<Vector> CustomersAsked() {
  return ListOf({::qdclgl::testing::Row({{"FItemClassID", kCustomers}})});
}

// Account 1130 asks for customers, of which item 1, C001 Anna, is one.
inline void MakeReceivables(const std::string& props) {
  using ::qdclgl::testing::Row;
  CreateObject("QDSVGLAccount.AccountUpdate")
      ->Call("Create", props,
             Row({{"FNumber", "1130"},
                  {"FName", "Receivables"},
                  {"_Items", Variant(CustomersAsked())}}));
  CreateObject("QDSVGLItem.ItemUpdate")
      ->Call("Create", props, kCustomers, Row({{"FNumber", "C001"}, {"FName", "Anna"}}));
}

// What a line on account 1130 names.
inline Ref<Vector> DetailOfAnna() {
  return ListOf({::qdclgl::testing::Row({{"FItemClassID", kCustomers}, {"FItemID", Long{1}}})});
}

// Class 1000 "PROJECT" with the field Size, a text in the column F1000_101, and nothing in it.
constexpr Long kProjects = 1000;
inline void MakeProjects(const std::string& props) {
  using ::qdclgl::testing::Row;
  constexpr Long kTextType = 200;
  const auto field =
      Row({{"FPropID", Integer{32767}}, {"FNewName", "Size"}, {"FDataType", kTextType}});
  CreateObject("QDSVGLItemClass.ItemClassUpdate")
      ->Call("Create", props,
             Row({{"FNumber", "PROJECT"},
                  {"FName", "Projects"},
                  {"_PropDesc", Variant(ListOf({field}))}}));
}
// Saves the class with its fields as `change` leaves them; the projects' own is the last one.
template <class Change>
void ChangeProjectFields(const std::string& props, Change change) {
  Long item_class = kProjects;
  const auto row = CreateObject("QDSVGLItemClass.ItemClassInfo")
                       ->Call("GetDetail", props, ByRef(item_class))
                       .As<Dictionary>();
  change(*row->Value("_PropDesc").As<Vector>());
  CreateObject("QDSVGLItemClass.ItemClassUpdate")->Call("Update", props, ByRef(item_class), row);
}
inline void RenameProjectField(const std::string& props) {
  ChangeProjectFields(props, [](Vector& fields) {
    fields.Item(fields.UpperBound()).As<Dictionary>()->Put("FNewName", "Length");
  });
}
inline void RemoveProjectField(const std::string& props) {
  ChangeProjectFields(props, [](Vector& fields) { fields.Remove(fields.UpperBound()); });
}
inline Ref<Dictionary> Project(std::string_view size) {
  return ::qdclgl::testing::Row({{"FNumber", "P1"}, {"FName", "Bridge"}, {"F1000_101", size}});
}

// Unit group 1 with the units 1, g, its default, 2, kg, and 3, t. Account 5000 counts in kg.
inline void MakeWeights(const std::string& props) {
  using ::qdclgl::testing::Row;
  const auto call = [&](std::string_view method, const auto&... arguments) {
    return CreateObject("QDSVGLUnit.MeasureUnitUpdate")->Call(method, props, arguments...);
  };
  const Long group = call("CreateUnitGroup", "Weights").template As<Long>();
  for (const auto& [name, coefficient] : {std::pair{"g", 1.0}, {"kg", 1e3}, {"t", 1e6}}) {
    call("CreateUnit", group,
         Row({{"FNumber", name}, {"FName", name}, {"FCoefficient", coefficient}}));
  }
  CreateObject("QDSVGLAccount.AccountUpdate")
      ->Call("Create", props,
             Row({{"FNumber", "5000"},
                  {"FName", "Flour"},
                  {"FUnitGroupID", group},
                  {"FMeasureUnitID", Long{2}}}));
}

}  // namespace qdclgl::server::testing
