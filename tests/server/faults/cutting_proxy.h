// A way to a PostgreSQL server that is cut when a test wants it to.
#pragma once

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace qdclgl::server::testing {

class CuttingProxy {
 public:
  enum class Cut {
    kBefore,  // the server never gets the request
    kBehind,  // the server answers it, and the answer is lost
  };
  static constexpr Cut kCuts[] = {Cut::kBefore, Cut::kBehind};

  // Listens on a port of 127.0.0.1 and leads to this host and port.
  CuttingProxy(const std::string& host, const std::string& port);
  ~CuttingProxy();
  CuttingProxy(const CuttingProxy&) = delete;
  CuttingProxy& operator=(const CuttingProxy&) = delete;

  std::string port() const { return port_; }

  // The connection that makes the n-th request from here on, counted from 1, is cut at it. What a
  // client sends before it waits is one request; so is the beginning of a connection.
  void CutAt(int n, Cut cut);
  // Nothing more is cut. Whether something was.
  bool Mend();
  // How many requests there were between the last CutAt and Mend.
  int Requests() const { return until_mend_; }
  // Every request and its answer take so much longer, as they would on a long way.
  void Delay(std::chrono::milliseconds delay) { delay_ = delay; }

 private:
  void Accept();
  void Serve(int client);
  bool IsCutNow();

  std::string host_, server_port_;
  int listener_;
  std::string port_;
  std::atomic<int> requests_{0};  // since CutAt
  int until_mend_ = 0;            // of them
  std::atomic<int> cut_at_{0};    // the request that is cut; 0: none
  std::atomic<Cut> cut_{Cut::kBefore};
  std::atomic<bool> has_cut_{false};
  std::atomic<bool> ends_{false};
  std::atomic<std::chrono::milliseconds> delay_{};
  std::vector<std::thread> connections_;
  std::thread acceptor_;
};

}  // namespace qdclgl::server::testing
