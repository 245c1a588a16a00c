// The whole public surface: the committed table of it, and one walk over every row of every class.
#include "qdclgl/api/api_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "qdclgl/api/class_list.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/qdclgl.h"

namespace qdclgl {
namespace {

// ---- ApiTable ----

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

TEST(ApiTable, IsTheCommittedOne) {
  const std::string path = std::string(QDCLGL_SOURCE_DIR) + "/docs/api.tsv";
  std::ifstream file(path, std::ios::binary);
  ASSERT_TRUE(file) << "can't read " << path;
  const std::string committed{std::istreambuf_iterator<char>(file), {}};
  if (committed == ApiTable()) return;

  const std::vector<std::string> was = LinesOf(committed);
  const std::vector<std::string> is = LinesOf(ApiTable());
  std::size_t line = 0;
  while (line < was.size() && line < is.size() && was[line] == is[line]) ++line;
  ADD_FAILURE() << "docs/api.tsv is not what the rows say, first at line " << line + 1
                << ":\n  committed: " << (line < was.size() ? was[line] : "(no such line)")
                << "\n  rows:      " << (line < is.size() ? is[line] : "(no such line)")
                << "\nIf the public surface was meant to change, run scripts/update-derived and "
                   "review the difference.";
}

TEST(ApiTable, HasALineForEachWayOfUsingAMember) {
  std::size_t ways = 1;  // the header
  for (const ClassTable* table : PublicClasses()) {
    if (table->takes_context()) ++ways;
    for (const ClassMember& member : table->members()) {
      for (const Invoker way :
           {member.row.method, member.row.get, member.row.let, member.row.set}) {
        if (way != nullptr) ++ways;
      }
    }
  }
  const std::vector<std::string> lines = LinesOf(ApiTable());
  EXPECT_EQ(lines.size(), ways);
  for (const std::string& line : lines) {
    EXPECT_EQ(std::count(line.begin(), line.end(), '\t'), 8) << line;
  }
}

// ---- ClassList ----

// The public classes, and the containers, whose rows serve late-bound callers just the same.
std::vector<const ClassTable*> AllTables() {
  std::vector<const ClassTable*> tables(PublicClasses().begin(), PublicClasses().end());
  for (const ClassTable* container : {&Collection::Table(), &Dictionary::Table(), &Vector::Table(),
                                      &Recordset::Table(), &Fields::Table(), &Field::Table()}) {
    if (std::find(tables.begin(), tables.end(), container) == tables.end()) {
      tables.push_back(container);
    }
  }
  return tables;
}

void ForEachMember(const std::function<void(const ClassMember&)>& check) {
  for (const ClassTable* table : AllTables()) {
    for (const ClassMember& member : table->members()) {
      SCOPED_TRACE(std::string(table->name()) + "." + std::string(member.row.name));
      check(member);
    }
  }
}

void ForEachParameter(const std::function<void(const MemberParameter&)>& check) {
  ForEachMember([&](const ClassMember& member) {
    for (const MemberParameter& parameter : member.parameters) {
      SCOPED_TRACE("argument " + parameter.name);
      check(parameter);
    }
  });
}

bool IsName(std::string_view text) {
  const auto is_letter = [](char c) { return AsciiToLower(c) >= 'a' && AsciiToLower(c) <= 'z'; };
  return !text.empty() && is_letter(text[0]) && std::all_of(text.begin(), text.end(), [&](char c) {
    return is_letter(c) || (c >= '0' && c <= '9') || c == '_';
  });
}

// A sentence, or a phrase in Chinese as some interfaces describe themselves.
bool IsSentence(std::string_view text) {
  const auto is_chinese = [&] { return std::ranges::any_of(text, [](char c) { return c < 0; }); };
  return text.size() > 1 && (text.ends_with('.') || is_chinese()) && TrimBlanks(text) == text;
}

TEST(ClassList, IsNotEmpty) { EXPECT_FALSE(PublicClasses().empty()); }

TEST(ClassList, NamesEachClassOnceCaseIgnored) {
  std::set<std::string> names;
  for (const ClassTable* table : AllTables()) {
    EXPECT_TRUE(IsName(table->name())) << table->name();
    EXPECT_TRUE(names.insert(FoldAsciiCase(table->name())).second) << table->name();
  }
}

TEST(ClassList, DescribesEachClassInASentence) {
  for (const ClassTable* table : AllTables()) {
    EXPECT_TRUE(IsSentence(table->help())) << table->name() << ": " << table->help();
  }
}

TEST(ClassList, FindsEachClassCaseIgnored) {
  for (const ClassTable* table : PublicClasses()) {
    EXPECT_EQ(FindPublicClass(table->name()), table);
    EXPECT_EQ(FindPublicClass(FoldAsciiCase(table->name())), table) << table->name();
    EXPECT_EQ(FindPublicClass(ToUpper(table->name())), table) << table->name();
  }
  EXPECT_EQ(FindPublicClass("NoSuchClass"), nullptr);
  EXPECT_EQ(FindPublicClass(""), nullptr);
}

TEST(ClassList, EachClassHasMembersWithOrdinalsFromOneOn) {
  for (const ClassTable* table : AllTables()) {
    EXPECT_FALSE(table->members().empty()) << table->name();
    int ordinal = 0;
    for (const ClassMember& member : table->members()) {
      EXPECT_EQ(member.ordinal, ++ordinal) << table->name() << "." << member.row.name;
    }
  }
}

TEST(ClassList, EachClassNamesAMemberOnceCaseIgnored) {
  for (const ClassTable* table : AllTables()) {
    std::set<std::string> names;
    for (const ClassMember& member : table->members()) {
      EXPECT_TRUE(IsName(member.row.name)) << table->name() << "." << member.row.name;
      EXPECT_TRUE(names.insert(FoldAsciiCase(member.row.name)).second)
          << table->name() << "." << member.row.name;
      EXPECT_EQ(table->Find(ToUpper(member.row.name)), &member)
          << table->name() << "." << member.row.name;
    }
  }
}

TEST(ClassList, DescribesEachMemberInASentence) {
  ForEachMember([](const ClassMember& member) {
    EXPECT_TRUE(IsSentence(member.row.help)) << '"' << member.row.help << '"';
  });
}

TEST(ClassList, EachMemberIsEitherAMethodOrAProperty) {
  ForEachMember([](const ClassMember& member) {
    const MemberRow& row = member.row;
    const bool is_property = row.get != nullptr || row.let != nullptr || row.set != nullptr;
    EXPECT_NE(row.method != nullptr, is_property);
    if (is_property) {
      EXPECT_NE(row.type, "none");
    }
  });
}

TEST(ClassList, TheDefaultMemberIsTheOneWhoseRowSaysSo) {
  for (const ClassTable* table : AllTables()) {
    const ClassMember* marked = nullptr;
    for (const ClassMember& member : table->members()) {
      if (member.row.options.is_default_member) marked = &member;
    }
    EXPECT_EQ(table->default_member(), marked) << table->name();
  }
}

TEST(ClassList, EachTypeIsAKnownWord) {
  std::set<std::string_view> words = {"Long",     "Integer", "Double",      "Single",
                                      "Currency", "Date",    "String",      "Boolean",
                                      "Variant",  "Object",  "IEnumVARIANT"};
  for (const ClassTable* table : AllTables()) words.insert(table->name());
  ForEachMember([&](const ClassMember& member) {
    const bool returns_nothing = member.row.type == "none" && member.row.method != nullptr;
    EXPECT_TRUE(returns_nothing || words.contains(member.row.type)) << member.row.type;
  });
  ForEachParameter([&](const MemberParameter& parameter) {
    EXPECT_TRUE(words.contains(parameter.type)) << parameter.type;
  });
}

TEST(ClassList, EachArgumentHasANameOfItsOwnCaseIgnored) {
  ForEachMember([](const ClassMember& member) {
    std::set<std::string> names;
    for (const MemberParameter& parameter : member.parameters) {
      EXPECT_TRUE(IsName(parameter.name)) << '"' << parameter.name << '"';
      EXPECT_TRUE(names.insert(FoldAsciiCase(parameter.name)).second) << parameter.name;
    }
  });
}

TEST(ClassList, OptionalArgumentsStandBehindTheNeededOnes) {
  ForEachMember([](const ClassMember& member) {
    EXPECT_TRUE(
        std::is_partitioned(member.parameters.begin(), member.parameters.end(),
                            [](const MemberParameter& parameter) { return !parameter.optional; }));
  });
}

TEST(ClassList, EachDefaultFitsItsArgumentsType) {
  static const std::map<std::string_view, VariantType> kTypes = {
      {"Long", VariantType::kLong},         {"Integer", VariantType::kInteger},
      {"Double", VariantType::kDouble},     {"Single", VariantType::kSingle},
      {"Currency", VariantType::kCurrency}, {"Date", VariantType::kDate},
      {"Boolean", VariantType::kBoolean},   {"String", VariantType::kString}};
  ForEachParameter([](const MemberParameter& parameter) {
    const std::string& text = parameter.default_text;
    if (!parameter.optional) {
      EXPECT_EQ(text, "");
      EXPECT_TRUE(parameter.default_value.IsMissing());
      return;
    }
    const bool is_truth = text == "True" || text == "False";
    const bool is_text = text.size() >= 2 && text.starts_with('"') && text.ends_with('"') &&
                         text.find('\\') == std::string::npos;
    const bool is_number =
        text.find_first_of("0123456789") != std::string::npos &&
        text.find_first_not_of("0123456789.", text.starts_with('-') ? 1 : 0) == std::string::npos;
    if (parameter.type == "Variant") {
      EXPECT_TRUE(text.empty() || is_number || is_truth || is_text) << text;
      EXPECT_EQ(parameter.default_value.IsMissing(), text.empty());
    } else if (const auto type = kTypes.find(parameter.type); type == kTypes.end()) {
      ADD_FAILURE() << "a " << parameter.type << " can't be left out";
    } else {
      // Without a text it is the type's own zero.
      EXPECT_EQ(parameter.default_value.Type(), type->second);
      if (text.empty()) {
        const bool is_string = type->second == VariantType::kString;
        EXPECT_TRUE(Equals(parameter.default_value, is_string ? Variant("") : Variant(0)));
      } else {
        EXPECT_TRUE(parameter.type == "String"    ? is_text
                    : parameter.type == "Boolean" ? is_truth
                                                  : is_number)
            << text;
      }
    }
  });
}

TEST(ClassList, CreatesEachCreatableClassUnderItsName) {
  for (const ClassTable* table : PublicClasses()) {
    if (!table->creatable()) continue;
    SCOPED_TRACE(table->name());
    const Ref<Object> object = CreatePublicObject(table->name());
    ASSERT_TRUE(object);
    EXPECT_EQ(object->ClassName(), table->name());
    EXPECT_EQ(object->Members(), table);
    EXPECT_NE(CreatePublicObject(FoldAsciiCase(table->name())), object);
  }
}

std::int32_t NumberOfCreationError(std::string_view name) {
  try {
    CreatePublicObject(name);
  } catch (const Error& error) {
    EXPECT_FALSE(error.description().empty());
    return error.number();
  }
  return 0;
}

TEST(ClassList, RefusesClassesWhoseObjectsComeFromOthersWithError429) {
  for (const ClassTable* table : PublicClasses()) {
    if (table->creatable()) continue;
    EXPECT_EQ(NumberOfCreationError(table->name()), 429) << table->name();
  }
}

TEST(ClassList, RefusesUnknownNamesWithError429) {
  EXPECT_EQ(NumberOfCreationError("NoSuchClass"), 429);
  EXPECT_EQ(NumberOfCreationError(""), 429);
}

}  // namespace
}  // namespace qdclgl
