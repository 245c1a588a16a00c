// What the server's components tell of themselves, against what they do: who may call what, and the
// lists.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

#include "qdclgl/server/access/session.h"
#include "qdclgl/server/server.h"
#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

class ComponentsTest : public RecordsTest {
 protected:
  // An argument of the parameter's type that hardly any method can do something with.
  Argument Dummy(const MemberParameter& parameter) const {
    if (parameter.name == "PropsString") return Argument(props);
    if (parameter.type == "String") return Argument(std::string());
    if (parameter.type == "Date") return Argument(DateTime::FromYmd(2024, 1, 31));
    if (parameter.type == "Boolean") return Argument(false);
    if (parameter.type == "Dictionary") return Argument(Nothing);
    return Argument(Long{0});
  }
  // The refusal of a call as the user of the session makes it.
  std::string Refusal(const ServerComponent& component, const ClassMember& member) const {
    std::vector<Argument> arguments;
    for (const MemberParameter& parameter : member.parameters) {
      if (!parameter.optional) arguments.push_back(Dummy(parameter));
    }
    const std::string refusal =
        RefusalOf([&] { component.make()->Invoke(member.row.name, CallKind::kMethod, arguments); });
    // A batch that the call has begun.
    RefusalOf([&] { Call("QDSVGLBatch.BatchUpdate", "RollBack", props); });
    return refusal;
  }
};

TEST_P(ComponentsTest, AreSortedAndMakeObjectsOfTheirClass) {
  EXPECT_TRUE(std::ranges::is_sorted(ServerComponents(), {}, &ServerComponent::prog_id));
  for (const ServerComponent& component : ServerComponents()) {
    const Ref<Object> object = CreateObject(component.prog_id);
    EXPECT_EQ(object->Members(), component.table) << component.prog_id;
    EXPECT_EQ(object->ClassName(), component.table->name());
    EXPECT_NE(object, component.make());
    for (const MethodRight& right : component.rights) {
      EXPECT_NE(component.table->Find(right.method), nullptr)
          << component.prog_id << " has no method " << right.method;
    }
  }
}

// Each method is called by people with each of the roles, and refuses all but those that its right
// names. What the documentation tells of rights comes from the same rights.
TEST_P(ComponentsTest, EachMethodAsksForTheRightThatItStates) {
  const std::string roles[] = {"",        "reader", "preparer",     "checker",
                               "cashier", "poster", "administrator"};
  const auto called = [](const std::string& role) { return role.empty() ? "nobody" : "a " + role; };
  for (const std::string& role : roles) AddUser(called(role), role);
  int permitted = 0, refused = 0;
  for (const std::string& role : roles) {
    for (const ServerComponent& component : ServerComponents()) {
      for (const ClassMember& member : component.table->members()) {
        const std::string method =
            std::string(component.prog_id) + "." + std::string(member.row.name);
        Login(called(role));
        const auto right =
            std::ranges::find(component.rights, member.row.name, &MethodRight::method);
        const unsigned has = RolesFrom(role);
        const bool may = right == component.rights.end() ||
                         (has & static_cast<unsigned>(right->right.role | Role::kAdministrator)) ||
                         (has != 0 && right->right.role == Role::kReader);
        const std::string refusal = Refusal(component, member);
        EXPECT_EQ(refusal == "NotPermitted", !may)
            << method << " by " << called(role) << ": " << refusal;
        ++(may ? permitted : refused);
      }
    }
  }
  EXPECT_GT(permitted, 100);
  EXPECT_GT(refused, 50);
}

// Each cell of the table is what such a caller is answered; it was written by hand, and what has no
// row in it fails.
TEST_P(ComponentsTest, EachRoleMayCallWhatTheTableOfRightsSays) {
  const std::string callers[] = {"stranger", "roleless", "reader", "preparer",
                                 "checker",  "cashier",  "poster", "administrator"};
  for (const std::string& role : callers) {
    if (role != "stranger") AddUser("a " + role, role == "roleless" ? "" : role);
  }
  std::string table = "component.method";
  for (const std::string& caller : callers) table += " " + caller;
  table += "\n";
  for (const ServerComponent& component : ServerComponents()) {
    for (const ClassMember& member : component.table->members()) {
      table += std::string(component.prog_id) + "." + std::string(member.row.name);
      for (const std::string& caller : callers) {
        if (caller == "stranger") props = connection;
        else Login("a " + caller);
        const std::string refusal = Refusal(component, member);
        table += refusal == "NotPermitted" || refusal == "NotLoggedIn" ? " no" : " yes";
      }
      table += "\n";
    }
  }
  std::ifstream file(QDCLGL_SOURCE_DIR "/tests/server/access/rights.txt");
  const std::string expected{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(expected, table);
}

TEST_P(ComponentsTest, ARefusalNamesTheUserTheRolesAndTheRight) {
  AddUser("ann", "reader, checker");
  for (const ServerComponent& component : ServerComponents()) {
    for (const MethodRight& right : component.rights) {
      if (right.right.role != Role::kAdministrator) continue;
      Login("ann");
      EXPECT_EQ(SentenceOf([&] { Enter(props, right.right); }),
                "User ann (reader, checker) may not " + std::string(right.right.what) + ".");
    }
  }
}

TEST_P(ComponentsTest, EachListHasTheColumnsThatPeopleSeeFirst) {
  int lists = 0;
  for (const ServerComponent& component : ServerComponents()) {
    if (component.list == nullptr) continue;
    ++lists;
    std::vector<Argument> arguments;
    for (const MemberParameter& parameter : component.table->Find("GetList")->parameters) {
      if (!parameter.optional) arguments.push_back(Dummy(parameter));
    }
    const auto rows =
        component.make()->Invoke("GetList", CallKind::kMethod, arguments).As<Recordset>();
    std::istringstream columns{std::string(component.list->columns)};
    for (std::string column; columns >> column;) {
      EXPECT_NO_THROW(rows->FieldPosition(column))
          << "list " << component.list->name << " has no column " << column;
    }
    EXPECT_TRUE(component.list->help.size() > 5 && component.list->help.back() != '.');
  }
  EXPECT_GE(lists, 6);
}

QDCLGL_BOOKS_TEST(ComponentsTest);

}  // namespace
}  // namespace qdclgl::server::testing
