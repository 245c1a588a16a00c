// Keys of a voucher without a column: what is kept of a row comes back; and a text of any content,
// as damaged books may have it, is read or refused.
#include "qdclgl/server/db/extras.h"

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/server/db/refusals.h"
#include "tests/fuzz/targets/target.h"
#include "tests/support/state_text.h"

namespace {

using namespace qdclgl;
using fuzz::Require;

Ref<Dictionary> AnyRow(FuzzedDataProvider& input, int depth);

Variant AnyValue(FuzzedDataProvider& input, int depth) {
  switch (input.ConsumeIntegralInRange(0, depth < 60 ? 10 : 8)) {
    case 0: return Null;
    case 1: return input.ConsumeBool();
    case 2: return input.ConsumeIntegral<Long>();
    case 3: return input.ConsumeFloatingPoint<double>();
    case 4: return Currency::FromUnits(input.ConsumeIntegral<std::int64_t>());
    case 5: return DateTime(input.ConsumeFloatingPointInRange(-700000.0, 3000000.0));
    case 6:
      return Decimal(input.ConsumeIntegral<std::uint32_t>(), input.ConsumeIntegral<std::uint64_t>(),
                     input.ConsumeIntegralInRange(0, Decimal::kMaxScale), input.ConsumeBool());
    case 7: return Variant(input.ConsumeRandomLengthString(30));
    case 8: return Bytes{};
    case 9: return Variant(AnyRow(input, depth + 1));
    default: {
      auto list = Make<Vector>();
      for (int left = input.ConsumeIntegralInRange(0, 4); left > 0; --left) {
        list->Append(AnyValue(input, depth + 1));
      }
      return Variant(list);
    }
  }
}

Ref<Dictionary> AnyRow(FuzzedDataProvider& input, int depth) {
  auto row = Make<Dictionary>();
  for (int left = input.ConsumeIntegralInRange(0, 4); left > 0; --left) {
    const std::string key = input.ConsumeRandomLengthString(10);
    row->Put(key, AnyValue(input, depth));
  }
  return row;
}

bool IsKnown(std::string_view key) { return key == "FDate"; }

// A row that is kept comes back; a refused one says BadValue.
void LookAtRow(const Dictionary& row) {
  std::string text;
  try {
    text = server::ExtrasText(row, IsKnown);
  } catch (const Error& error) {
    Require(error.number() == server::refusal::kBadValue, "a row is refused as such");
    return;
  }
  const auto read = Make<Dictionary>();
  server::PutExtras(text, *read);
  Require(server::ExtrasText(*read, IsKnown) == text, "what was kept is kept again");
  for (std::uint32_t i = 0; i < row.size(); ++i) {
    if (IsKnown(row.key_at(i)) || row.value_at(i).Is(VariantType::kDate)) continue;
    const Variant* value = read->Find(RowKey(row.key_at(i)));
    Require(value != nullptr, "each key comes back");
    Require(value->Type() == row.value_at(i).Type(), "and is of its type");
    if (value->IsObject()) continue;
    if (value->Is(VariantType::kDouble)) {
      Require(value->Held<double>() == row.value_at(i).Held<double>(), "with its number");
    } else {
      Require(testing::StateText(*value) == testing::StateText(row.value_at(i)), "with its value");
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  LookAtRow(*AnyRow(input, 0));
  const auto row = Make<Dictionary>();
  fuzz::NumberOf([&] { server::PutExtras(fuzz::TextOf(data, size), *row); });
  return 0;
}
