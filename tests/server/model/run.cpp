#include "tests/server/model/run.h"

#include <cstdio>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/vector.h"
#include "tests/server/books_state.h"

namespace qdclgl::server::testing::model {

namespace {

constexpr std::string_view kVouchers = "QDSVGLVoucher.VoucherUpdate";
constexpr std::string_view kAccountUpdate = "QDSVGLAccount.AccountUpdate";
constexpr std::string_view kCurrencyUpdate = "QDSVGLCurrency.CurrencyUpdate";
constexpr std::string_view kPeriods = "QDSVGLPeriod.PeriodUpdate";
constexpr std::size_t kStepsBetweenStates = 25;

// The rows of a query, each behind a word, whole numbers as they are and others as the model
// writes them.
template <class Value>
std::string CellText(const Value& value) {
  if constexpr (std::is_same_v<Value, std::string>) {
    return value;
  } else if constexpr (std::is_same_v<Value, double>) {
    char number[32];
    std::snprintf(number, sizeof number, "%.12g", value);
    return number;
  } else {
    return std::to_string(value);
  }
}
template <class... Values>
std::string RowText(const std::string& word, const std::tuple<Values...>& row) {
  return std::apply(
      [&](const auto&... values) { return (word + ... + (" " + CellText(values))) + "\n"; }, row);
}

class Episode {
 public:
  explicit Episode(DatabaseKind database) : books_(database), users_(Users()) {
    for (const char* group : {"Receipts", "Payments"}) books_.AddGroup(group);
    for (User& user : users_) {
      if (user.name != "administrator") books_.AddUser(user.name, user.roles);
      user.id =
          *books_.Books().QueryValue<Long>("SELECT FUserID FROM t_User WHERE FName = ?", user.name);
    }
    for (const User& user : users_) props_.push_back(books_.Login(user.name));
    books_.props = props_[0];
    for (const char* number : {"1000", "2000", "3000", "4000", "4000.01"}) {
      Do({.kind = Kind::kAddAccount, .name = number});
    }
    for (const char* number : {"USD", "JPY"}) {
      Do({.kind = Kind::kAddCurrency, .way = number == std::string("JPY"), .name = number});
    }
  }

  // The answers of the model and of the books.
  std::pair<std::string, std::string> Do(const Operation& operation) {
    operation_ = &operation;
    user_ = &users_[operation.user];
    if (operation.kind < Kind::kClose && operation.kind != Kind::kCreate &&
        model_.vouchers.empty()) {
      return {Model::kNone, Model::kNone};
    }
    voucher_ = model_.vouchers.empty() ? 0 : operation.voucher % model_.vouchers.size();
    switch (operation.kind) {
      case Kind::kCreate: return Create();
      case Kind::kUpdate: return Update();
      case Kind::kDelete:
        return Step(&Model::Delete, [&] { Call(kVouchers, "Delete", VoucherId(), operation.way); });
      case Kind::kCheck: return Step(&Model::Check, [&] { TakeStep("Check"); });
      case Kind::kApprove: return Step(&Model::Approve, [&] { TakeStep("Approve"); });
      case Kind::kCash: return Step(&Model::Cash, [&] { TakeStep("Cash"); });
      case Kind::kPost:
        return Step(&Model::Post,
                    [&] { Call(kVouchers, operation.way ? "Post" : "UnPost", VoucherId()); });
      case Kind::kClearCashFlow:
        return Both([&] { Call(kVouchers, "ClearCashFlow", VoucherId()); },
                    [&] { return model_.ClearCashFlow(*user_, voucher_); });
      case Kind::kClose:
        return Both([&] { Call(kPeriods, "Close"); }, [&] { return model_.Close(*user_); });
      case Kind::kReopen:
        return Both([&] { Call(kPeriods, "Reopen"); }, [&] { return model_.Reopen(*user_); });
      case Kind::kSet:
        return Both(
            [&] {
              Call("QDSVBase.SystemProfile", "SetProfile", "GL", operation.name,
                   operation.way ? "1" : "0");
            },
            [&] { return model_.Set(*user_, operation.name, operation.way); });
      default: return DoMasterData();
    }
  }

  // Where the states differ, both of them; otherwise nothing.
  std::optional<std::string> Difference() const {
    if (auto text = DifferenceOf("state", model_.State(), State())) return text;
    const Long last = model_.current + 1, first = std::max<Long>(model_.current - 1, 0);
    for (const char* list : {"GetList", "GetListFromLines"}) {
      if (auto text = DifferenceOf(list, model_.Balances(), Balances(list))) return text;
      // Periods of one year, as the lists have it.
      if (first / 12 != last / 12) continue;
      if (auto text = DifferenceOf(std::string(list) + " of periods", model_.Balances(first, last),
                                   Balances(list, first, last))) {
        return text;
      }
    }
    return DifferenceOf("check", "", books_.Breaches());
  }

 private:
  template <class... Values>
  Variant Call(std::string_view component, std::string_view method, Values&&... values) {
    return TestBooks::Call(component, method, props_[operation_->user],
                           std::forward<Values>(values)...);
  }

  Long VoucherId() const { return model_.vouchers[voucher_].id; }

  std::pair<std::string, std::string> Both(const std::function<void()>& books,
                                           const std::function<std::string()>& model) {
    const std::string answer = RefusalOf(books);
    return {model(), answer};
  }
  std::pair<std::string, std::string> Step(std::string (Model::*step)(const User&, std::size_t,
                                                                      bool),
                                           const std::function<void()>& books) {
    return Both(books, [&] { return (model_.*step)(*user_, voucher_, operation_->way); });
  }
  void TakeStep(const char* step) { Call(kVouchers, step, VoucherId(), operation_->way); }

  // ---- Vouchers ----

  static Ref<Dictionary> RowOf(const Content& content) {
    auto lines = Make<Vector>();
    for (const Line& line : content.lines) {
      lines->Append(Variant(Row({{"FAccountNumber", line.account},
                                 {"FCurrencyNumber", line.currency},
                                 {"FDC", line.side},
                                 {"FAmount", Currency::FromUnits(line.amount)},
                                 {"FAmountFor", Currency::FromUnits(line.amount_for)},
                                 {"FExchangeRate", line.rate},
                                 {"FQuantity", line.quantity},
                                 {"FCashFlowItem", line.cash_flow}})));
    }
    const Long month = content.period + 12;  // from January of the year before
    return Row({{"FDate", DateTime::FromYmd(2023 + month / 12, 1 + month % 12, 10)},
                {"FGroupID", content.group},
                {"FNumber", content.number},
                {"_Entries", lines}});
  }

  std::pair<std::string, std::string> Create() {
    const Content content = ContentOf(*operation_, model_);
    Long id = 0;
    const auto answers = Both([&] { id = Call(kVouchers, "Create", RowOf(content)).As<Long>(); },
                              [&] { return model_.Create(*user_, content); });
    if (answers.first == Model::kNone) model_.vouchers.back().id = id;
    return answers;
  }

  std::pair<std::string, std::string> Update() {
    const Content content = ContentOf(*operation_, model_);
    const Long version = model_.vouchers[voucher_].version - (operation_->is_stale ? 1 : 0);
    return Both(
        [&] {
          const Ref<Dictionary> row = RowOf(content);
          row->Put("FVersion", version);
          Call(kVouchers, "Update", VoucherId(), row);
        },
        [&] { return model_.Update(*user_, voucher_, version, content); });
  }

  // ---- Accounts and currencies ----

  template <class Records>
  static Long IdIn(const Records& records, const std::string& number) {
    const auto record = records.find(number);
    return record == records.end() ? 0 : record->second.id;
  }

  // A change of one key of a record, read as it is; a record that is not there is a new row.
  void Change(std::string_view info, std::string_view update, Long id, Long version,
              std::string_view key, const Variant& value) {
    Ref<Dictionary> row =
        TestBooks::Call(info, "GetDetail", props_[0], id).template As<Dictionary>();
    if (!row) row = Row({{"FVersion", version}});
    row->Put(key, value);
    Call(update, "Update", id, row);
  }

  std::pair<std::string, std::string> DoMasterData() {
    const std::string& number = operation_->name;
    const bool way = operation_->way;
    const Long account = IdIn(model_.accounts, number), currency = IdIn(model_.currencies, number);
    Long id = 0;
    switch (operation_->kind) {
      case Kind::kAddAccount: {
        const auto answers = Both(
            [&] {
              id = Call(kAccountUpdate, "Create", Row({{"FNumber", number}, {"FName", number}}))
                       .template As<Long>();
            },
            [&] { return model_.AddAccount(*user_, number); });
        if (answers.first == Model::kNone) model_.accounts[number].id = id;
        return answers;
      }
      case Kind::kMarkAccount:
        return Both(
            [&] {
              Change("QDSVGLAccount.AccountInfo", kAccountUpdate, account, 1, "FDelete", way);
            },
            [&] { return model_.MarkAccount(*user_, number, way); });
      case Kind::kRemoveAccount:
        return Both([&] { Call(kAccountUpdate, "Delete", account); },
                    [&] { return model_.RemoveAccount(*user_, number); });
      case Kind::kAddCurrency: {
        const auto answers = Both(
            [&] {
              id = Call(kCurrencyUpdate, "Create",
                        Row({{"FNumber", number}, {"FOperator", way ? "/" : "*"}}))
                       .template As<Long>();
            },
            [&] { return model_.AddCurrency(*user_, number, way); });
        if (answers.first == Model::kNone) model_.currencies[number].id = id;
        return answers;
      }
      case Kind::kChangeOperator:
        return Both(
            [&] {
              const bool divides = currency != 0 && model_.currencies.at(number).divides;
              Change("QDSVGLCurrency.CurrencyInfo", kCurrencyUpdate, currency, 1, "FOperator",
                     Variant(divides ? "*" : "/"));
            },
            [&] { return model_.ChangeOperator(*user_, number); });
      default:
        return Both([&] { Call(kCurrencyUpdate, "Delete", currency); },
                    [&] { return model_.RemoveCurrency(*user_, number); });
    }
  }

  // ---- The whole ----

  template <class... Columns>
  std::string Rows(const std::string& word, const std::string& sql) const {
    std::string text;
    for (const auto& row : books_.Books().Query<Columns...>(sql)) text += RowText(word, row);
    return text;
  }

  std::string State() const {
    using I = std::int64_t;
    std::string state = Rows<std::string, std::string>(
        "current", "SELECT year.FValue, period.FValue FROM t_SystemProfile year, t_SystemProfile"
                   " period WHERE year.FCategory = 'GL' AND year.FKey = 'CurrentYear' AND"
                   " period.FCategory = 'GL' AND period.FKey = 'CurrentPeriod'");
    const auto vouchers = books_.Books().Query<I, I, I, I, I, I, I, I, I, I, I, I, I, I, I, I, I>(
        "SELECT FVoucherID, FVersion, FYear, FPeriod, FGroupID, FNumber,"
        " FPreparerID, FChecked, FCheckerID, FApproveID, FCashierID,"
        " FPosted, FPosterID, FDeleted, FDebitTotal, FCreditTotal,"
        " FEntryCount FROM t_Voucher ORDER BY FVoucherID");
    std::map<I, std::string> lines;
    for (const auto& row :
         books_.Books().Query<I, I, std::string, std::string, I, I, I, double, double, I>(
             "SELECT e.FVoucherID, e.FEntryID, a.FNumber, c.FNumber, e.FDC,"
             " e.FAmount, e.FAmountFor, e.FExchangeRate, e.FQuantity,"
             " e.FCashFlowItem FROM t_VoucherEntry e"
             " JOIN t_Account a ON a.FAccountID = e.FAccountID"
             " JOIN t_Currency c ON c.FCurrencyID = e.FCurrencyID"
             " ORDER BY e.FVoucherID, e.FEntryID")) {
      std::apply(
          [&](I voucher, const auto&... cells) {
            lines[voucher] += RowText("line", std::tuple(cells...));
          },
          row);
    }
    for (const auto& row : vouchers) state += RowText("voucher", row) + lines[std::get<0>(row)];
    state += Rows<I>("posted", "SELECT FSize FROM t_Posted");
    state += Rows<I, I, I, I>("counter", "SELECT FYear, FPeriod, FGroupID, FNext FROM t_Counter"
                                         " ORDER BY FYear, FPeriod, FGroupID");
    state += Rows<std::string, I, I, I, I, I>(
        "account", "SELECT FNumber, FAccountID, FVersion, FLevel, FDetail, FDelete FROM t_Account"
                   " ORDER BY FNumber");
    state += Rows<std::string, I, I, std::string, I>(
        "currency", "SELECT FNumber, FCurrencyID, FVersion, FOperator, FDeleted FROM t_Currency"
                    " ORDER BY FNumber");
    return state;
  }

  std::string Balances(const char* method, Long first = -1, Long last = -1) const {
    const Ref<Recordset> list =
        TestBooks::Call("QDSVGLBalance.BalanceInfo", method, props_[0],
                        last < 0 ? Long{0} : 2024 + first / 12, last < 0 ? Long{0} : 1 + first % 12,
                        last < 0 ? Long{0} : 1 + last % 12)
            .As<Recordset>();
    std::string text;
    for (; !list->Eof(); list->MoveNext()) {
      const auto value = [&](const char* column) {
        return list->FieldValue(list->FieldPosition(column));
      };
      text += "balance " + value("FAccountNumber").As<String>() + " " +
              std::to_string(value("FCurrencyID").As<Long>());
      for (const char* column : {"FBeginBalance", "FDebit", "FCredit", "FEndBalance",
                                 "FBeginBalanceFor", "FDebitFor", "FCreditFor", "FEndBalanceFor"}) {
        text += " " + std::to_string(value(column).As<Currency>().units());
      }
      for (const char* column : {"FBeginQty", "FDebitQty", "FCreditQty", "FEndQty"}) {
        text += " " + CellText(value(column).As<Double>());
      }
      text += "\n";
    }
    return text;
  }

  static std::optional<std::string> DifferenceOf(const std::string& what, const std::string& model,
                                                 const std::string& books) {
    if (model == books) return std::nullopt;
    return what + ": the model has\n" + model + "and the books have\n" + books;
  }

  RecordBooks books_;
  std::vector<User> users_;
  std::vector<std::string> props_;
  Model model_;
  const Operation* operation_ = nullptr;
  const User* user_ = nullptr;
  std::size_t voucher_ = 0;
};

}  // namespace

std::optional<std::string> Run(DatabaseKind database, const std::vector<Operation>& work,
                               std::map<std::string, int>* answers) {
  Episode episode(database);
  for (std::size_t step = 0; step < work.size(); ++step) {
    const auto [model, books] = episode.Do(work[step]);
    if (answers != nullptr) ++(*answers)[std::string(NameOf(work[step].kind)) + " " + books];
    if (model != books) {
      return "step " + std::to_string(step) + ": the model says " + model + " and the books say " +
             books;
    }
    if (step % kStepsBetweenStates != kStepsBetweenStates - 1 && step + 1 < work.size()) continue;
    if (auto difference = episode.Difference()) {
      return "behind step " + std::to_string(step) + ", " + *difference;
    }
  }
  return std::nullopt;
}

}  // namespace qdclgl::server::testing::model
