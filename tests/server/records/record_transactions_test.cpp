// Kinds of records: versions, saves at once, failures, batches, and what the trail tells of it all.
#include <algorithm>
#include <thread>

#include "qdclgl/frame/objects/conversions.h"
#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/server/db/columns.h"
#include "qdclgl/server/db/connections.h"
#include "tests/server/records/record_suite.h"
#include "tests/support/json.h"
#include "tests/support/meeting_point.h"

namespace qdclgl::server::testing {
namespace {

using qdclgl::testing::Json;
using qdclgl::testing::ParseJson;

using qdclgl::testing::MeetingPoint;
using Column = RecordKind::Column;

// ---- Versions ----

TEST_P(RecordSuite, AnOldVersionIsRefusedByNameAndVersions) {
  const Long id = CreateSample();
  const Ref<Dictionary> mine = Record(id);
  const Ref<Dictionary> hers = Sent(Values::kChanged);
  hers->Put(kVersion, Long{1});
  for (int i = 0; i < 2; ++i) Update(id, hers);
  const std::string before = State(), called = Called(*Record(id));
  for (const Long version : {1, 2, 4, -3}) {
    mine->Put(kVersion, version);
    const std::string sent = TypedText(mine);
    EXPECT_EQ(RefusalOf([&] { Update(id, mine); }), "Changed") << version;
    EXPECT_EQ(SentenceOf([&] { Update(id, mine); }),
              called +
                  ": saved by somebody else in the meantime; it has version 3, the row sent is "
                  "version " +
                  std::to_string(version) + ".");
    EXPECT_EQ(TypedText(mine), sent);
  }
  EXPECT_EQ(State(), before);
}

TEST_P(RecordSuite, ARowWithoutItsVersionIsRefused) {
  const Long id = CreateSample();
  const Ref<Dictionary> row = Record(id);
  const std::string before = State();
  row->Remove(kVersion);
  EXPECT_EQ(RefusalOf([&] { Update(id, row); }), "NoVersion");
  EXPECT_FALSE(row->Contains(kVersion));
  for (const Variant& none : {Variant(Long{0}), Variant(Null), Variant(), Variant("")}) {
    row->Put(kVersion, none);
    EXPECT_EQ(RefusalOf([&] { Update(id, row); }), "NoVersion");
  }
  for (const Variant& unfit : UnfitFor(Long{1})) {
    row->Put(kVersion, unfit);
    EXPECT_EQ(RefusalOf([&] { Update(id, row); }), "BadValue");
  }
  EXPECT_EQ(State(), before);
}

TEST_P(RecordSuite, AnUnknownRecordIsNotFound) {
  const Long known = CreateSample();
  const Ref<Dictionary> row = Record(known);
  const std::string before = State(), sent = TypedText(row);
  for (const Long id : {Long{0}, Long{-1}, kNoRecord}) {
    EXPECT_EQ(RefusalOf([&] { Update(id, row); }), "NotFound") << id;
    EXPECT_EQ(RefusalOf([&] { Delete(id); }), "NotFound") << id;
    EXPECT_EQ(RefusalOf([&] { Delete(id, 1); }), "NotFound") << id;
    EXPECT_EQ(Detail(id), nullptr) << id;
  }
  EXPECT_EQ(SentenceOf([&] { Update(kNoRecord, row); }),
            std::string(kind.noun) + " with id " + std::to_string(kNoRecord) + ": there is none.");
  EXPECT_EQ(State(), before);
  EXPECT_EQ(TypedText(row), sent);
}

TEST_P(RecordSuite, OfTwoSessionsTheSecondToSaveIsRefused) {
  const Long id = CreateSample();
  Long read_by_others = 0;
  InAnotherSession([&] { read_by_others = VersionOf(id); });
  Update(id, Detail(id));
  InAnotherSession([&] {
    const Ref<Dictionary> row = Record(id);
    row->Put(kVersion, read_by_others);
    EXPECT_EQ(RefusalOf([&] { Update(id, row); }), "Changed");
    Update(id, Detail(id));
  });
  EXPECT_EQ(VersionOf(id), 3) << "nobody's save is lost";
}

TEST_P(RecordSuite, OfSessionsThatSaveAtOnceOneGetsThrough) {
  const Long id = CreateSample();
  std::vector<std::string> sessions = {props, Login("administrator"), Login("administrator")};
  std::vector<std::string> updates(sessions.size()), creates(sessions.size());
  MeetingPoint together(static_cast<int>(sessions.size()));
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < sessions.size(); ++i) {
    threads.emplace_back([&, i] {
      SetApartmentStarted(true);
      const std::string& own = sessions[i];
      auto row = Call(kind.info, "GetDetail", own, Long{id}).As<Dictionary>();
      together.ArriveAndWait();
      updates[i] = RefusalOf([&] { Call(kind.update, "Update", own, Long{id}, row); });
      for (const auto& [column, refusal] : kind.unique) {
        row->Put(column, row->Value(column).As<String>() + "7");
      }
      together.ArriveAndWait();
      creates[i] = RefusalOf([&] { Call(kind.update, "Create", own, row); });
      row = nullptr;
      Connections::OfThisThread().CloseAll();
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::ranges::sort(updates);
  EXPECT_EQ(updates, (std::vector<std::string>{"Changed", "Changed", "none"}));
  EXPECT_EQ(VersionOf(id), 2);
  std::ranges::sort(creates);
  if (!kind.unique.empty()) {
    const std::string taken(kind.unique.front().second);
    EXPECT_EQ(creates, (std::vector<std::string>{taken, taken, "none"}));
  }
}

// ---- Failures and batches ----

TEST_P(RecordSuite, AFailureAtAnyStatementLeavesEverythingAsItWas) {
  const Ref<Dictionary> row = Sent(Values::kSample);
  const auto sent = [&] { return TypedText(row); };
  FailEachStatement([&] { Create(row); }, sent);
  const auto id = row->Value(kind.id).As<Long>();
  for (const Column* column : Written()) row->Put(column->name, column->changed);
  FailEachStatement([&] { Update(id, row); }, sent);
  EXPECT_EQ(TypedText(Detail(id)), Saved(Values::kChanged, id, 2));
  if (kind.mark_by_sign) FailEachStatement([&] { Delete(id, 1); });
  FailEachStatement([&] { Delete(id); });
  EXPECT_EQ(Detail(id), nullptr);
  if (kind.used_is_marked) {
    const Long used = CreateSample();
    kind.uses.front()(*this, used);
    FailEachStatement([&] { Delete(used); });
    EXPECT_TRUE(Record(used)->Value(kind.mark).As<Boolean>());
  }
  EXPECT_EQ(Breaches(), "");
}

TEST_P(RecordSuite, ABatchThatIsRolledBackLeavesNothing) {
  const Long first = CreateSample(1), second = CreateSample(2);
  const std::string before = State();
  const auto work = [&] {
    Call(kBatch, "Begin", props);
    const Long id = CreateSample();
    const Ref<Dictionary> row = Record(first);
    for (const Column* column : Written()) row->Put(column->name, column->changed);
    Update(first, row);
    Update(first, row);
    Delete(second);
    EXPECT_EQ(RefusalOf([&] { Delete(second); }), "NotFound");
    return id;
  };
  work();
  EXPECT_NE(State(), before);
  Call(kBatch, "RollBack", props);
  EXPECT_EQ(State(), before);
  const Long id = work();
  InAnotherSession([&] { EXPECT_EQ(Detail(id), nullptr) << "others don't see it yet"; });
  Call(kBatch, "Commit", props);
  InAnotherSession([&] {
    EXPECT_NE(Detail(id), nullptr);
    EXPECT_EQ(VersionOf(first), 3);
    EXPECT_EQ(Detail(second), nullptr);
  });
}

// ---- The audit trail ----

// A value as the trail tells it, and whether a whole row has it.
Json OnTrail(const Variant& value) {
  if (value.Is(VariantType::kBoolean)) return CBool(value);
  if (value.Is(VariantType::kDate)) return DateText(CDate(value));
  if (value.IsString() || value.Is(VariantType::kCurrency)) return CStr(value);
  if (value.Is(VariantType::kDouble) || value.Is(VariantType::kSingle)) {
    return ParseJson(CStr(value));
  }
  return CLng(value);
}
bool IsOnTrail(const Variant& value) {
  const Json json = OnTrail(value);
  return json != Json(0) && json != Json(false) && json != Json("");
}

TEST_P(RecordSuite, DeedsAreOnTheAuditTrail) {
  AddUser("clerk", std::string(kind.writer));
  Login("clerk");
  std::string expected;
  const std::string here = GetMachineName() + " " + GetIPAddress(), host = "HOST 10.0.0.1";
  Long id = 0;
  // The newest deed is this one, behind those that were expected before; what it changed.
  const auto expect = [&](const std::string& from, const std::string& record,
                          const std::string& action) {
    expected += "clerk " + from + " " + std::string(kind.subject) + " " + std::to_string(id) + " " +
                record + " " + action + " 1\n";
    const auto list = Call("QDSVGLAudit.AuditInfo", "GetList", props,
                           "FUserName = 'clerk' AND FSubject <> 'Session'")
                          .As<Recordset>();
    EXPECT_EQ(TextOf(list, {"FUserName", "FMachineName", "FIPAddress", "FSubject", "FRecordID",
                            "FRecord", "FAction", "FOrigin"}),
              expected);
    list->MoveFirst();
    Json changes;
    for (; !list->Eof(); list->MoveNext()) {
      changes = ParseJson(list->Row()->Value("FChanges").As<String>());
    }
    return changes;
  };
  // Every column that callers write stands in a whole row, and none that is empty.
  const auto expect_whole = [&](const Json& row, Long version, Variant Column::*values) {
    EXPECT_EQ(row["FVersion"], version);
    for (const Column* column : Written()) {
      const std::string name(column->name);
      EXPECT_EQ(row.contains(name), IsOnTrail(column->*values)) << name;
      if (row.contains(name)) {
        EXPECT_EQ(row[name], OnTrail(column->*values)) << name;
      }
    }
  };
  const Ref<Dictionary> row = Sent(Values::kSample);
  row->Put("MachineName", "DESK");
  row->Put("IPAddress", "10.0.0.7");
  id = Create(row);
  expect_whole(expect("DESK 10.0.0.7", NameIn(*Record(id)), "Create")["new"], 1, &Column::sample);

  Json changes = {{"FVersion", {1, 2}}};
  for (const Column* column : Written()) {
    row->Put(column->name, column->changed);
    if (Equals(column->sample, column->changed)) continue;
    changes[std::string(column->name)] = {OnTrail(column->sample), OnTrail(column->changed)};
  }
  Update(id, row);
  EXPECT_EQ(expect("DESK 10.0.0.7", NameIn(*Record(id)), "Update"), changes);
  Update(id, Detail(id));
  EXPECT_EQ(expect(here, NameIn(*Record(id)), "Update"), Json({{"FVersion", {2, 3}}}));

  const Ref<Dictionary> wrong = Record(id);
  wrong->Put("FNmae", "x");
  EXPECT_EQ(RefusalOf([&] { Update(id, wrong); }), "BadValue");
  EXPECT_EQ(RefusalOf([&] { Delete(kNoRecord); }), "NotFound");

  // What is refused was not done: the next deed follows the one before.
  const std::string name = NameIn(*Record(id));
  Long version = 3;
  if (kind.mark_by_sign) {
    Delete(id, 1);
    EXPECT_EQ(expect(host, name, "Delete"),
              Json({{"FVersion", {3, 4}},
                    {std::string(kind.mark), {OnTrail(Marked(false)), OnTrail(Marked(true))}}}));
    version = 4;
  }
  Delete(id);
  Json removed = expect(host, name, "Delete")["old"];
  if (kind.mark_by_sign) removed.erase(std::string(kind.mark));
  expect_whole(removed, version, &Column::changed);
  id = Create(Sent(Values::kSample));
  expect(here, NameIn(*Record(id)), "Create");
  const std::string last = NameIn(*Record(id));
  Call(kind.update, "Delete", props, id);
  expect(here, last, "Delete");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(MarkedRecordSuite, MarkingIsOnTheAuditTrail) {
  const std::string marking = Json({OnTrail(Marked(false)), OnTrail(Marked(true))}).dump();
  if (kind.used_is_marked) {
    const Long id = CreateSample();
    kind.uses.front()(*this, id);
    Delete(id);
    EXPECT_EQ(
        TextOf(Call("QDSVGLAudit.AuditInfo", "GetList", props,
                    "FSubject = '" + std::string(kind.subject) + "' AND FMachineName = 'HOST'")
                   .As<Recordset>(),
               {"FRecordID", "FRecord", "FAction", "FChanges"}),
        std::to_string(id) + " " + NameIn(*Record(id)) + " Delete {\"FVersion\":[1,2],\"" +
            std::string(kind.mark) + "\":" + marking + "}\n");
  }
  if (!Has(kind.kept_by_server, kind.mark)) {
    const Long id = CreateSample(1);
    const Ref<Dictionary> row = Record(id);
    row->Put(kind.mark, true);
    row->Put("MachineName", "DESK");
    Update(id, row);
    EXPECT_EQ(TextOf(Call("QDSVGLAudit.AuditInfo", "GetList", props, "FMachineName = 'DESK'")
                         .As<Recordset>(),
                     {"FRecordID", "FAction", "FChanges"}),
              std::to_string(id) + " Update {\"FVersion\":[1,2],\"" + std::string(kind.mark) +
                  "\":" + marking + "}\n");
  }
}

}  // namespace
}  // namespace qdclgl::server::testing
