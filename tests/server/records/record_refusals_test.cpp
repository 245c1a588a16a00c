// Kinds of records: rows and callers that are refused, and change nothing.
#include <algorithm>

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/server.h"
#include "tests/server/records/record_suite.h"

namespace qdclgl::server::testing {
namespace {

using Column = RecordKind::Column;

// ---- Refused rows ----

TEST_P(RecordSuite, UnknownKeysAreRefused) {
  CreateSample();
  const std::string before = State();
  std::vector<std::string> keys = {"F",          "", "fversion", "FVersion ", "FName = 'x'; --",
                                   "machinename"};
  for (const Column& column : kind.columns) {
    std::string other_case(column.name);
    other_case[0] = static_cast<char>(other_case[0] ^ 0x20);
    keys.push_back(other_case);
    keys.push_back(std::string(column.name) + "s");
  }
  for (const std::string& key : keys) {
    ExpectRefusedSaves("BadValue", [&](Dictionary& row) { row.Put(key, "x"); });
  }
  const Ref<Dictionary> row = Sent(Values::kSample, 1);
  row->Put("FNmae", "misspelt");
  EXPECT_EQ(SentenceOf([&] { Create(row); }),
            std::string(kind.noun) + ": there is no column \"FNmae\".");
  EXPECT_EQ(State(), before);
}

TEST_P(RecordSuite, RequiredColumnsAreRequired) {
  CreateSample();
  const std::string before = State();
  for (const std::string_view column : kind.required) {
    ExpectRefusedSaves("Required", [&](Dictionary& row) { row.Remove(column); });
    for (const Variant& none : {Variant(""), Variant(Null), Variant(), Variant(Nothing)}) {
      ExpectRefusedSaves("Required", [&](Dictionary& row) { row.Put(column, none); });
    }
  }
  EXPECT_EQ(State(), before);
}

TEST_P(RecordSuite, UniqueColumnsAreUnique) {
  const Long first = CreateSample(), second = CreateSample(1);
  const std::string before = State();
  for (const auto& [column, refusal] : kind.unique) {
    std::vector<Variant> taken = {Record(first)->Value(column)};
    if (const Variant* spelled = Find(kind.spelled, column)) taken.push_back(*spelled);
    for (const Variant& text : taken) {
      ExpectRefusedSaves(refusal, [&, key = column](Dictionary& row) { row.Put(key, text); });
    }
    const Ref<Dictionary> row = Record(second);
    row->Put(column, taken.front());
    EXPECT_EQ(SentenceOf([&] { Update(second, row); }), Called(*Record(first)) + " has " +
                                                            std::string(column) + " " +
                                                            CStr(taken.front()) + " already.");
  }
  EXPECT_EQ(State(), before);
  Delete(first);
  CreateSample();  // a removed record leaves its place
}

TEST_P(RecordSuite, ATextThatAnotherProgramTakesInBetweenIsRefusedAsTaken) {
  const Long id = CreateSample();
  const std::string before = State();
  const std::string table(kind.table);
  for (const auto& [column, refusal] : kind.unique) {
    std::string columns, values;
    for (const std::string& name : ColumnsOf(kind.table)) {
      if (ToUpper(name) == ToUpper(kind.id)) continue;
      columns += (columns.empty() ? "" : ", ") + name;
      const bool is_unique = ToUpper(name) == ToUpper(column);
      values += (values.empty() ? "" : ", ") + (is_unique ? "CAST(? AS TEXT)" : name);
    }
    const Ref<Dictionary> row = Sent(Values::kSample, 1);
    const std::string sent = TypedText(row);
    const String text = row->Value(column).As<String>();
    bool interfered = false;
    Database::SetStatementHook([&](std::string_view sql) {
      if (interfered || !sql.starts_with("INSERT INTO " + table)) return;
      interfered = true;
      Books().Execute("INSERT INTO " + table + " (" + columns + ") SELECT " + values + " FROM " +
                          table + " WHERE " + std::string(kind.id) + " = ?",
                      text, id);
    });
    EXPECT_EQ(RefusalOf([&] { Create(row); }), refusal);
    Database::SetStatementHook(nullptr);
    EXPECT_TRUE(interfered);
    EXPECT_EQ(TypedText(row), sent);
  }
  EXPECT_EQ(State(), before);
}

TEST_P(RecordSuite, ValuesOfAnotherTypeAreRefused) {
  CreateSample();
  const std::string before = State();
  for (const Column* column : Written()) {
    for (const Variant& unfit : UnfitFor(column->sample)) {
      ExpectRefusedSaves("BadValue", [&](Dictionary& row) { row.Put(column->name, unfit); });
    }
  }
  for (const std::string_view key : {"MachineName", "IPAddress"}) {
    for (const Variant& unfit : UnfitFor("")) {
      ExpectRefusedSaves("BadValue", [&](Dictionary& row) { row.Put(key, unfit); });
    }
  }
  for (const char* method : {"Create", "Update"}) {
    const auto save = [&](const Variant& row) {
      return RefusalOf([&] {
        method[0] == 'C' ? Call(kind.update, method, props, row)
                         : Call(kind.update, method, props, Long{1}, row);
      });
    };
    EXPECT_EQ(save(Nothing), "error 91") << method;
    EXPECT_EQ(save("a text"), "error 13") << method;
    EXPECT_EQ(save(Make<Vector>()), "error 13") << method;
  }
  EXPECT_EQ(State(), before);
}

TEST_P(RecordSuite, TextsAreDataWhateverTheyHold) {
  int number = 0;
  for (const std::string& text :
       {"'; DROP TABLE " + std::string(kind.table) + "; -- \" \\ ? :p1 $1 %s",
        std::string(" 元 😀 \xC3\xA9 \n\t "), std::string("NULL"), std::string("%_[a-z]*")}) {
    const Ref<Dictionary> row = Sent(Values::kSample, ++number);
    for (const Column* column : WrittenFreely()) row->Put(column->name, text);
    const Long id = Create(row);
    for (const Column* column : WrittenFreely()) {
      EXPECT_EQ(CStr(Record(id)->Value(column->name)), text) << column->name;
      const Ref<Recordset> found =
          List(0, std::string(column->name) + " = " + Literal(text) + " AND " +
                      std::string(kind.id) + " = " + std::to_string(id));
      EXPECT_EQ(found->RecordCount(), 1) << column->name;
    }
  }
  EXPECT_EQ(Breaches(), "");
}

TEST_P(RecordSuite, TextsAreAsLongAsTheirColumnsAllow) {
  const Ref<Dictionary> row = Sent(Values::kSample);
  for (const Column* column : WrittenFreely()) {
    const std::size_t* longest = Find(kind.longest, column->name);
    std::string text(longest == nullptr ? 100'000 : *longest - 4, 'x');
    text += "😀元x";  // 4 UTF-16 units
    row->Put(column->name, text);
  }
  const Long id = Create(row);
  for (const Column* column : WrittenFreely()) {
    EXPECT_EQ(CStr(Record(id)->Value(column->name)), CStr(row->Value(column->name)))
        << column->name;
  }
  const std::string before = State();
  for (const auto& [column, longest] : kind.longest) {
    const std::string text = std::string(longest - 3, 'x') + "😀😀";
    ExpectRefusedSaves("BadValue", [&, key = column](Dictionary& sent) { sent.Put(key, text); });
    const Ref<Dictionary> too_long = Sent(Values::kSample, 1);
    too_long->Put(column, text);
    EXPECT_EQ(SentenceOf([&] { Create(too_long); }), std::string(kind.noun) + ": " +
                                                         std::string(column) + " is longer than " +
                                                         std::to_string(longest) + " characters.");
  }
  EXPECT_EQ(State(), before);
}

// ---- Rights ----

bool May(std::string_view roles, std::string_view role) {
  if (roles.empty()) return false;
  return role == "reader" || roles.find("administrator") != roles.npos ||
         roles.find(role) != roles.npos;
}

TEST_P(RecordSuite, EveryMethodAsksForItsRole) {
  using Method = RecordKind::Method;
  std::vector<Method> methods = {{kind.info, "GetDetail", kind.reader},
                                 {kind.info, "GetList", kind.reader},
                                 {kind.update, "Create", kind.writer},
                                 {kind.update, "Update", kind.writer},
                                 {kind.update, "Delete", kind.writer}};
  if (!kind.id_argument.empty()) methods.push_back({kind.info, "ExistenceCheck", kind.reader});
  if (!kind.text_key.empty()) methods.push_back({kind.info, kind.detail_by_text, kind.reader});
  methods.insert(methods.end(), kind.further_methods.begin(), kind.further_methods.end());
  for (const ServerComponent& component : ServerComponents()) {
    if (component.prog_id != kind.info && component.prog_id != kind.update) continue;
    for (const ClassMember& member : component.table->members()) {
      EXPECT_EQ(std::ranges::count_if(methods,
                                      [&](const Method& method) {
                                        return method.component == component.prog_id &&
                                               method.name == member.row.name;
                                      }),
                1)
          << component.prog_id << "." << member.row.name << ": who may call it is not declared";
    }
  }

  const Long id = CreateSample();
  const auto call = [&](const Method& method, const std::string& who) {
    const Ref<Object> component = Component(method.component);
    if (method.name == "GetList") return void(component->Call("GetList", who));
    if (method.name == kind.detail_by_text) return void(component->Call(method.name, who, "x"));
    if (method.name == "Create") {
      return void(component->Call("Create", who, Sent(Values::kSample, 1)));
    }
    if (method.name == "Update") {
      const Ref<Dictionary> row = Sent(Values::kSample);
      row->Put(kVersion, Long{1});
      return void(component->Call("Update", who, id, row));
    }
    std::vector<Argument> arguments = {who, id};
    arguments.insert(arguments.end(), method.arguments.begin(), method.arguments.end());
    component->Invoke(method.name, CallKind::kMethod, arguments);
  };

  const std::string administrator = props;
  const std::string_view all[] = {"reader",  "preparer", "checker",
                                  "cashier", "poster",   "administrator"};
  std::vector<std::string> callers = {""};
  std::string but_administrators, but_writers;
  for (const std::string_view role : all) {
    callers.emplace_back(role);
    for (std::string* roles : {&but_administrators, &but_writers}) {
      if (role == "administrator" || (roles == &but_writers && role == kind.writer)) continue;
      *roles += (roles->empty() ? "" : ", ") + std::string(role);
    }
  }
  callers.push_back(but_administrators);
  if (but_writers != but_administrators) callers.push_back(but_writers);

  std::string expected, actual;
  const auto ask = [&](const Method& method, const std::string& caller, const std::string& who,
                       std::string_view answer) {
    const std::string cell =
        std::string(method.component) + "." + std::string(method.name) + ", " + caller + ": ";
    expected += cell + std::string(answer) + "\n";
    // What is allowed is done in a batch that is taken back. Who can begin none only reads.
    const bool in_batch = RefusalOf([&] { Call(kBatch, "Begin", who); }) == "none";
    actual += cell + RefusalOf([&] { call(method, who); }) + "\n";
    if (in_batch) Call(kBatch, "RollBack", who);
  };
  for (const std::string& roles : callers) {
    props = administrator;
    AddUser("the " + roles, roles);
    const std::string who = Login("the " + roles);
    const std::string before = State();
    for (const Method& method : methods) {
      ask(method, roles, who, May(roles, method.role) ? "none" : "NotPermitted");
    }
    EXPECT_EQ(State(), before) << roles;
  }
  const std::string ended = Login("administrator");
  Call("QDSVGLSession.SessionUpdate", "Logout", ended);
  const std::string before = State();
  for (const Method& method : methods) {
    ask(method, "nobody", connection, "NotLoggedIn");
    ask(method, "who has left", ended, "NotLoggedIn");
  }
  EXPECT_EQ(State(), before);
  EXPECT_EQ(actual, expected);
}

}  // namespace
}  // namespace qdclgl::server::testing
