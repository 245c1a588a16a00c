#include "qdclgl/server/db/statement.h"

#include <vector>

#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/driver.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

bool IsStorable(std::string_view text) {
  return text.find('\0') == std::string_view::npos && IsUtf8(text);
}

namespace {

// SOCI's placeholders have names.
std::string WithNamedPlaceholders(std::string_view sql) {
  std::string result;
  int count = 0;
  bool in_text = false;
  for (const char c : sql) {
    if (c == '\'') in_text = !in_text;
    if (c == '?' && !in_text) {
      result += ":p" + std::to_string(++count);
    } else {
      result += c;
    }
  }
  return result;
}

// A place that SOCI binds to: one of the three values is used.
struct Slot {
  Storage storage = Storage::kWhole;
  soci::indicator indicator = soci::i_ok;
  long long whole = 0;
  double real = 0;
  std::string text;

  void BindTo(soci::statement& statement, bool result) {
    switch (storage) {
      case Storage::kWhole: return Bind(statement, whole, result);
      case Storage::kReal: return Bind(statement, real, result);
      case Storage::kText: return Bind(statement, text, result);
    }
  }

 private:
  template <class T>
  void Bind(soci::statement& statement, T& variable, bool result) {
    if (result) {
      statement.exchange(soci::into(variable, indicator));
    } else {
      statement.exchange(soci::use(variable, indicator));
    }
  }
};

std::vector<Slot> Slots(std::span<const Storage> types) {
  std::vector<Slot> slots(types.size());
  for (std::size_t i = 0; i < types.size(); ++i) slots[i].storage = types[i];
  return slots;
}

}  // namespace

struct Statement::State {
  Driver& driver;
  std::string sql;
  soci::statement statement;
  std::vector<Slot> parameters;
  std::vector<Slot> results;
  bool open = false;

  // A statement that fails is at its end.
  template <class Operation>
  auto Do(Operation operation) -> decltype(operation()) {
    try {
      return driver.Watched(operation);
    } catch (const Error&) {
      open = false;
      driver.Reset(statement);
      throw;
    }
  }
};

Statement::Statement(Driver& driver, std::string_view sql, std::span<const Storage> parameters,
                     std::span<const Storage> results)
    : state_(new State{driver, std::string(sql), soci::statement(driver.session()),
                       Slots(parameters), Slots(results)}) {
  driver.Do([&] {
    soci::statement& statement = state_->statement;
    statement.alloc();
    for (Slot& slot : state_->results) slot.BindTo(statement, true);
    for (Slot& slot : state_->parameters) slot.BindTo(statement, false);
    statement.prepare(WithNamedPlaceholders(sql));
    statement.define_and_bind();
  });
}

Statement::~Statement() = default;

void Statement::Set(std::size_t position, std::int64_t value) {
  state_->parameters[position].indicator = soci::i_ok;
  state_->parameters[position].whole = value;
}

void Statement::Set(std::size_t position, double value) {
  state_->parameters[position].indicator = soci::i_ok;
  state_->parameters[position].real = value;
}

void Statement::Set(std::size_t position, std::string_view value) {
  // One database would cut the text at the zero byte, the other keep it.
  if (!IsStorable(value)) {
    Refuse(refusal::kBadValue, "A text holds a zero byte or is not UTF-8.");
  }
  state_->parameters[position].indicator = soci::i_ok;
  state_->parameters[position].text.assign(value);
}

void Statement::SetNull(std::size_t position) {
  state_->parameters[position].indicator = soci::i_null;
}

std::int64_t Statement::Execute() {
  Driver::CallHook(state_->sql);
  state_->driver.RequireSound();
  return Run();
}

std::int64_t Statement::Run() {
  return state_->Do([&] {
    state_->statement.execute(true);
    return static_cast<std::int64_t>(state_->statement.get_affected_rows());
  });
}

void Statement::Open() {
  Driver::CallHook(state_->sql);
  state_->driver.RequireSound();
  Reset();
  state_->Do([&] { state_->statement.execute(false); });
  state_->open = true;
}

bool Statement::Fetch() {
  if (!state_->open) return false;
  state_->open = state_->Do([&] { return state_->statement.fetch(); });
  state_->driver.RequireFileAsBefore();
  return state_->open;
}

void Statement::Reset() {
  if (state_->open) state_->driver.Reset(state_->statement);
  state_->open = false;
}

bool Statement::IsNull(std::size_t position) const {
  return state_->results[position].indicator == soci::i_null;
}

std::int64_t Statement::Whole(std::size_t position) const {
  return IsNull(position) ? 0 : state_->results[position].whole;
}

double Statement::Real(std::size_t position) const {
  return IsNull(position) ? 0 : state_->results[position].real;
}

const std::string& Statement::Text(std::size_t position) const {
  static const std::string kEmpty;
  return IsNull(position) ? kEmpty : state_->results[position].text;
}

}  // namespace qdclgl::server
