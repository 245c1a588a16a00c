// Books, and somebody who calls every method of every server component on them. What is looked at
// besides crashes: a refused call changes neither the books nor the row that was sent; the database
// itself is never brought to report a failure; the books keep all of their rules.
#pragma once

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "qdclgl/server/server.h"
#include "tests/fuzz/call_sequences.h"
#include "tests/server/books_state.h"

namespace qdclgl::fuzz {

class Office final : public Playground {
 public:
  explicit Office(server::testing::DatabaseKind kind);
  ~Office() override;

  void Step(Choices& choices, const Tell& tell) override;
  void End() override;

 private:
  // Where by-reference arguments live during a call.
  struct Held {
    std::deque<Long> longs;
    std::deque<Boolean> truths;
    std::deque<DateTime> dates;
    std::deque<String> texts;
    std::deque<Variant> variants;
    std::deque<Ref<Dictionary>> rows;
  };

  const server::ServerComponent& AnyComponent(Choices& choices) const;
  Argument AnyArgument(Choices& choices, std::string_view prog_id, const MemberParameter& parameter,
                       Held& held);
  Variant AnyValueFor(Choices& choices, std::string_view prog_id, const MemberParameter& parameter);
  Ref<Dictionary> AnyRow(Choices& choices, std::string_view prog_id);
  Ref<Dictionary> AnyVoucher(Choices& choices);
  std::string AnyConnection(Choices& choices) const;
  void Keep(const Variant& result);

  std::optional<server::testing::RecordBooks> books_;
  std::string connection_;
  std::vector<std::string> sessions_;
  std::vector<Ref<Dictionary>> rows_;  // as the server has given them
  std::string state_;
  bool in_batch_ = false;
};

}  // namespace qdclgl::fuzz
