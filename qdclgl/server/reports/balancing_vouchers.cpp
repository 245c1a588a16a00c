#include "qdclgl/server/reports/balancing_vouchers.h"

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/server/records/currency.h"
#include "qdclgl/server/vouchers/line_size.h"

namespace qdclgl::server {

namespace {

constexpr std::size_t kMostLines = 1000;
constexpr double kMillion = 1e6;

bool AreOpposite(std::int64_t left, std::int64_t right) {
  return (left < 0 && right > 0) || (left > 0 && right < 0);
}

// Whether what stands there is a debit; then a credit takes it away.
bool IsDebit(const BalancingVouchers::Standing& standing) {
  if (standing.amount != 0) return standing.amount > 0;
  return standing.amount_for != 0 ? standing.amount_for > 0 : standing.quantity > 0;
}

}  // namespace

void BalancingVouchers::Take(const Standing& standing) {
  if (!AreOpposite(standing.amount, standing.amount_for)) return Put(standing);
  // Each on its own side: books may take no negative amounts.
  Standing base = standing, foreign = standing;
  base.amount_for = 0;
  foreign.amount = foreign.quantity = 0;
  Put(base);
  Put(foreign);
}

void BalancingVouchers::Put(const Standing& standing) {
  const auto fits = [&] {
    return server::AddLine(size_, standing.amount, standing.amount_for,
                           static_cast<double>(standing.quantity) / kMillion);
  };
  // The line against it is as large as the others together at most.
  if (lines_->size() >= kMostLines || size_ > kLargestAmount / 2 || !fits()) {
    EndVoucher();
    fits();
  }
  AddLine(standing);
  lacking_ += standing.amount;
}

void BalancingVouchers::AddLine(const Standing& standing) {
  const bool is_debit = IsDebit(standing);
  const auto amount = [&](std::int64_t units) {
    return Currency::FromUnits(is_debit ? units : -units);
  };
  auto line = Make<Dictionary>();
  line->Put("FAccountID", standing.account);
  line->Put("FDC", Long{is_debit ? 0 : 1});
  line->Put("FAmount", amount(standing.amount));
  line->Put("FCurrencyID", standing.currency);
  if (standing.currency != kBaseCurrency) line->Put("FAmountFor", amount(standing.amount_for));
  if (standing.quantity != 0) {
    const double quantity = static_cast<double>(standing.quantity) / kMillion;
    line->Put("FQuantity", is_debit ? quantity : -quantity);
  }
  line->Put("FExplanation", explanation_);
  if (standing.details) line->Put("_Details", Variant(standing.details));
  lines_->Append(Variant(line));
}

void BalancingVouchers::EndVoucher() {
  if (lines_->size() == 0) return;
  if (lacking_ != 0) {
    AddLine({.account = against_, .currency = kBaseCurrency, .amount = -lacking_});
  }
  vouchers_->AddRow({date_, explanation_, mark_, Variant(lines_)});
  lines_ = Make<Vector>();
  size_ = lacking_ = 0;
}

Ref<Recordset> BalancingVouchers::Finish() {
  EndVoucher();
  return vouchers_;
}

}  // namespace qdclgl::server
