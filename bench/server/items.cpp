#include "bench/server/items.h"

#include <algorithm>
#include <random>

#include "qdclgl/frame/session/session.h"
#include "qdclgl/qdclgl.h"

namespace bench {

using namespace qdclgl;

namespace {

constexpr Long kInteger = 3, kMoney = 6, kDate = 7, kText = 200;

// So many fields of a type, the first of which are searched by.
struct Fields {
  const char* name;
  Long type;
  int count, searched;
};
constexpr Fields kFields[] = {{"Text", kText, 8, 2},
                              {"Number", kInteger, 6, 2},
                              {"Amount", kMoney, 3, 1},
                              {"Day", kDate, 3, 1}};

// The column of a field by its place among all, from 0.
std::string ColumnOf(Long item_class, int place) {
  return "F" + std::to_string(item_class) + "_" + std::to_string(101 + place);
}

constexpr int kFirstText = 0, kFirstNumber = 8, kSecondNumber = 9, kFirstDay = 17;

// Each number is that of ten items or so.
int Numbers(int count) { return std::max(1, count / 10); }

}  // namespace

Long MakeItemClass() {
  auto projects = Make<ItemClassSet>()->CreateNew("PROJECT", "Project");
  const auto fields = projects->CustomProperties();
  for (const auto& [name, type, count, searched] : kFields) {
    for (int i = 1; i <= count; ++i) {
      const auto field = fields->Add(name + std::to_string(i), type, "", type == kText ? 40 : 0);
      if (i <= searched) field->Search(1);
    }
  }
  projects->SaveChanges();
  return projects->ItemClassID();
}

void SaveItems(Long item_class, int count) {
  constexpr int kBatch = 1000;
  const auto batch = [](std::string_view method) {
    CreateObject("QDSVGLBatch.BatchUpdate")->Call(method, GetPropsString());
  };
  const auto update = CreateObject("QDSVGLItem.ItemUpdate");
  std::mt19937 random(1);
  const auto draw = [&](int below) {
    return static_cast<int>(random() % static_cast<unsigned>(below));
  };
  for (int i = 0; i < count; i += kBatch) {
    batch("Begin");
    for (int k = i; k < std::min(count, i + kBatch); ++k) {
      auto row = Make<Dictionary>();
      row->Value("FItemClassID", item_class);
      row->Value("FNumber", "P" + std::to_string(k));
      row->Value("FName", "Project " + std::to_string(k));
      int place = 0;
      for (const Fields& fields : kFields) {
        for (int n = 0; n < fields.count; ++n) {
          Variant value;
          if (fields.type == kText) value = "text " + std::to_string(draw(count));
          if (fields.type == kInteger) value = Long{draw(Numbers(count))};
          if (fields.type == kMoney) value = Currency::FromUnits(draw(1'000'000));
          if (fields.type == kDate)
            value = DateTime::FromYmd(2015 + draw(10), 1 + draw(12), 1 + draw(28));
          row->Value(ColumnOf(item_class, place++), value);
        }
      }
      update->Call("Create", GetPropsString(), item_class, row);
    }
    batch("Commit");
  }
}

std::vector<ItemPage> ItemPages(Long item_class, int count) {
  const auto page = [item_class](const std::string& name, const std::string& filter,
                                 const std::string& sort) {
    return ItemPage{name, [=] {
                      auto parameters = Make<Dictionary>();
                      parameters->Value("Count", Long{100});
                      CreateObject("QDSVGLItem.ItemInfo")
                          ->Call("GetList", GetPropsString(), item_class, Long{0}, filter, sort,
                                 Variant(parameters));
                    }};
  };
  const std::string text = ColumnOf(item_class, kFirstText);
  const std::string number = ColumnOf(item_class, kFirstNumber);
  const std::string second = ColumnOf(item_class, kSecondNumber);
  const std::string day = ColumnOf(item_class, kFirstDay);
  const std::string half = std::to_string(Numbers(count) / 2);
  return {
      page("sorted by a searched text", "", text),
      page("sorted by a searched number, falling", "", number + " DESC"),
      page("half of a searched number, sorted by a text", number + " < " + half, text),
      page("one of a searched number, sorted by a text", number + " = " + half, text),
      page("a month of a searched date, sorted by a number",
           day + " >= #2024-02-01# AND " + day + " < #2024-03-01#", number),
      page("halves of two searched numbers, sorted by a text",
           number + " < " + half + " AND " + second + " < " + half, text),
  };
}

}  // namespace bench
