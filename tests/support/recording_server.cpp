#include "tests/support/recording_server.h"

#include <algorithm>

#include "qdclgl/frame/vocabulary/text.h"
#include "tests/support/state_text.h"

namespace qdclgl::testing {

namespace {

bool IsSessionStore(std::string_view prog_id) {
  return EqualsIgnoringAsciiCase(prog_id, "QDCMtsCacheService.CacheFacade") ||
         EqualsIgnoringAsciiCase(prog_id, "QDCPropsMgr.ShareProps");
}

std::string ScriptKey(std::string_view component, std::string_view method) {
  return FoldAsciiCase(component) + "." + FoldAsciiCase(method);
}

std::string_view VerbOf(CallKind kind) {
  if (Includes(kind, CallKind::kMethod)) return "call";
  if (Includes(kind, CallKind::kGet)) return "get";
  return Includes(kind, CallKind::kLet) ? "let" : "set";
}

}  // namespace

class RecordingServer::Component final : public Object {
 public:
  Component(RecordingServer& server, std::string_view prog_id)
      : server_(server), prog_id_(prog_id) {}
  std::string_view ClassName() const override { return prog_id_; }
  Variant Invoke(std::string_view name, CallKind kind, std::span<Argument> arguments) override {
    return server_.Call(prog_id_, kind, name, arguments);
  }

 private:
  RecordingServer& server_;
  std::string prog_id_;
};

class RecordingServer::RecordingGateway final : public Gateway {
 public:
  explicit RecordingGateway(RecordingServer& server) : server_(server) {}
  Ref<Object> CreateInstance(std::string_view ProgID, const Variant&) override {
    return server_.Create("create", ProgID);
  }

 private:
  RecordingServer& server_;
};

RecordingServer::RecordingServer()
    : session_values{{"PropsString", Variant("props")}, {"UserName", Variant("user")}},
      gateway_(std::make_unique<RecordingGateway>(*this)),
      former_gateway_(SetServerGateway(gateway_.get())),
      former_creator_(SetForeignComponentCreator(
          [this](std::string_view prog_id) { return Create("create-object", prog_id); })) {}

RecordingServer::~RecordingServer() {
  SetForeignComponentCreator(std::move(former_creator_));
  SetServerGateway(former_gateway_);
  SetApartmentStarted(former_started_);
}

void RecordingServer::Answer(std::string_view component, std::string_view method, Variant answer) {
  AnswerWith(component, method,
             [answer = std::move(answer)](std::span<Argument>) { return answer; });
}

void RecordingServer::AnswerOnce(std::string_view component, std::string_view method,
                                 Variant answer) {
  scripts_[ScriptKey(component, method)].once.push_back(std::move(answer));
}

void RecordingServer::AnswerWith(std::string_view component, std::string_view method,
                                 Handler handler) {
  scripts_[ScriptKey(component, method)].handler = std::move(handler);
}

void RecordingServer::FailAt(int position, Error error) {
  events_until_failure_ = position;
  failure_ = std::move(error);
}

std::string RecordingServer::TakeLog() { return std::exchange(log_, {}); }

bool RecordingServer::Log(bool session, std::string line) {
  if (session && !log_session_) return false;
  log_ += line;
  return failure_ && --events_until_failure_ == 0;
}

void RecordingServer::Fail() {
  const Error error = *std::exchange(failure_, std::nullopt);
  log_ += std::string(" -> ") + error.what() + "\n";
  throw error;
}

Ref<Object> RecordingServer::Create(std::string_view verb, std::string_view prog_id) {
  const bool session = IsSessionStore(prog_id);
  const bool shown = !session || log_session_;
  if (Log(session, std::string(verb) + " " + std::string(prog_id))) Fail();
  const bool missing =
      std::any_of(missing_components.begin(), missing_components.end(),
                  [&](const std::string& name) { return EqualsIgnoringAsciiCase(name, prog_id); });
  if (shown) log_ += missing ? " -> error 429\n" : "\n";
  if (missing) RaiseError(error_number::kCannotCreateObject);
  return Make<Component>(*this, prog_id);
}

Variant RecordingServer::Call(const std::string& component, CallKind kind, std::string_view method,
                              std::span<Argument> arguments) {
  const bool session = IsSessionStore(component);
  const bool shown = !session || log_session_;
  std::string line =
      std::string(VerbOf(kind)) + " " + std::string(method) + "(" + StateText(arguments) + ")";
  if (Log(session, std::move(line))) Fail();
  try {
    Variant answer = AnswerOf(component, method, arguments);
    if (shown) log_ += answer.IsEmpty() ? "\n" : " -> " + StateText(answer) + "\n";
    return answer;
  } catch (const Error& error) {
    if (shown) log_ += std::string(" -> ") + error.what() + "\n";
    throw;
  }
}

Variant RecordingServer::AnswerOf(const std::string& component, std::string_view method,
                                  std::span<Argument> arguments) {
  const auto script = scripts_.find(ScriptKey(component, method));
  if (script != scripts_.end()) {
    if (!script->second.once.empty()) {
      Variant answer = std::move(script->second.once.front());
      script->second.once.pop_front();
      return answer;
    }
    if (script->second.handler) return script->second.handler(arguments);
  }
  if (IsSessionStore(component) && arguments.size() == 2) {
    const String key = arguments[1].As<String>();
    if (key == "IsOuterLogin") return outer_login;
    const auto value = session_values.find(key);
    return value != session_values.end() ? value->second : Variant();
  }
  return {};
}

}  // namespace qdclgl::testing
