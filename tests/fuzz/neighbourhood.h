// Objects in a crowd: some of each public class, and everything that they call out to (server
// components, the session, foreign objects), which answers with anything, raises, or calls back.
#pragma once

#include <array>
#include <deque>
#include <string>
#include <variant>
#include <vector>

#include "qdclgl/api/class_list.h"
#include "qdclgl/frame/containers/collection.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/vouchers/voucher.h"
#include "tests/fuzz/call_sequences.h"
#include "tests/support/test_platform.h"

namespace qdclgl::fuzz {

// Variables for arguments by reference; several arguments may share one.
class Variables {
 public:
  // An argument that refers to a new variable of any type with `value`, or to one of before.
  Argument Refer(Choices& choices, const Variant& value);
  // The same by name.
  Argument Refer(Choices& choices, const Variant& value, std::string_view name);

 private:
  using Variable =
      std::variant<Boolean, Byte, Integer, Long, Single, Double, Currency, DateTime, Decimal,
                   String, Variant, Ref<Object>, Ref<Dictionary>, Ref<Recordset>, Ref<Voucher>>;
  Variable& Any(Choices& choices, const Variant& value);

  std::deque<Variable> variables_;
};

class Neighbourhood final : public Playground, private Gateway {
 public:
  explicit Neighbourhood(Choices& choices);
  ~Neighbourhood() override;

  void Step(Choices& choices, const Tell& tell) override;
  void End() override;
  bool LeaksCount() const override { return !circles_; }

  // What a neighbour does when it is called.
  Variant Answer(std::string_view name, std::span<Argument> arguments);

 private:
  Ref<Object> CreateInstance(std::string_view prog_id, const Variant& options) override;

  // Neighbours answer by these choices while `act` is under way.
  void During(Choices& choices, const Tell& tell, const std::function<void()>& act);
  void Call(Choices& choices, const Tell& tell);
  Argument AnyArgument(Choices& choices, const MemberParameter& parameter, Variables& variables);
  Variant AnyValue(Choices& choices);
  // A value that suits a parameter or property of the type.
  Variant SuitingValue(Choices& choices, std::string_view type);
  Ref<Object> AnyObject(Choices& choices);
  Ref<Object> NewObject(Choices& choices);
  Ref<Dictionary> AnyRow(Choices& choices);
  Ref<Vector> AnyVector(Choices& choices);
  Ref<Recordset> AnyRecordset(Choices& choices);
  void Keep(Choices& choices, const Variant& value);
  std::string Place(const Object* object) const;

  static constexpr std::size_t kSlots = 12;

  TestPlatform platform_;
  Gateway* former_gateway_;
  ComponentCreator former_creator_;
  // Objects may come to hold each other, and themselves: then what stays behind is the callers' own
  // doing. In runs without circles every leak counts.
  bool circles_;
  std::array<Ref<Object>, kSlots> slots_;
  Choices* choices_ = nullptr;  // of the step under way
  const Tell* tell_ = nullptr;
  int nesting_ = 0;
  int built_ = 0;  // how deep values are being built
};

}  // namespace qdclgl::fuzz
