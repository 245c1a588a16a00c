// Currencies. Currency 1 is the base currency, in which vouchers balance.
#include "qdclgl/server/records/currency.h"

#include "qdclgl/frame/values/value_rules.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/record_save.h"

namespace qdclgl::server {

namespace {

void Check(RecordSave& save) {
  save.RequireKey();
  if (!IsValidCode(save.Text("FNumber"), 8, false)) {
    save.Refuse(refusal::kBadNumber, "a number has 1 to 8 letters, digits and underscores.");
  }
  save.RequireUniqueKey();
  const auto rate = save.record().Value("FExchangeRate").As<Double>();
  if (rate == 0) save.Refuse(refusal::kBadValue, "FExchangeRate can't be 0.");
  if (!save.is_new() && save.id() == kBaseCurrency && rate != 1) {
    save.Refuse(refusal::kBadValue, "FExchangeRate of the base currency is 1.");
  }
  const std::string sign = save.Text("FOperator");
  if (sign != "*" && sign != "/") save.Refuse(refusal::kBadValue, "FOperator is * or /.");
  // Stored amounts go by them.
  const bool is_fixed = !save.is_new() && (save.Changes("FOperator") ||
                                           (save.id() == kBaseCurrency && save.Changes("FScale")));
  if (is_fixed && IsUsedInVouchers(save.db(), "FCurrencyID", save.id())) {
    save.Refuse(refusal::kInUse, "vouchers use it; its operator stays, and the base currency's"
                                 " scale.");
  }
}

void Remove(RecordRemoval& removal) {
  if (removal.id() == kBaseCurrency) {
    removal.Refuse(refusal::kInUse, "the base currency can't be deleted.");
  }
  Database& db = removal.db();
  const bool used = IsUsedInVouchers(db, "FCurrencyID", removal.id()) || removal.Referrer();
  if (!used) {
    RemoveEmptyBalances(db, "FCurrencyID", removal.id());
    removal.Remove();
  } else if (removal.stored().Value("FDeleted").As<Boolean>()) {
    removal.Refuse(refusal::kInUse, "it is marked deleted already; accounts or vouchers use it.");
  } else {
    removal.Mark();
  }
}

}  // namespace

const MasterData& Currencies() {
  using enum ColumnType;
  static const MasterData kKind({
      .component = "QDSVGLCurrency.Currency",
      .noun = "currency",
      .nouns = "currencies",
      .list = {"currencies", "Lists the currencies",
               "FCurrencyID FNumber FName FExchangeRate FOperator"},
      .table = "t_Currency",
      .id = "FCurrencyID",
      .key = {.column = "FNumber", .ignores_case = true},
      .deleted = "FDeleted",
      .is_marked_when_used = true,
      .columns = {{{"FNumber", kText}},
                  {{"FName", kText}},
                  {{"FExchangeRate", kDouble}, Keeper::kCaller, 1.0},
                  {{"FOperator", kText}, Keeper::kCaller, "*"},
                  {{"FScale", kInteger}, Keeper::kCaller, Integer{2}},
                  {{"FFixRate", kInteger}},
                  {{"FDeleted", kBoolean}, Keeper::kServer},
                  {{"UUID", kText}}},
      .check = Check,
      .remove = Remove,
      .errors = "Required, BadNumber, NumberTaken, BadValue",
      .helps = {{"Update",
                 "Saves a currency; the new version comes back in the row. Once vouchers use it, "
                 "its operator stays, and so does the scale of the base currency (InUse). Further "
                 "errors: NotFound, NoVersion, Changed, and those of Create."},
                {"Delete",
                 "Removes a currency; one that accounts or vouchers use is marked deleted instead. "
                 "NotFound; InUse for the base currency, and for one that is used and marked "
                 "already."}},
  });
  return kKind;
}

}  // namespace qdclgl::server
