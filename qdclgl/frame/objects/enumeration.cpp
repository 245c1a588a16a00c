#include "qdclgl/frame/objects/enumeration.h"

#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

bool Enumerator::Next(Variant& item) {
  const Ref<IWalkVariant> walker = walker_;  // outlives this enumerator where need be
  Boolean done = false;
  walker->Next(item, done);
  return done;
}

bool Enumerator::Skip(Long count) {
  const Ref<IWalkVariant> walker = walker_;
  for (; count > 0; --count) {
    Boolean done = false;
    walker->Skip(done);
    if (!done) return false;
  }
  return true;
}

void Enumerator::Reset() {
  const Ref<IWalkVariant> walker = walker_;
  walker->Reset();
}

Variant Enumerator::Invoke(std::string_view name, CallKind kind, std::span<Argument> arguments) {
  const auto is = [&](std::string_view member, std::size_t count) {
    if (!EqualsIgnoringAsciiCase(name, member)) return false;
    if (arguments.size() != count) RaiseError(error_number::kWrongArgumentCount);
    return true;
  };
  if (is("Next", 1)) {
    Variant item;
    if (!Next(item)) return false;
    arguments[0].Put(item);
    return true;
  }
  if (is("Skip", 1)) return Skip(arguments[0].As<Long>());
  if (is("Reset", 0)) {
    Reset();
    return {};
  }
  return Object::Invoke(name, kind, arguments);
}

Ref<Enumerator> EnumeratorFactory::CreateEnum(const Ref<IWalkVariant>& walker) const {
  return Make<Enumerator>(walker);
}

Variant EnumeratorFactory::NullToDefault(const Variant& value, const Variant& default_value) const {
  return value.IsNull() ? default_value : value;
}

const EnumeratorFactory& EnumFactory() {
  static const EnumeratorFactory factory;
  return factory;
}

}  // namespace qdclgl
