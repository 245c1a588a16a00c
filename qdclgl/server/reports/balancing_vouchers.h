// Vouchers that the server proposes: lines on many accounts against one, as many vouchers as it
// takes.
#pragma once

#include <string>
#include <string_view>

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

class BalancingVouchers {
 public:
  // What stands on an account in a currency, debit positive, and is to go from there.
  struct Standing {
    Long account = 0, currency = 0;
    Ref<Vector> details = {};  // the items, as a line's details; null for none
    std::int64_t amount = 0, amount_for = 0, quantity = 0;  // ten-thousandths, millionths
  };

  BalancingVouchers(DateTime date, std::string_view mark, std::string explanation, Long against)
      : date_(date), mark_(mark), explanation_(std::move(explanation)), against_(against) {}

  // Lines that take it away.
  void Take(const Standing& standing);
  // The vouchers, each balanced by a line on the account against which they are.
  Ref<Recordset> Finish();

 private:
  void Put(const Standing& standing);
  void AddLine(const Standing& standing);
  void EndVoucher();

  DateTime date_;
  std::string mark_, explanation_;
  Long against_;
  Ref<Vector> lines_ = Make<Vector>();
  std::int64_t size_ = 0;
  std::int64_t lacking_ = 0;  // what the lines so far take away
  Ref<Recordset> vouchers_ =
      Recordset::Create({"FDate", "FExplanation", "FInternalInd", "_Entries"});
};

}  // namespace qdclgl::server
