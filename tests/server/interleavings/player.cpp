#include "tests/server/interleavings/player.h"

#include <chrono>

#include "qdclgl/server/access/session.h"
#include "qdclgl/server/db/connections.h"
#include "tests/server/books_state.h"

namespace qdclgl::server::testing {

namespace {

using namespace std::chrono_literals;

thread_local Player* here = nullptr;

}  // namespace

Player::Player(const std::string& connection, const std::string& user, Database& monitor)
    : monitor_(monitor), thread_([this] { Work(); }) {
  Begin([this, connection, user] {
    // One statement hook serves all players: each knows his own thread.
    here = this;
    props_ = CreateObject("QDSVGLSession.SessionUpdate")
                 ->Call("Login", connection, user, "")
                 .As<String>();
    const Caller caller = Enter(props_, {Role::kReader, "look at the books"});
    if (!caller.db.IsSQLite()) backend_ = *caller.db.QueryValue<int>("SELECT pg_backend_pid()");
  });
  EXPECT_EQ(Outcome(), "done");
  Database::SetStatementHook([](std::string_view sql) {
    if (here != nullptr) here->OnStatement(sql);
  });
}

Player::~Player() {
  {
    const std::lock_guard lock(mutex_);
    ends_ = true;
  }
  changed_.notify_all();
  thread_.join();
  Database::SetStatementHook(nullptr);
}

void Player::Begin(std::function<void()> call, int stop) {
  {
    const std::lock_guard lock(mutex_);
    call_ = std::move(call);
    stop_ = stop;
    count_ = 0;
    busy_ = true;
  }
  changed_.notify_all();
}

void Player::Work() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return call_ || ends_; });
    if (!call_) break;
    const auto call = std::move(call_);
    call_ = nullptr;
    const bool held_before = holds_books_;
    lock.unlock();
    const std::string refusal = RefusalOf(call);
    lock.lock();
    outcome_ = refusal == "none" ? "done" : refusal;
    // A refused call has let go of what it took, but not of a batch that it belongs to.
    if (refusal == "none") {
      StatementIsThrough();
    } else {
      holds_books_ = held_before;
    }
    statement_.clear();
    busy_ = false;
    changed_.notify_all();
  }
  lock.unlock();
  Connections::OfThisThread().CloseAll();
}

void Player::StatementIsThrough() {
  if (statement_.starts_with("BEGIN IMMEDIATE")) holds_books_ = true;
  if (statement_ == "COMMIT" || statement_ == "ROLLBACK") holds_books_ = false;
}

void Player::OnStatement(std::string_view sql) {
  std::unique_lock lock(mutex_);
  StatementIsThrough();
  if (count_++ == stop_) {
    statement_.clear();
    standing_ = true;
    changed_.notify_all();
    changed_.wait(lock, [this] { return !standing_; });
  }
  statement_ = sql;
}

bool Player::WaitsForALock(const Player& other) const {
  if (!monitor_.IsSQLite()) {
    return monitor_
        .QueryValue<int>("SELECT 1 FROM pg_locks WHERE pid = ? AND NOT granted LIMIT 1", backend_)
        .has_value();
  }
  const std::scoped_lock lock(mutex_, other.mutex_);
  return statement_.starts_with("BEGIN IMMEDIATE") && other.holds_books_;
}

Player::State Player::Settle(const Player& other) {
  while (true) {
    {
      std::unique_lock lock(mutex_);
      if (changed_.wait_for(lock, 2ms, [this] { return !busy_ || standing_; })) {
        return busy_ ? State::kStanding : State::kDone;
      }
    }
    if (WaitsForALock(other)) return State::kWaiting;
  }
}

void Player::GoOn() {
  {
    const std::lock_guard lock(mutex_);
    standing_ = false;
  }
  changed_.notify_all();
}

std::string Player::Outcome() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return !busy_; });
  return outcome_;
}

int Player::statements() const {
  const std::lock_guard lock(mutex_);
  return count_;
}

}  // namespace qdclgl::server::testing
