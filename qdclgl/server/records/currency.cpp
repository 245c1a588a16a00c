#include "qdclgl/server/records/currency.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/values/value_rules.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/record.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(CurrencyInfo)
QD_DEFINE_MEMBERS(CurrencyUpdate)

namespace {

constexpr std::string_view kChange = "change currencies";
constexpr std::string_view kRead = "read currencies";

const RecordTable& Currencies() {
  using enum ColumnType;
  static const RecordTable kTable({
      .subject = "Currency",
      .noun = "Currency",
      .table = "t_Currency",
      .id = "FCurrencyID",
      .query = "SELECT * FROM t_Currency",
      .order = "FCurrencyID",
      .deleted = "FDeleted",
      .columns = {{{"FNumber", kText}},
                  {{"FName", kText}},
                  {{"FExchangeRate", kDouble}, Keeper::kCaller, 1.0},
                  {{"FOperator", kText}, Keeper::kCaller, "*"},
                  {{"FScale", kInteger}, Keeper::kCaller, Integer{2}},
                  {{"FFixRate", kInteger}},
                  {{"FDeleted", kBoolean}, Keeper::kServer},
                  {{"UUID", kText}}},
  });
  return kTable;
}

void Save(RecordSave& save) {
  const std::string number = ToUpper(save.Text("FNumber"));
  save.record().Put("FNumber", number);
  save.RequireText("FNumber");
  const std::string called = Currencies().Called(save.record());
  if (!IsValidCode(number, 8, false)) {
    Refuse(refusal::kBadNumber, called + ": a number has 1 to 8 letters, digits and underscores.");
  }
  save.RequireUnique("FNumber");
  const auto rate = save.record().Value("FExchangeRate").As<Double>();
  if (rate == 0) Refuse(refusal::kBadValue, called + ": FExchangeRate can't be 0.");
  if (!save.is_new() && save.id() == kBaseCurrency && rate != 1) {
    Refuse(refusal::kBadValue, called + ": FExchangeRate of the base currency is 1.");
  }
  const std::string sign = save.Text("FOperator");
  if (sign != "*" && sign != "/") Refuse(refusal::kBadValue, called + ": FOperator is * or /.");
  save.Write();
  save.Commit();
}

}  // namespace

Ref<Dictionary> CurrencyInfo::GetDetail(std::string_view PropsString, const Long& CurrencyID) {
  const Caller caller = Enter(PropsString, Role::kReader, kRead);
  return Currencies().Read(caller.db, CurrencyID);
}

Ref<Dictionary> CurrencyInfo::GetDetailByNumber(std::string_view PropsString,
                                                std::string_view Number) {
  const Caller caller = Enter(PropsString, Role::kReader, kRead);
  return Currencies().Read(caller.db, Currencies().IdWith(caller.db, "FNumber", ToUpper(Number)));
}

Ref<Recordset> CurrencyInfo::GetList(std::string_view PropsString, const Long& ListOptions,
                                     const String& Filter, const String& Sort) {
  const Caller caller = Enter(PropsString, Role::kReader, kRead);
  return Currencies().List(caller.db, ListOptions, Filter, Sort);
}

Long CurrencyInfo::ExistenceCheck(std::string_view PropsString, const Variant& CurrencyID,
                                  const Variant& Number) {
  const Caller caller = Enter(PropsString, Role::kReader, kRead);
  if (!CurrencyID.IsMissing()) {
    const auto id = CurrencyID.As<Long>();
    return Currencies().Read(caller.db, id) ? id : 0;
  }
  if (Number.IsMissing()) return 0;
  return Currencies().IdWith(caller.db, "FNumber", ToUpper(Number.As<String>()));
}

Long CurrencyUpdate::Create(std::string_view PropsString, const Ref<Dictionary>& dict) {
  const Caller caller = Enter(PropsString, Role::kAdministrator, kChange);
  RecordSave save(caller, Currencies(), dict);
  Save(save);
  return save.id();
}

void CurrencyUpdate::Update(std::string_view PropsString, const Long& CurrencyID,
                            const Ref<Dictionary>& dict) {
  const Caller caller = Enter(PropsString, Role::kAdministrator, kChange);
  RecordSave save(caller, Currencies(), dict, CurrencyID);
  Save(save);
}

void CurrencyUpdate::Delete(std::string_view PropsString, const Long& CurrencyID,
                            std::string_view MachineName, std::string_view IPAddress) {
  const Caller caller = Enter(PropsString, Role::kAdministrator, kChange);
  Transaction transaction(caller.db, Transaction::Kind::kChangeRules);
  const Ref<Dictionary> currency = Currencies().Require(caller.db, CurrencyID);
  const std::string called = Currencies().Called(*currency);
  if (CurrencyID == kBaseCurrency) {
    Refuse(refusal::kInUse, called + ": the base currency can't be deleted.");
  }
  const bool used = IsUsedInVouchers(caller.db, "FCurrencyID", CurrencyID) ||
                    caller.db.QueryValue<int>(
                        "SELECT 1 FROM t_Account WHERE FCurrencyID = ? LIMIT 1", CurrencyID);
  if (!used) {
    caller.db.Execute("DELETE FROM t_Balance WHERE FCurrencyID = ?", CurrencyID);  // zeros
    Currencies().Remove(caller.db, CurrencyID);
  } else if (currency->Value("FDeleted").As<Boolean>()) {
    Refuse(refusal::kInUse,
           called + ": it is marked deleted already; accounts or vouchers use it.");
  } else {
    caller.db.Execute(
        "UPDATE t_Currency SET FDeleted = 1, FVersion = FVersion + 1 WHERE FCurrencyID = ?",
        CurrencyID);
  }
  AuditDeletion(caller, Currencies(), *currency, MachineName, IPAddress);
  transaction.Commit();
}

}  // namespace qdclgl::server
