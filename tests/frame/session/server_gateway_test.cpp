#include "qdclgl/frame/session/server_gateway.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "qdclgl/frame/session/session.h"
#include "qdclgl/vouchers/voucher_group.h"
#include "tests/support/recording_server.h"
#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::Opaque;
using testing::StateText;

// A component that answers its number, and counts itself as long as it lives.
class Component final : public Object {
 public:
  Component(int& live, Long number) : live_(live), number_(number) { ++live_; }
  ~Component() override { --live_; }
  std::string_view ClassName() const override { return "Component"; }
  Variant Invoke(std::string_view, CallKind, std::span<Argument>) override { return number_; }

 private:
  int& live_;
  Long number_;
};

// Takes the place of a component for a while.
class ScopedComponent {
 public:
  ScopedComponent(std::string prog_id, ComponentFactory factory) : prog_id_(std::move(prog_id)) {
    RegisterComponent(prog_id_, std::move(factory));
  }
  ScopedComponent(const ScopedComponent&) = delete;
  ScopedComponent& operator=(const ScopedComponent&) = delete;
  ~ScopedComponent() { UnregisterComponent(prog_id_); }

 private:
  std::string prog_id_;
};

class ScopedForeignCreator {
 public:
  explicit ScopedForeignCreator(ComponentCreator creator)
      : former_(SetForeignComponentCreator(std::move(creator))) {}
  ScopedForeignCreator(const ScopedForeignCreator&) = delete;
  ScopedForeignCreator& operator=(const ScopedForeignCreator&) = delete;
  ~ScopedForeignCreator() { SetForeignComponentCreator(std::move(former_)); }

 private:
  ComponentCreator former_;
};

class ScopedGateway {
 public:
  explicit ScopedGateway(Gateway& gateway) : former_(SetServerGateway(&gateway)) {}
  ScopedGateway(const ScopedGateway&) = delete;
  ScopedGateway& operator=(const ScopedGateway&) = delete;
  ~ScopedGateway() { SetServerGateway(former_); }

 private:
  Gateway* former_;
};

// A gateway of which every component is the same object.
class OneObjectGateway final : public Gateway {
 public:
  Ref<Object> CreateInstance(std::string_view ProgID, const Variant& Options) override {
    log += std::string(ProgID) + " " + StateText(Options) + "\n";
    return object;
  }

  Ref<Object> object = Make<Opaque>();
  std::string log;
};

std::string ErrorOfCreating(std::string_view prog_id) {
  return ErrorOf([&] { ServerGateway().CreateInstance(prog_id); });
}

Ref<Object> MakeOpaque() { return Make<Opaque>(); }

TEST(ServerGateway, MakesTheComponentOfAProgId) {
  const auto object = Make<Opaque>();
  const ScopedComponent component("Tests.One", [&] { return object; });
  const ScopedComponent other("Tests.Other", MakeOpaque);
  EXPECT_EQ(ServerGateway().CreateInstance("Tests.One"), object);
  EXPECT_NE(ServerGateway().CreateInstance("Tests.Other"), object);
}

TEST(ServerGateway, ProgIdsIgnoreCase) {
  const auto object = Make<Opaque>();
  {
    const ScopedComponent component("Tests.MixedCase", [&] { return object; });
    EXPECT_EQ(ServerGateway().CreateInstance("tests.mixedcase"), object);
    EXPECT_EQ(ServerGateway().CreateInstance("TESTS.MIXEDCASE"), object);
    UnregisterComponent("TESTS.mixedCASE");
    EXPECT_EQ(ErrorOfCreating("Tests.MixedCase"),
              "error 429 (QDCLGL): No component is registered as Tests.MixedCase.");
  }
}

TEST(ServerGateway, AnUnknownProgIdTellsItsName) {
  EXPECT_EQ(ErrorOfCreating("Tests.Unknown"),
            "error 429 (QDCLGL): No component is registered as Tests.Unknown.");
  EXPECT_EQ(ErrorOfCreating(""), "error 429 (QDCLGL): No component is registered as .");
  EXPECT_EQ(ErrorOf([] { CreateObject("Tests.Unknown"); }),
            "error 429 (QDCLGL): No component is registered as Tests.Unknown.");
}

TEST(ServerGateway, TheOptionsAreLeftToGatewaysThatKnowThem) {
  const auto object = Make<Opaque>();
  const ScopedComponent component("Tests.One", [&] { return object; });
  EXPECT_EQ(ServerGateway().CreateInstance("Tests.One", "anything"), object);
}

TEST(ServerGateway, ALaterRegistrationTakesThePlaceOfTheFormer) {
  const auto second = Make<Opaque>();
  const ScopedComponent component("Tests.One", MakeOpaque);
  RegisterComponent("TESTS.ONE", [&] { return second; });
  EXPECT_EQ(ServerGateway().CreateInstance("Tests.One"), second);
}

TEST(ServerGateway, RemovalOfAnUnknownProgIdIsSilent) {
  const ScopedComponent component("Tests.One", MakeOpaque);
  UnregisterComponent("Tests.Unknown");
  EXPECT_NE(ServerGateway().CreateInstance("Tests.One"), nullptr);
}

TEST(ServerGateway, AFactoryThatMakesNothingCountsAsUnknown) {
  const ScopedComponent component("Tests.Empty", [] { return Ref<Object>(); });
  EXPECT_EQ(ErrorOfCreating("Tests.Empty"),
            "error 429 (QDCLGL): No component is registered as Tests.Empty.");
}

TEST(ServerGateway, AFailureOfTheCreationPasses) {
  const ScopedComponent component("Tests.Failing",
                                  []() -> Ref<Object> { throw Error(70, "Server", "not today"); });
  EXPECT_EQ(ErrorOfCreating("Tests.Failing"), "error 70 (Server): not today");
}

TEST(ServerGateway, AFactoryMayMakeAndRegisterOthers) {
  const ScopedComponent inner("Tests.Inner", MakeOpaque);
  const ScopedComponent outer("Tests.Outer", [] {
    RegisterComponent("Tests.Late", MakeOpaque);
    return CreateObject("Tests.Inner");
  });
  EXPECT_NE(ServerGateway().CreateInstance("Tests.Outer"), nullptr);
  EXPECT_NE(ServerGateway().CreateInstance("Tests.Late"), nullptr);
  UnregisterComponent("Tests.Late");
}

// ---- The foreign creator ----

TEST(ServerGateway, TheForeignCreatorIsAskedForWhatIsNotRegistered) {
  const auto object = Make<Opaque>();
  std::string log;
  const ScopedForeignCreator foreign([&](std::string_view prog_id) -> Ref<Object> {
    log += std::string(prog_id) + "\n";
    return prog_id == "Tests.Foreign" ? object : nullptr;
  });
  const ScopedComponent component("Tests.Native", MakeOpaque);
  EXPECT_EQ(ServerGateway().CreateInstance("Tests.Foreign"), object);
  EXPECT_NE(ServerGateway().CreateInstance("TESTS.NATIVE"), nullptr);
  EXPECT_EQ(ErrorOfCreating("Tests.Unknown"),
            "error 429 (QDCLGL): No component is registered as Tests.Unknown.");
  EXPECT_EQ(log, "Tests.Foreign\nTests.Unknown\n");
}

TEST(ServerGateway, AFailingFactoryDoesNotFallBackToTheForeignCreator) {
  std::string log;
  const ScopedForeignCreator foreign([&](std::string_view prog_id) {
    log += prog_id;
    return MakeOpaque();
  });
  const ScopedComponent empty("Tests.Empty", [] { return Ref<Object>(); });
  const ScopedComponent failing("Tests.Failing", []() -> Ref<Object> { throw Error(70); });
  EXPECT_EQ(ErrorOfCreating("Tests.Empty"),
            "error 429 (QDCLGL): No component is registered as Tests.Empty.");
  EXPECT_EQ(ErrorOfCreating("Tests.Failing"), "error 70");
  EXPECT_EQ(log, "");
}

TEST(ServerGateway, AFailureOfTheForeignCreatorPasses) {
  const ScopedForeignCreator foreign(
      [](std::string_view) -> Ref<Object> { throw Error(70, "Machine", "refused"); });
  EXPECT_EQ(ErrorOfCreating("Tests.Foreign"), "error 70 (Machine): refused");
}

TEST(ServerGateway, TheFormerForeignCreatorIsHandedBack) {
  const auto first_object = Make<Opaque>();
  const ScopedForeignCreator first([&](std::string_view) { return first_object; });
  {
    const ScopedForeignCreator second([](std::string_view) { return MakeOpaque(); });
    EXPECT_NE(CreateObject("Tests.Foreign"), first_object);
  }
  EXPECT_EQ(CreateObject("Tests.Foreign"), first_object);
}

// ---- Another gateway ----

TEST(ServerGateway, AnotherGatewayTakesTheWholePlaceInItsApartment) {
  OneObjectGateway own;
  const ScopedComponent component("Tests.One", MakeOpaque);
  {
    const ScopedGateway scope(own);
    EXPECT_EQ(&ServerGateway(), &own);
    EXPECT_EQ(ServerGateway().CreateInstance("Tests.One"), own.object);
    EXPECT_EQ(ServerGateway().CreateInstance("Tests.Unknown", 5), own.object);
    EXPECT_NE(CreateObject("Tests.One"), own.object);
  }
  EXPECT_EQ(own.log, "Tests.One Missing\nTests.Unknown 5\n");
  EXPECT_NE(ServerGateway().CreateInstance("Tests.One"), own.object);
}

TEST(ServerGateway, TheFormerGatewayIsHandedBack) {
  OneObjectGateway first, second;
  EXPECT_EQ(SetServerGateway(&first), nullptr);
  EXPECT_EQ(SetServerGateway(&second), &first);
  EXPECT_EQ(SetServerGateway(nullptr), &second);
  EXPECT_EQ(SetServerGateway(nullptr), nullptr);
}

TEST(ServerGateway, OtherApartmentsKeepTheirGateways) {
  OneObjectGateway own, others;
  const ScopedGateway scope(own);
  std::string log;
  std::thread([&] {
    log += &ServerGateway() == &own ? "shared " : "apart ";
    const ScopedGateway other_scope(others);
    log += &ServerGateway() == &others ? "replaced" : "kept";
  }).join();
  EXPECT_EQ(log, "apart replaced");
  EXPECT_EQ(&ServerGateway(), &own);
}

TEST(ServerGateway, TheGatewayOfAnApartmentStaysTheSame) {
  EXPECT_EQ(&ServerGateway(), &ServerGateway());
}

// ---- The life of a component ----

TEST(ServerGateway, AComponentIsMadeAfreshAtEachUseAndReleasedBehindIt) {
  int live = 0;
  Long made = 0;
  int most_live = 0;
  const ScopedComponent facade("QDCMtsCacheService.CacheFacade",
                               []() -> Ref<Object> { throw Error(70); });
  const ScopedComponent info("QDSVGLVoucherGroup.VoucherGroupInfo", [&] {
    auto component = Make<Component>(live, ++made);
    most_live = std::max(most_live, live);
    return component;
  });
  const auto set = Make<VoucherGroupSet>();
  EXPECT_EQ(set->ExistenceCheck(5), 1);
  EXPECT_EQ(live, 0);
  EXPECT_EQ(set->ExistenceCheck(5), 2);
  EXPECT_EQ(live, 0);
  EXPECT_EQ(set->ExistenceCheck(Missing, "name"), 3);
  EXPECT_EQ(live, 0);
  EXPECT_EQ(made, 3);
  EXPECT_EQ(most_live, 1);
}

TEST(ServerGateway, AComponentWhoseCallFailsIsReleasedToo) {
  class Failing final : public Object {
   public:
    explicit Failing(int& live) : live_(live) { ++live_; }
    ~Failing() override { --live_; }
    std::string_view ClassName() const override { return "Failing"; }

   private:
    int& live_;
  };
  int live = 0;
  const ScopedComponent info("QDSVGLVoucherGroup.VoucherGroupInfo",
                             [&] { return Make<Failing>(live); });
  const auto set = Make<VoucherGroupSet>();
  EXPECT_EQ(ErrorOf([&] { set->Refresh(); }), "error 438 (Failing): No member GetList.");
  EXPECT_EQ(live, 0);
}

TEST(ServerGateway, AComponentIsMadeBeforeTheSessionIsAsked) {
  testing::RecordingServer server;
  server.LogSession();
  const auto set = Make<VoucherGroupSet>();
  set->ExistenceCheck(5);
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
                              "create-object QDCMtsCacheService.CacheFacade\n"
                              "call GetItem(ref 4711, \"IsOuterLogin\") -> 1\n"
                              "call GetItem(ref 4711, \"PropsString\") -> \"props\"\n"
                              "call GetItem(ref 4711, \"PropsString\") -> \"props\"\n"
                              "call ExistenceCheck(\"props\", VoucherGroupID:=ref Variant 5)\n");
}

// ---- Threads ----

TEST(ServerGateway, ComponentsAreRegisteredAndMadeOnAnyThread) {
  constexpr int kThreads = 8;
  constexpr int kRounds = 100;
  std::atomic<int> made = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t, &made] {
      const std::string prog_id = "Tests.Thread" + std::to_string(t);
      for (int round = 0; round < kRounds; ++round) {
        const std::thread::id home = std::this_thread::get_id();
        RegisterComponent(prog_id, [&made, home] {
          if (std::this_thread::get_id() == home) ++made;
          return MakeOpaque();
        });
        RegisterComponent("Tests.Shared", MakeOpaque);
        ServerGateway().CreateInstance(prog_id);
        UnregisterComponent(prog_id);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  UnregisterComponent("Tests.Shared");
  EXPECT_EQ(made, kThreads * kRounds);
}

}  // namespace
}  // namespace qdclgl
