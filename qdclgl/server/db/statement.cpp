#include "qdclgl/server/db/statement.h"

#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/driver.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

bool IsStorable(std::string_view text) {
  return text.find('\0') == std::string_view::npos && IsUtf8(text);
}

void Statement::Set(std::size_t position, std::string_view value) {
  // One database would cut the text at the zero byte, the other keep it.
  if (!IsStorable(value)) {
    Refuse(refusal::kBadValue, "A text holds a zero byte or is not UTF-8.");
  }
  SetText(position, value);
}

void Statement::Announce() const {
  Driver::CallHook(sql_);
  driver_.RequireSound();
}

std::int64_t Statement::Execute() {
  Announce();
  return Run();
}

void Statement::ExecuteLater() {
  Announce();
  RunLater();
}

void Statement::Open() {
  Announce();
  Ask();
}

std::int64_t Statement::Run() {
  return driver_.Watched([&] { return RunToEnd(); });
}

void Statement::RunLater() {
  driver_.Watched([&] { RunSometime(); });
}

void Statement::Ask() {
  Reset();
  driver_.Watched([&] { Begin(); });
  is_open_ = true;
}

bool Statement::Fetch() {
  if (!is_open_) return false;
  is_open_ = false;
  const bool has_row = driver_.Watched([&] { return Step(); });
  driver_.RequireFileAsBefore();
  is_open_ = has_row;
  return has_row;
}

void Statement::Reset() noexcept {
  if (is_open_) End();
  is_open_ = false;
}

}  // namespace qdclgl::server
