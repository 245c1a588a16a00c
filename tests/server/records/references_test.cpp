// Kinds of records that refer to others: what is brought in exists and is in use, what is referred
// to stays, and what leads nowhere is found.
#include "qdclgl/server/records/references.h"

#include <set>
#include <thread>

#include "qdclgl/frame/session/startup.h"
#include "qdclgl/server/db/connections.h"
#include "tests/server/records/record_suite.h"
#include "tests/support/meeting_point.h"

namespace qdclgl::server::testing {
namespace {

using qdclgl::testing::MeetingPoint;

std::string In(std::string_view table, std::string_view id) {
  return std::string(table) + "." + std::string(id);
}

TEST(References, EachThatAKindDeclaresIsInTheSuites) {
  std::set<std::string> declared, tested;
  for (const Reference& reference : References()) {
    if (reference.owner == nullptr) continue;
    if (reference.table != reference.owner->description().table) continue;  // a list's
    if (reference.table == "t_VoucherTemp") continue;  // a document, which has a suite of its own
    declared.insert(In(reference.table, reference.column));
  }
  for (const RecordKind* kind : RecordKinds()) {
    for (const auto& reference : kind->references) {
      tested.insert(In(kind->table, reference.column));
    }
  }
  EXPECT_EQ(tested, declared);
}

TEST_P(ReferringRecordSuite, AnIdThatIsNoRecordIsRefusedByName) {
  CreateSample();
  const std::string before = State();
  for (const Reference& reference : kind.references) {
    for (const Long none : {kNoRecord, Long{-1}}) {
      ExpectRefusedSaves(reference.refusal,
                         [&](Dictionary& row) { row.Put(reference.column, none); });
    }
    const Ref<Dictionary> row = SentWith(reference, kNoRecord, 1);
    EXPECT_EQ(SentenceOf([&] { Create(row); }), Called(*row) + ": there is no " +
                                                    std::string(reference.noun) + " " +
                                                    std::to_string(kNoRecord) + ".");
  }
  EXPECT_EQ(State(), before);
}

TEST_P(ReferringRecordSuite, ZeroIsNoneUnlessTheColumnIsRequired) {
  int number = 0;
  for (const Reference& reference : kind.references) {
    const Ref<Dictionary> row = SentWith(reference, 0, ++number);
    EXPECT_EQ(RefusalOf([&] { Create(row); }), reference.is_required ? reference.refusal : "none")
        << reference.column;
  }
  EXPECT_EQ(Breaches(), "");
}

TEST_P(ReferringRecordSuite, ARecordThatIsMarkedDeletedIsRefusedAndStaysWhereItIs) {
  int number = 0;
  for (const Reference& reference : kind.references) {
    const Long referred = reference.make(*this);
    const Long id = Create(SentWith(reference, referred, ++number));
    const Ref<Dictionary> record = Record(id);
    const auto [mark, table] = [&] {
      for (const server::Reference& declared : References()) {
        const auto& description = declared.refers.kind().description();
        if (declared.column == reference.column && declared.table == kind.table) {
          return std::pair(std::string(description.deleted), std::string(description.table));
        }
      }
      return std::pair(std::string(), std::string());
    }();
    if (mark.empty()) continue;
    Break("UPDATE " + table + " SET " + mark + " = 1 WHERE " + std::string(reference.id) + " = " +
          std::to_string(referred));
    const Ref<Dictionary> row = SentWith(reference, referred, ++number);
    EXPECT_EQ(RefusalOf([&] { Create(row); }), reference.refusal);
    EXPECT_EQ(SentenceOf([&] { Create(row); }), Called(*row) + ": there is no " +
                                                    std::string(reference.noun) + " " +
                                                    std::to_string(referred) + " in use.");
    EXPECT_EQ(RefusalOf([&] { Update(id, record); }), "none") << "it does not bring it in";
  }
}

TEST_P(ReferringRecordSuite, WhatIsReferredToStays) {
  int number = 0;
  for (const Reference& reference : kind.references) {
    const Long referred = reference.make(*this);
    const Long id = Create(SentWith(reference, referred, ++number));
    const std::string before = State();
    if (reference.is_marked) {
      EXPECT_EQ(RefusalOf([&] { RemoveReferred(reference, referred); }), "none");
      Delete(id);
      RemoveReferred(reference, referred);
      continue;
    }
    EXPECT_EQ(RefusalOf([&] { RemoveReferred(reference, referred); }), "InUse");
    const std::string sentence = SentenceOf([&] { RemoveReferred(reference, referred); });
    std::string holder = Called(*Record(id));
    holder[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(holder[0])));
    EXPECT_TRUE(sentence.ends_with(": " + holder + " refers to it.")) << sentence;
    EXPECT_EQ(State(), before);
    Delete(id);
    RemoveReferred(reference, referred);
  }
  EXPECT_EQ(Breaches(), "");
}

TEST_P(ReferringRecordSuite, WhatLeadsNowhereIsFound) {
  for (const Reference& reference : kind.references) {
    const Long id = Create(SentWith(reference, reference.make(*this), 1));
    const std::string name = NameIn(*Record(id));
    Break("UPDATE " + std::string(kind.table) + " SET " + std::string(reference.column) + " = " +
          std::to_string(kNoRecord) + " WHERE " + std::string(kind.id) + " = " +
          std::to_string(id));
    const std::string found = Breaches();
    EXPECT_NE(found.find("Reference " + std::string(kind.subject) + " " + std::to_string(id) + " " +
                         name + "\n"),
              std::string::npos)
        << found;
    Break("DELETE FROM " + std::string(kind.table) + " WHERE " + std::string(kind.id) + " = " +
          std::to_string(id));
  }
}

// One session refers to a record while another one removes it: whoever comes second sees it.
TEST_P(ReferringRecordSuite, OfAReferenceAndARemovalAtOnceOneGetsThrough) {
  constexpr int kRounds = 5;
  const std::string other = [&] {
    const std::string own = props;
    std::string session = Login("administrator");
    props = own;
    return session;
  }();
  for (const Reference& reference : kind.references) {
    for (int round = 1; round <= kRounds; ++round) {
      const Long referred = reference.make(*this);
      const Ref<Dictionary> row = SentWith(reference, referred, round);
      MeetingPoint together(2);
      std::string removed;
      std::thread remover([&] {
        SetApartmentStarted(true);
        together.ArriveAndWait();
        removed = RefusalOf([&] { Call(reference.update, "Delete", other, Long{referred}); });
        Connections::OfThisThread().CloseAll();
      });
      together.ArriveAndWait();
      Long id = 0;
      const std::string saved = RefusalOf([&] { id = Create(row); });
      remover.join();
      const std::string outcome = saved + ", " + removed;
      const bool expected = outcome == std::string(reference.refusal) + ", none" ||
                            outcome == (reference.is_marked ? "none, none" : "none, InUse");
      EXPECT_TRUE(expected) << reference.column << ": " << outcome;
      EXPECT_EQ(Breaches(), "");
      if (id != 0) Delete(id);
    }
  }
}

}  // namespace
}  // namespace qdclgl::server::testing
