// Somebody who works on the books in a thread of his own and can be made to stand still before any
// of his statements, so that a test plays two people's work in every order.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "qdclgl/server/db/database.h"

namespace qdclgl::server::testing {

class Player {
 public:
  // Logs in to the books; `monitor` is a connection of the test's own.
  Player(const std::string& connection, const std::string& user, Database& monitor);
  ~Player();
  Player(const Player&) = delete;
  Player& operator=(const Player&) = delete;

  const std::string& props() const { return props_; }

  // Begins a call in the player's thread. With a stop he stands still before that statement of the
  // call, counted from 0.
  static constexpr int kNoStop = -1;
  void Begin(std::function<void()> call, int stop = kNoStop);

  enum class State { kStanding, kWaiting, kDone };
  // Until he stands still, waits for what another holds, or is done.
  State Settle(const Player& other);
  // Lets him go on behind a stop.
  void GoOn();
  // Until he is done; the name of the refusal, "done" where nothing was refused.
  std::string Outcome();

  // How many statements he has begun in this call.
  int statements() const;

 private:
  void Work();
  void OnStatement(std::string_view sql);
  void StatementIsThrough();  // with the mutex held
  bool WaitsForALock(const Player& other) const;

  Database& monitor_;
  std::string props_;
  int backend_ = 0;  // PostgreSQL's number of the connection

  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  std::function<void()> call_;  // what to do next
  bool ends_ = false;
  bool busy_ = false;
  bool standing_ = false;
  int stop_ = kNoStop;
  int count_ = 0;
  std::string statement_;     // the one under way
  bool holds_books_ = false;  // SQLite's one writer at a time
  std::string outcome_;

  std::thread thread_;
};

}  // namespace qdclgl::server::testing
