// Two people at work on the same books, in every order: of their calls, and with one of them held
// up before each statement of his last call while the other goes through with his. What comes of
// each order stands in outcomes.txt, and is the same on every database.
#include <algorithm>
#include <fstream>
#include <functional>
#include <sstream>

#include "qdclgl/server/vouchers/voucher.h"
#include "tests/server/interleavings/player.h"
#include "tests/server/item_records.h"
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

// What somebody holds between his calls.
struct Hands {
  std::string props;
  Ref<Dictionary> row;
  bool found = false;
};

struct Step {
  const char* name;
  std::function<void(Hands&)> call;
};

// What somebody does, call by call. What is refused ends it, by `gives_up` where there is one.
struct Work {
  const char* name;
  const char* user;
  std::vector<Step> steps;
  std::function<void(Hands&)> gives_up = nullptr;
};

class Stage;

struct Scene {
  const char* name;
  Work first, second;
  std::function<void(Stage&)> setting;
  std::function<std::string(Stage&)> outcome;
};

// ---- The books that a scene is played on ----

constexpr Long kVoucher = 1;

class Stage : public LedgerTest {
 public:
  Stage(DatabaseKind kind, const Scene& scene) : LedgerTest(kind) {
    for (const char* name : {"Ann", "Bob"}) AddUser(name, "preparer, checker, cashier, poster");
    AddUser("Cleo", "administrator");
    Save(Sale(100));
    if (scene.setting) scene.setting(*this);
  }
  void TestBody() override {}

  using LedgerTest::AddUser;
  using LedgerTest::BalanceText;
  using LedgerTest::Books;
  using LedgerTest::Breaches;
  using LedgerTest::Call;
  using LedgerTest::connection;
  using LedgerTest::Line;
  using LedgerTest::props;
  using LedgerTest::Read;
  using LedgerTest::Sale;
  using LedgerTest::Save;
  using LedgerTest::Step;
  using LedgerTest::Voucher;

  // What account 1000 Cash stands at.
  Currency CashPosted() {
    return Books()
        .QueryValue<Currency>(
            "SELECT COALESCE(SUM(FDebit - FCredit), 0) FROM t_Balance b JOIN"
            " t_Account a ON a.FAccountID = b.FAccountID WHERE a.FNumber = '1000'")
        .value();
  }
};

// ---- What people do ----

template <class... Args>
Variant CallUpdate(std::string_view method, Args&&... args) {
  return CreateObject(VoucherUpdate::kProgID)->Call(method, std::forward<Args>(args)...);
}

void ReadVoucher(Hands& hands) {
  Long id = kVoucher;
  hands.row = CreateObject(VoucherInfo::kProgID)
                  ->Call("GetDetail", hands.props, ByRef(id), false)
                  .As<Dictionary>();
}

// Gives both lines another amount.
std::function<void(Hands&)> SaveAmount(Currency amount) {
  return [amount](Hands& hands) {
    const auto lines = hands.row->Value("_Entries").As<Vector>();
    for (Long i = lines->LowerBound(); i <= lines->UpperBound(); ++i) {
      lines->Item(i).As<Dictionary>()->Value("FAmount", amount);
    }
    Long id = kVoucher;
    CallUpdate("Update", hands.props, ByRef(id), hands.row);
  };
}

std::function<void(Hands&)> SaveNew(Currency amount, std::string_view reference = "") {
  return [amount, reference](Hands& hands) {
    if (hands.found) return;
    CallUpdate("Create", hands.props,
               Stage::Sale(amount, "2024-01-15", {{"FReference", reference}}));
  };
}

std::function<void(Hands&)> TakeStep(const char* step, bool way = true) {
  return [step, way](Hands& hands) {
    Long id = kVoucher;
    if (std::string_view(step).ends_with("Post")) {
      CallUpdate(step, hands.props, ByRef(id));
    } else {
      CallUpdate(step, hands.props, ByRef(id), way);
    }
  };
}

void DeleteVoucher(Hands& hands) {
  Long id = kVoucher;
  CallUpdate("Delete", hands.props, ByRef(id), true, "", "");
}

std::function<void(Hands&)> Batch(const char* method) {
  return [method](Hands& hands) {
    CreateObject("QDSVGLBatch.BatchUpdate")->Call(method, hands.props);
  };
}

// As the command line's imports do.
void BeginAlone(Hands& hands) {
  CreateObject("QDSVGLBatch.BatchUpdate")->Call("Begin", hands.props, true);
}

void LookForReference(Hands& hands) {
  Long options = 0;
  String filter = "FReference = 'INV-1'", sort;
  hands.found = !CreateObject(VoucherInfo::kProgID)
                     ->Call("GetList", hands.props, ByRef(options), ByRef(filter), ByRef(sort))
                     .As<Recordset>()
                     ->Eof();
}

std::function<void(Hands&)> CallPeriod(const char* method) {
  return [method](Hands& hands) {
    CreateObject("QDSVGLPeriod.PeriodUpdate")->Call(method, hands.props);
  };
}

// A preparer's save; he who edits reads first.
Work Edits(const char* user, Currency amount) {
  return {"save", user, {{"reads", ReadVoucher}, {"saves", SaveAmount(amount)}}};
}

Work Takes(const char* user, const char* step, const char* name) {
  return {name, user, {{name, TakeStep(step)}}};
}

// An import looks for what is there inside of its batch.
Work Imports(const char* user) {
  return {"import",
          user,
          {{"begins", BeginAlone},
           {"looks", LookForReference},
           {"stores", SaveNew(7, "INV-1")},
           {"commits", Batch("Commit")}},
          Batch("RollBack")};
}

// ---- What came of it ----

std::string VoucherText(Stage& stage) {
  const Ref<Dictionary> row = stage.Read(kVoucher, true);
  if (!row) return "no voucher";
  const auto amount =
      row->Value("_Entries").As<Vector>()->Item(1).As<Dictionary>()->Value("FAmount");
  std::string text = "voucher of " + ConcatenatedText(amount);
  for (const auto& [key, word] :
       {std::pair{"FChecked", ", checked"}, {"FPosted", ", posted"}, {"FDeleted", ", deleted"}}) {
    if (CBool(row->Value(key))) text += word;
  }
  return text;
}

std::string PeriodText(Stage& stage) {
  return VoucherText(stage) + ", in period " +
         *stage.Books().QueryValue<std::string>("SELECT FValue FROM t_SystemProfile WHERE "
                                                "FCategory = 'GL' AND FKey = 'CurrentPeriod'");
}

std::string VouchersText(Stage& stage) {
  std::string text = "vouchers";
  for (const auto& [number] : stage.Books().Query<Long>(
           "SELECT FNumber FROM t_Voucher WHERE FDeleted = 0 ORDER BY FNumber")) {
    text += " " + std::to_string(number);
  }
  return text;
}

// ---- The scenes ----

void ReadBob(Hands& hands) {
  const auto list = CreateObject("QDSVGLUser.UserInfo")
                        ->Call("GetList", hands.props, "FName = 'Bob'", "")
                        .As<Recordset>();
  hands.row = CreateObject("QDSVGLUser.UserInfo")
                  ->Call("GetDetail", hands.props, list->FieldValue(list->FieldPosition("FUserID")))
                  .As<Dictionary>();
}

void DemoteBob(Hands& hands) {
  hands.row->Value("FRoles", "reader");
  CreateObject("QDSVGLUser.UserUpdate")
      ->Call("Update", hands.props, hands.row->Value("FUserID"), hands.row);
}

// Someone's work of one call of a component. The rows among the arguments are made by who calls, on
// whose thread they live.
template <class... Arguments>
std::function<void(Hands&)> Calls(const char* component, const char* method,
                                  Arguments... arguments) {
  const auto made = []<class Argument_>(const Argument_& argument) {
    if constexpr (std::is_invocable_v<Argument_>) return argument();
    else return argument;
  };
  return
      [=](Hands& hands) { CreateObject(component)->Call(method, hands.props, made(arguments)...); };
}
Work Changes(const char* step, std::function<void(Hands&)> call) {
  return {step, "administrator", {{step, std::move(call)}}};
}

Work CleoDoes(const char* step, std::function<void(Hands&)> call) {
  return {step, "Cleo", {{step, std::move(call)}}};
}

// Bob's save of a voucher with that line and its counterpart on Sales.
Work SavesLine(std::function<Ref<Dictionary>()> line) {
  return {"save", "Bob", {{"saves", [line](Hands& hands) {
                             CallUpdate(
                                 "Create", hands.props,
                                 Stage::Voucher("2024-01-15", {line(), Stage::Line("3000", 0, 5)}));
                           }}}};
}
Ref<Dictionary> LineOfAnna() {
  return Stage::Line("1130", 5, 0, {{"_Details", Variant(DetailOfAnna())}});
}
Ref<Dictionary> LineInTonnes() {
  return Stage::Line("5000", 5, 0, {{"FQuantity", 2.0}, {"FMeasureUnitID", Long{3}}});
}
Ref<Dictionary> NewRow(std::string_view number) {
  return ::qdclgl::testing::Row({{"FNumber", number}, {"FName", number}});
}

Work SavesProject() {
  return CleoDoes("saves", Calls("QDSVGLItem.ItemUpdate", "Create", kProjects,
                                 [] { return Project("large"); }));
}

template <auto make>
void Makes(Stage& stage) {
  make(stage.props);
}

std::string LinesInText(Stage& stage) {
  std::string text = VouchersText(stage);
  for (const auto& [quantity, base] : stage.Books().Query<double, double>(
           "SELECT FQuantity, FBaseQuantity FROM t_VoucherEntry WHERE FMeasureUnitID = 3")) {
    text += ", " + std::to_string(std::lround(quantity)) + " counts as " +
            std::to_string(std::lround(base));
  }
  for (const auto& [number, coefficient] : stage.Books().Query<std::string, double>(
           "SELECT FNumber, FCoefficient FROM t_MeasureUnit ORDER BY FMeasureUnitID")) {
    text += ", " + number + " " + ConcatenatedText(Variant(coefficient));
  }
  return text;
}

// The items of the class of projects as the list has them, and what became of its field.
std::string ProjectsText(Stage& stage) {
  std::string text;
  for (const auto& [name] : stage.Books().Query<std::string>(
           "SELECT FName FROM t_ItemClassField WHERE FItemClassID = 1000 AND FPropID > 100")) {
    text += "field " + name;
  }
  if (text.empty()) text = "no field";
  const auto items =
      stage.Books().QueryValue<Long>("SELECT COUNT(*) FROM t_Item WHERE FItemClassID = 1000");
  return text + ", items: " + std::to_string(*items);
}

std::vector<Scene> Scenes() {
  const auto posted = [](Stage& stage) { stage.Step("Post", kVoucher); };
  const Work closes = {"close", "Bob", {{"closes", CallPeriod("Close")}}};
  const auto saves_new = [](const char* user, Currency amount) {
    return Work{"save", user, {{"saves", SaveNew(amount)}}};
  };
  return {
      {"two save one voucher", Edits("Ann", 1), Edits("Bob", 2), nullptr, VoucherText},
      {"two save new vouchers", saves_new("Ann", 1), saves_new("Bob", 2), nullptr, VouchersText},
      {"one saves, one posts", Edits("Ann", 1), Takes("Bob", "Post", "posts"), nullptr,
       [](Stage& stage) {
         return VoucherText(stage) + ", cash of " + ConcatenatedText(stage.CashPosted());
       }},
      {"one posts, one closes", Takes("Ann", "Post", "posts"), closes, nullptr, PeriodText},
      {"one takes a posting back, one closes", Takes("Ann", "UnPost", "takes it back"), closes,
       posted, PeriodText},
      {"one deletes, one checks",
       {"delete", "Ann", {{"deletes", DeleteVoucher}}},
       Takes("Bob", "Check", "checks"),
       nullptr,
       VoucherText},
      {"two import one voucher", Imports("Ann"), Imports("Bob"), nullptr, VouchersText},
      {"one wants checks before posting, one posts",
       Changes("sets", Calls("QDSVBase.SystemProfile", "SetProfile", "GL", "CheckBeforePost", "1")),
       Takes("Bob", "Post", "posts"), nullptr, VoucherText},
      {"one puts an account below another, one saves a line on that",
       Changes("opens",
               Calls("QDSVGLAccount.AccountUpdate", "Create", [] { return NewRow("2000.01"); })),
       SavesLine([] { return Stage::Line("2000", 5, 0); }), nullptr, VouchersText},
      {"one removes a settlement type, one saves a line that names it",
       Changes("removes", Calls("QDSVGLSettType.SettTypeUpdate", "Delete", Long{1})), SavesLine([] {
         return Stage::Line("1000", 5, 0, {{"FSettleTypeID", Long{1}}});
       }),
       [](Stage& stage) {
         stage.Call("QDSVGLSettType.SettTypeUpdate", "Create", stage.props,
                    ::qdclgl::testing::Row({{"FNumber", "CHQ"}}));
       },
       VouchersText},
      {"one removes an item, one saves a line that names it",
       Changes("removes", Calls("QDSVGLItem.ItemUpdate", "Delete", Long{1})), SavesLine(LineOfAnna),
       Makes<MakeReceivables>, VouchersText},
      {"one puts an item below another, one saves a line that names that",
       Changes("puts", Calls("QDSVGLItem.ItemUpdate", "Create", kCustomers,
                             [] {
                               const auto row = NewRow("C001.1");
                               row->Put("FParentID", Long{1});
                               return row;
                             })),
       SavesLine(LineOfAnna), Makes<MakeReceivables>, VouchersText},
      {"one removes a unit, one saves a line that names it",
       Changes("removes", Calls("QDSVGLUnit.MeasureUnitUpdate", "DeleteUnit", Long{3})),
       SavesLine(LineInTonnes), Makes<MakeWeights>, LinesInText},
      {"one changes coefficients, one saves a line in such a unit",
       Changes("adjusts",
               Calls("QDSVGLUnit.MeasureUnitUpdate", "AdjustCoefficient", Long{1}, 1000.0, true)),
       SavesLine(LineInTonnes), Makes<MakeWeights>, LinesInText},
      {"two change coefficients",
       Changes("adjusts",
               Calls("QDSVGLUnit.MeasureUnitUpdate", "AdjustCoefficient", Long{1}, 1000.0, true)),
       CleoDoes("sets the default",
                Calls("QDSVGLUnit.MeasureUnitUpdate", "SetDefaultMeasureUnit", Long{1}, Long{1})),
       Makes<MakeWeights>, LinesInText},
      {"one renames a field of a class, one saves an item with it",
       Changes("renames", [](Hands& hands) { RenameProjectField(hands.props); }), SavesProject(),
       Makes<MakeProjects>, ProjectsText},
      {"one removes a field of a class, one saves an item with it",
       Changes("removes", [](Hands& hands) { RemoveProjectField(hands.props); }), SavesProject(),
       Makes<MakeProjects>, ProjectsText},
      {"one removes a class, one saves an item of it",
       Changes("removes", Calls("QDSVGLItemClass.ItemClassUpdate", "Delete", kProjects)),
       SavesProject(), Makes<MakeProjects>, ProjectsText},
      {"one has an account ask for items, one saves a line on it without",
       Changes("asks",
               [](Hands& hands) {
                 const auto row = CreateObject("QDSVGLAccount.AccountInfo")
                                      ->Call("GetDetailByNumber", hands.props, "2000")
                                      .As<Dictionary>();
                 row->Put(RowKey("_Items"), Variant(CustomersAsked()));
                 CreateObject("QDSVGLAccount.AccountUpdate")
                     ->Call("Update", hands.props, row->Value("FAccountID"), row);
               }),
       SavesLine([] { return Stage::Line("2000", 5, 0); }), nullptr, VouchersText},
      {"one removes an account, one saves a settlement account on it",
       Changes("removes", Calls("QDSVGLAccount.AccountUpdate", "Delete", Long{2})),
       CleoDoes("saves", Calls("QDSVGLSettAcct.SettAcctUpdate", "Create",
                               [] {
                                 const auto row = NewRow("BANK");
                                 row->Put("FAcctID", Long{2});
                                 return row;
                               })),
       nullptr,
       [](Stage& stage) {
         const auto rows = stage.Books().Query<Long>("SELECT FAcctID FROM t_SettAcct");
         return std::to_string(rows.size()) + " settlement accounts";
       }},
      {"one takes the other's role away, the other saves",
       {"demote", "administrator", {{"reads", ReadBob}, {"demotes", DemoteBob}}},
       saves_new("Bob", 2),
       nullptr,
       VouchersText},
  };
}

// ---- Playing ----

struct Actor {
  Actor(Stage& stage, const Work& its_work)
      : work(its_work), player(stage.connection, its_work.user, stage.Books()) {
    hands.props = player.props();
  }
  // What he holds belongs to his thread.
  ~Actor() {
    player.Begin([this] { hands.row = nullptr; });
    player.Outcome();
  }

  bool Ends() const { return refused || next == work.steps.size(); }
  const Step& NextStep() const { return work.steps[next]; }

  void Begin(int stop = Player::kNoStop) {
    running = true;
    player.Begin([this] { NextStep().call(hands); }, stop);
  }
  // Takes note of what came of the step.
  void Finish() {
    outcome = player.Outcome();
    running = false;
    ++next;
    if (outcome == "done") return;
    refused = true;
    if (!work.gives_up) return;
    player.Begin([this] { work.gives_up(hands); });
    player.Outcome();
  }
  void Do() {
    Begin();
    Finish();
  }

  const Work& work;
  Hands hands;
  Player player;
  std::size_t next = 0;
  bool running = false;
  bool refused = false;
  std::string outcome;
};

std::string TextOf(const Actor& actor) {
  return std::string(actor.work.user) + " " + actor.outcome;
}

std::string Result(const Scene& scene, Stage& stage, const Actor& one, const Actor& other) {
  EXPECT_EQ(stage.Breaches(), "") << scene.name;
  return TextOf(one) + ", " + TextOf(other) + ": " + scene.outcome(stage);
}

// One order of all calls, a letter for each: '1' and '2'. Who must wait for the other goes on when
// the other has let go; an order that asks him to act meanwhile is no order, and gives "".
std::string PlayCalls(DatabaseKind kind, const Scene& scene, const std::string& order) {
  Stage stage(kind, scene);
  Actor first(stage, scene.first), second(stage, scene.second);
  std::string line;
  bool impossible = false;
  const auto settle = [&](Actor& actor, Actor& other) {
    if (!actor.running || actor.player.Settle(other.player) == Player::State::kWaiting) return;
    actor.Finish();
  };
  for (const char turn : order) {
    Actor& actor = turn == '1' ? first : second;
    Actor& other = turn == '1' ? second : first;
    if (actor.running) {
      impossible = true;
      break;
    }
    if (actor.Ends()) continue;
    if (!line.empty()) line += ", ";
    line += std::string(actor.work.user) + " " + actor.NextStep().name;
    actor.Begin();
    settle(actor, other);
    if (actor.running) line += " (waits)";
    settle(other, actor);
  }
  // Whoever holds what the other waits for ends first.
  for (Actor* actor : {&first, &second}) {
    Actor& other = actor == &first ? second : first;
    if (other.running) {
      while (!actor->Ends()) actor->Do();
    }
  }
  for (Actor* actor : {&first, &second}) {
    if (actor->running) actor->Finish();
    while (!actor->Ends()) actor->Do();
  }
  return impossible ? "" : line + "\n    " + Result(scene, stage, first, second) + "\n";
}

// The calls before the last are done; one person's last call stands still before a statement while
// the other does all that is left to him, or waits.
struct Held {
  bool reached;  // whether there was such a statement
  std::string text;
};
Held PlayHeld(DatabaseKind kind, const Scene& scene, bool holds_first, int stop) {
  Stage stage(kind, scene);
  Actor first(stage, scene.first), second(stage, scene.second);
  Actor& held = holds_first ? first : second;
  Actor& other = holds_first ? second : first;
  for (Actor* actor : {&held, &other}) {
    // A batch keeps everybody else out: there is nothing to do before it.
    while (!actor->work.gives_up && actor->next + 1 < actor->work.steps.size()) actor->Do();
  }
  held.Begin(stop);
  const bool reached = held.player.Settle(other.player) == Player::State::kStanding;
  std::string waits;
  if (reached) {
    while (!other.Ends() && !other.running) {
      other.Begin();
      if (other.player.Settle(held.player) == Player::State::kWaiting) {
        waits = std::string(other.work.user) + " waits; ";
      } else {
        other.Finish();
      }
    }
    held.player.GoOn();
  }
  held.Finish();
  while (!held.Ends()) held.Do();
  if (other.running) other.Finish();
  while (!other.Ends()) other.Do();
  return {reached, waits + Result(scene, stage, first, second)};
}

std::string Played(DatabaseKind kind, const Scene& scene, int& played) {
  std::string text = std::string(scene.name) + "\n";
  std::string order =
      std::string(scene.first.steps.size(), '1') + std::string(scene.second.steps.size(), '2');
  // Where both do the same, who begins is one of them.
  const bool alike = std::string_view(scene.first.name) == scene.second.name;
  std::vector<std::string> seen;
  do {
    if (alike && order.front() == '2') continue;
    ++played;
    const std::string line = PlayCalls(kind, scene, order);
    // A refusal cuts orders short; they are the same then.
    if (line.empty() || std::ranges::find(seen, line) != seen.end()) continue;
    seen.push_back(line);
    text += "  " + line;
  } while (std::ranges::next_permutation(order).found);
  for (const bool holds_first : {true, false}) {
    if (alike && !holds_first) continue;
    text += std::string("  ") + (holds_first ? scene.first : scene.second).user +
            " is held up before each statement\n";
    std::string last;
    for (int stop = 0;; ++stop) {
      ++played;
      const Held held = PlayHeld(kind, scene, holds_first, stop);
      if (!held.reached) break;
      if (held.text != last) text += "    " + held.text + "\n";
      last = held.text;
    }
  }
  return text;
}

// ---- Every scene, on every database ----

void PrintTo(const Scene& scene, std::ostream* out) { *out << scene.name; }

using SceneOnDatabase = std::tuple<DatabaseKind, Scene>;

std::string NameOfScene(const ::testing::TestParamInfo<SceneOnDatabase>& info) {
  const auto& [kind, scene] = info.param;
  std::string name = NameOf({kind, info.index}) + "_" + scene.name;
  const auto is_part = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  std::ranges::replace_if(name, std::not_fn(is_part), '_');
  return name;
}

class Interleavings : public ::testing::TestWithParam<SceneOnDatabase> {};
INSTANTIATE_TEST_SUITE_P(, Interleavings,
                         ::testing::Combine(::testing::ValuesIn(Databases()),
                                            ::testing::ValuesIn(Scenes())),
                         NameOfScene);

std::string Outcomes() {
  std::stringstream text;
  text << std::ifstream(QDCLGL_SOURCE_DIR "/tests/server/interleavings/outcomes.txt").rdbuf();
  return text.str();
}

TEST_P(Interleavings, EveryOrderOfTwoPeoplesWorkEndsAsItIsWritten) {
  const auto& [kind, scene] = GetParam();
  int played = 0;
  const std::string text = Played(kind, scene, played) + "\n";
  RecordProperty("orders", played);
  const std::string written = Outcomes();
  const std::size_t begin = ("\n\n" + written).find("\n\n" + text.substr(0, text.find('\n') + 1));
  ASSERT_NE(begin, written.npos) << "outcomes.txt has nothing of it:\n" << text;
  const std::size_t end = written.find("\n\n", begin);
  EXPECT_EQ(text, written.substr(begin, end == written.npos ? end : end + 2 - begin));
}

// What is written of a scene that is not played any more would be found wrong by no scene.
TEST(InterleavingsWritten, AreOfTheScenesInTheirOrder) {
  std::istringstream written(Outcomes());
  std::vector<std::string> titles, names;
  for (std::string line; std::getline(written, line);) {
    if (!line.empty() && line.front() != ' ') titles.push_back(line);
  }
  for (const Scene& scene : Scenes()) names.emplace_back(scene.name);
  EXPECT_EQ(titles, names);
}

}  // namespace
}  // namespace qdclgl::server::testing
