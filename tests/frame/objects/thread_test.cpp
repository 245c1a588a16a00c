#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "qdclgl/vouchers/voucher_group.h"
#include "tests/support/recording_server.h"
#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::Row;
using testing::StateText;

// What `operation` raises on a thread of its own.
std::string ErrorElsewhere(const std::function<void()>& operation) {
  std::string error;
  std::thread([&] { error = ErrorOf(operation); }).join();
  return error;
}

std::string Refused(const std::string& class_name) {
  return "error 0x8001010E (" + class_name +
         "): The object belongs to another thread, which made it.";
}

TEST(WrongThread, ALateBoundCallIsRefusedWithWordsAndChangesNothing) {
  const auto row = Row({{"a", Long{1}}});
  const std::function<void()> uses[] = {
      [&] { row->Call("Remove", "a"); },
      [&] { row->Get("Value", "a"); },
      [&] { row->Let("Value", "a", Long{2}); },
      [&] { row->Set("Value", "a", Nothing); },
      [&] { row->Call("NoSuchMember"); },
      [&] { row->Invoke("Count", CallKind::kGet, {}); },
      [&] { row->PlainValue(); },
  };
  for (const auto& use : uses) EXPECT_EQ(ErrorElsewhere(use), Refused("Dictionary"));
  EXPECT_EQ(StateText(Variant(row)), "{a: 1}");
  row->Let("Value", "a", Long{2});
  EXPECT_EQ(StateText(Variant(row)), "{a: 2}");
}

TEST(WrongThread, AnOperationThatCallsOutIsRefusedBeforeItsFirstCall) {
  testing::RecordingServer server;
  const auto group = Make<VoucherGroup>();
  group->Construct(Row({{"FGroupID", Long{5}}}), Nothing);
  group->Name("New");
  const auto groups = Make<VoucherGroupSet>();
  const std::function<void()> entity_uses[] = {
      [&] { group->Refresh(); }, [&] { group->SaveChanges(); }, [&] { group->CancelChanges(); }};
  for (const auto& use : entity_uses) EXPECT_EQ(ErrorElsewhere(use), Refused("VoucherGroup"));
  const std::function<void()> set_uses[] = {
      [&] { groups->Refresh(); },
      [&] { groups->GetNext(); },
      [&] { groups->Item(Long{5}); },
      [&] { groups->Remove(Long{5}); },
      [&] { groups->ExistenceCheck(Long{5}, Missing); },
  };
  for (const auto& use : set_uses) EXPECT_EQ(ErrorElsewhere(use), Refused("VoucherGroupSet"));
  EXPECT_EQ(server.TakeLog(), "");
  EXPECT_EQ(group->Name(), "New");
}

TEST(WrongThread, AnObjectIsOfTheThreadThatMadeItHoweverManyThereWere) {
  const auto row = Make<Dictionary>();
  for (int i = 0; i < 300; ++i) {
    std::thread([&] {
      EXPECT_FALSE(row->IsOfThisThread());
      EXPECT_TRUE(Make<Dictionary>()->IsOfThisThread());
    }).join();
  }
  EXPECT_TRUE(row->IsOfThisThread());
}

}  // namespace
}  // namespace qdclgl
