// A stand-in for every server component and for the session store: it answers as a test tells it,
// fails on demand, and keeps a log of all creations and calls.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/session/startup.h"
#include "tests/support/test_platform.h"

namespace qdclgl::testing {

// While one lives, this thread's gateway and all unregistered components are its own, and the
// machine is a TestPlatform; the apartment counts as started. The session is an outer login with
// the connection text "props".
class RecordingServer {
 public:
  using Handler = std::function<Variant(std::span<Argument> arguments)>;

  RecordingServer();
  ~RecordingServer();
  RecordingServer(const RecordingServer&) = delete;
  RecordingServer& operator=(const RecordingServer&) = delete;

  // What `method` of a component answers: to every call, or (Once) to the next call not yet
  // answered by an earlier Once. A method without an answer gives Empty.
  void Answer(std::string_view component, std::string_view method, Variant answer);
  void AnswerOnce(std::string_view component, std::string_view method, Variant answer);
  void AnswerWith(std::string_view component, std::string_view method, Handler handler);

  // Makes the `position`-th logged event from now on (a creation or a call, from 1) raise `error`.
  void FailAt(int position, Error error);

  // Session traffic is left out of the log and of FailAt's count unless it is asked for.
  void LogSession(bool log = true) { log_session_ = log; }
  // What the session stores answer to "IsOuterLogin" and to keys; a key that is absent is Empty.
  Variant outer_login = Variant(Long{1});
  std::map<std::string, Variant> session_values;
  // ProgIDs that can't be created (error 429 after their line in the log).
  std::vector<std::string> missing_components;

  // The log since the last call, a line an event:
  //   create QDSVGLVoucherGroup.VoucherGroupInfo
  //   call GetDetail("props", ref 5) -> {FGroupID: 5}
  //   call Delete("props", ref 5) -> error 5: words
  // A property of a component that is read or written stands behind `get`, `let` or `set`.
  // `create-object` in place of `create` tells of a creation that did not go through the gateway.
  std::string TakeLog();

  TestPlatform& platform() { return platform_; }

 private:
  class Component;
  class RecordingGateway;

  Ref<Object> Create(std::string_view verb, std::string_view prog_id);
  Variant Call(const std::string& component, CallKind kind, std::string_view method,
               std::span<Argument> arguments);
  Variant AnswerOf(const std::string& component, std::string_view method,
                   std::span<Argument> arguments);
  // Adds a line; true when the event is one that FailAt chose.
  bool Log(bool session, std::string line);
  [[noreturn]] void Fail();

  struct Script {
    std::deque<Variant> once;
    Handler handler;
  };

  TestPlatform platform_;
  std::map<std::string, Script> scripts_;  // by folded "component.method"
  std::string log_;
  bool log_session_ = false;
  int events_until_failure_ = 0;
  std::optional<Error> failure_;
  std::unique_ptr<Gateway> gateway_;
  Gateway* former_gateway_;
  bool former_started_ = SetApartmentStarted(true);
  ComponentCreator former_creator_;
};

}  // namespace qdclgl::testing
