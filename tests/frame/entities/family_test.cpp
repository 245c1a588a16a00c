// Every class of the family of entities and sets stands in the list of a suite.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "qdclgl/api/class_list.h"
#include "qdclgl/frame/entities/entity.h"
#include "qdclgl/frame/entities/entity_set.h"

namespace qdclgl {
namespace {

// A set that does nearly every step of the family in its own way: its own tests prove all of it.
constexpr std::string_view kApart = "ItemSet";

// The suite that proves what a class shares with its family; empty for a class of no family. One
// that only the library makes can't be looked into and is known by the members of its family.
std::string SuiteOf(const ClassTable& table) {
  bool is_entity = false;
  bool is_set = false;
  if (table.creatable()) {
    const Ref<Object> object = table.Create();
    is_entity = dynamic_cast<Entity*>(object.get()) != nullptr;
    is_set = dynamic_cast<EntityListBase*>(object.get()) != nullptr && table.name() != kApart;
  } else {
    is_entity = table.Find("SaveChanges") != nullptr && table.Find("Properties") != nullptr;
    is_set = table.Find("GetNext") != nullptr && table.Find("RecordSet") != nullptr;
  }
  const std::string suite = is_entity ? "EntitySuite" : is_set ? "SetSuite" : "";
  return suite.empty() ? suite : std::string(table.name()) + "/" + suite;
}

// The classes that the suites of this program run over, as "VoucherGroup/EntitySuite": those that
// were declared, whatever name their instance bears.
std::set<std::string> InstancesOfSuites() {
  std::set<std::string> instances;
  const auto& program = *::testing::UnitTest::GetInstance();
  for (int i = 0; i < program.total_test_suite_count(); ++i) {
    const ::testing::TestSuite& suite = *program.GetTestSuite(i);
    const std::string name = suite.name();
    if (!name.ends_with("/EntitySuite") && !name.ends_with("/SetSuite")) continue;
    const std::string param = suite.GetTestInfo(0)->value_param();  // "VoucherGroup typed"
    instances.insert(param.substr(0, param.find(' ')) + name.substr(name.find('/')));
  }
  return instances;
}

// The instances that the public classes ask for and that are not among `instances`, a line each.
std::string MissingFrom(const std::set<std::string>& instances) {
  std::string missing;
  for (const ClassTable* table : PublicClasses()) {
    const std::string suite = SuiteOf(*table);
    if (!suite.empty() && !instances.contains(suite)) missing += suite + "\n";
  }
  return missing;
}

TEST(Family, EveryPublicEntityAndSetStandsInTheListOfItsSuite) {
  EXPECT_EQ(MissingFrom(InstancesOfSuites()), "")
      << "declare the class in its test file, see tests/support/entity_suite.h and set_suite.h";
}

TEST(Family, AClassLeftOutOfItsListIsMissed) {
  const std::set<std::string> instances = InstancesOfSuites();
  for (const std::string& left_out : instances) {
    std::set<std::string> others = instances;
    others.erase(left_out);
    EXPECT_NE(MissingFrom(others).find(left_out + "\n"), std::string::npos) << left_out;
  }
  EXPECT_GT(instances.size(), 0u);
}

}  // namespace
}  // namespace qdclgl
