#include "tests/fuzz/office.h"

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/server/books/books_check.h"
#include "qdclgl/server/db/refusals.h"
#include "tests/fuzz/little_languages.h"
#include "tests/fuzz/values.h"
#include "tests/support/state_text.h"

namespace qdclgl::fuzz {

using server::testing::RecordBooks;

namespace {

constexpr std::string_view kAccounts[] = {"1000",    "2000", "3000", "4000",      "4000.01",
                                          "4000.02", "5000", "",     "4000.01.01"};
constexpr std::string_view kUsers[] = {"administrator", "ann", "bob", "nobody"};
constexpr std::string_view kColumns[] = {
    "FName",    "FNumber", "FAccountID",      "FDate",         "FYear",     "FPeriod",
    "FGroupID", "FPosted", "FDebitTotal",     "FVoucherID",    "FPreparer", "FCurrencyID",
    "FVersion", "FOrigin", "FSubject",        "FExchangeRate", "FRoles",    "FDeleted",
    "FLevel",   "fname",   "t_Account.FName", "FNobody"};

bool IsPlain(std::string_view text) { return !text.starts_with('/'); }

std::string WordsOf(const Error& error) { return " -> " + std::string(error.what()); }

}  // namespace

// Two accounts with sub-accounts, groups, currencies and people.
Office::Office(server::testing::DatabaseKind kind) : books_(std::in_place, kind) {
  RecordBooks& books = *books_;
  connection_ = books.connection;
  for (const char* name : {"Receipts", "Payments"}) books.AddGroup(name);
  for (const std::string_view number : {"1000", "2000", "3000", "4000", "4000.01", "4000.02"}) {
    books.AddAccount(number);
  }
  RecordBooks::Call(
      "QDSVGLCurrency.CurrencyUpdate", "Create", books.props,
      testing::Row(
          {{"FNumber", "USD"}, {"FName", "Dollar"}, {"FExchangeRate", 1.1}, {"FOperator", "*"}}));
  books.AddUser("ann", "preparer, checker, poster");
  books.AddUser("bob", "reader");
  for (const char* user : {"bob", "ann", "administrator"}) {
    sessions_.push_back(books.Login(user));
  }
  books.AddVoucher(1, 1, 3, 100);
  state_ = books.State();
}

Office::~Office() {
  rows_.clear();
  books_.reset();
  server::testing::RemoveBooks(connection_);
}

const server::ServerComponent& Office::AnyComponent(Choices& choices) const {
  const auto components = server::ServerComponents();
  const server::ServerComponent* component = &choices.Of(components);
  // Half of all calls go to the vouchers.
  while (choices.OneIn(2) && !component->prog_id.starts_with("QDSVGLVoucher.")) {
    component = &choices.Of(components);
  }
  return *component;
}

std::string Office::AnyConnection(Choices& choices) const {
  switch (choices.Below(6)) {
    case 0: return "Data Source=new" + std::to_string(choices.Below(3)) + ".db;";
    case 1:
      return "Provider=PostgreSQL;Host=127.0.0.1;Port=1;Initial catalog=x;User ID=" +
             AnyText(choices) + ";";
    case 2: {
      const std::string text = AnyText(choices);
      return IsPlain(text) ? text : "";
    }
    case 3: return connection_ + AnyText(choices);
    default: return connection_;
  }
}

// A voucher that balances, most of the time.
Ref<Dictionary> Office::AnyVoucher(Choices& choices) {
  auto voucher =
      testing::Row({{"FDate", DateTime::FromYmd(2024, 1 + static_cast<int>(choices.Below(3)), 15)},
                    {"FGroupID", Long{1} + static_cast<Long>(choices.Below(2))}});
  auto lines = Make<Vector>();
  const Currency amount = choices.OneIn(12) ? Currency::FromUnits(INT64_MAX / 2)
                                            : Currency(static_cast<Long>(choices.Below(1000)));
  for (std::size_t pairs = 1 + choices.Below(2); pairs > 0; --pairs) {
    for (const Long side : {1, 0}) {
      auto line = testing::Row(
          {{"FAccountNumber", choices.Of(kAccounts)}, {"FDC", side}, {"FAmount", amount}});
      if (choices.OneIn(5)) line->Put(choices.Of(RowKeys()), AnyPlainValue(choices));
      if (choices.OneIn(5)) line->Put("FAccountID", Variant(static_cast<Long>(choices.Below(8))));
      lines->Append(Variant(line));
    }
  }
  voucher->Put("_Entries", Variant(lines));
  return voucher;
}

Ref<Dictionary> Office::AnyRow(Choices& choices, std::string_view prog_id) {
  Ref<Dictionary> row = Make<Dictionary>();
  if (!rows_.empty() && choices.OneIn(2)) {
    row = choices.Of(rows_)->Clone();
  } else if (prog_id.starts_with("QDSVGLVoucher.")) {
    row = AnyVoucher(choices);
  } else {
    row->Put("FNumber",
             Variant(choices.OneIn(3) ? AnyText(choices) : std::string(choices.Of(kAccounts))));
    row->Put("FName",
             Variant(choices.OneIn(3) ? AnyText(choices) : std::string(choices.Of(kUsers))));
    if (choices.OneIn(3)) row->Put("FRoles", Variant("reader"));
    if (choices.OneIn(2)) row->Put("FExchangeRate", Variant(AnyDouble(choices)));
    if (choices.OneIn(2)) row->Put("FOperator", Variant("*"));
  }
  for (std::size_t odd = choices.OneIn(2) ? 0 : choices.Below(4); odd > 0; --odd) {
    const Variant value = choices.OneIn(6)   ? Variant(AnyVoucher(choices))
                          : choices.OneIn(8) ? Variant(testing::Row({{"a", 1}}))
                                             : AnyPlainValue(choices);
    if (choices.OneIn(4)) {
      row->Put(AnyText(choices), value);
    } else {
      row->Put(choices.Of(RowKeys()), value);
    }
  }
  return row;
}

Variant Office::AnyValueFor(Choices& choices, std::string_view prog_id,
                            const MemberParameter& parameter) {
  if (parameter.name == "PropsString") {
    if (choices.OneIn(15)) return AnyText(choices);
    return choices.OneIn(8) ? choices.Of(sessions_) : books_->props;
  }
  if (parameter.name == "ConnectionText") return AnyConnection(choices);
  if (parameter.name == "Filter") return AnyFilter(choices, kColumns);
  if (parameter.name == "Sort") return AnySort(choices, kColumns);
  if (parameter.name == "Password" && choices.OneIn(2)) return "";
  if (parameter.name == "UserName") return choices.Of(kUsers);
  if (parameter.name == "nYear" && choices.OneIn(2)) return Long{2024};
  if (choices.OneIn(10)) return AnyPlainValue(choices);
  if (parameter.type == "Dictionary") return Variant(AnyRow(choices, prog_id));
  if (parameter.type == "Boolean") return choices.OneIn(2);
  if (parameter.type == "Date") {
    return choices.OneIn(3) ? DateTime(AnyDouble(choices)) : DateTime::FromYmd(2024, 2, 29);
  }
  if (parameter.type == "String") return AnyText(choices);
  if (parameter.type == "Long" || choices.OneIn(2)) {
    return choices.OneIn(8) ? AnyLong(choices) : static_cast<Long>(choices.Below(8));
  }
  return AnyPlainValue(choices);
}

Argument Office::AnyArgument(Choices& choices, std::string_view prog_id,
                             const MemberParameter& parameter, Held& held) {
  const Variant value = AnyValueFor(choices, prog_id, parameter);
  if (choices.OneIn(3)) return value;
  if (value.Is(VariantType::kLong)) return ByRef(held.longs.emplace_back(value.Held<Long>()));
  if (value.Is(VariantType::kBoolean)) {
    return ByRef(held.truths.emplace_back(value.Held<Boolean>()));
  }
  if (value.Is(VariantType::kDate)) return ByRef(held.dates.emplace_back(value.Held<DateTime>()));
  if (value.IsString()) return ByRef(held.texts.emplace_back(value.Held<String>()));
  if (value.IsObject() && !value.IsNothing() && choices.OneIn(2)) {
    return ByRef(held.rows.emplace_back(value.As<Dictionary>()));
  }
  return ByRef(held.variants.emplace_back(value));
}

void Office::Keep(const Variant& result) {
  constexpr std::size_t kMost = 30;
  if (result.IsString() && result.TextView().find("Session=") != std::string_view::npos) {
    sessions_.push_back(result.As<String>());
  }
  if (!result.IsObject() || result.IsNothing()) return;
  if (result.ObjectPointer()->ClassName() != "Dictionary") return;
  if (rows_.size() == kMost) rows_.erase(rows_.begin());
  rows_.push_back(result.As<Dictionary>());
}

void Office::Step(Choices& choices, const Tell& tell) {
  const server::ServerComponent& component = AnyComponent(choices);
  const ClassMember& member = choices.Of(component.table->members());
  // These work on a connection of their own, which would wait for the batch until it gives up.
  if (in_batch_ && component.prog_id == "QDSVGLBooks.BooksUpdate") return;
  Held held;
  std::vector<Argument> arguments;
  for (const MemberParameter& parameter : member.parameters) {
    if (parameter.optional && choices.OneIn(4)) break;
    arguments.push_back(AnyArgument(choices, component.prog_id, parameter, held));
  }
  const std::string call = std::string(component.prog_id) + "." + std::string(member.row.name) +
                           "(" + testing::StateText(arguments) + ")";
  tell(call);
  try {
    const Variant result = component.make()->Invoke(member.row.name, CallKind::kMethod, arguments);
    Keep(result);
    if (component.prog_id == "QDSVGLBatch.BatchUpdate") in_batch_ = member.row.name == "Begin";
    state_ = books_->State();
  } catch (const Error& error) {
    const std::string behind = std::string(component.prog_id) + "." + std::string(member.row.name) +
                               "(" + testing::StateText(arguments) + ")";
    if (error.number() == server::refusal::kDatabaseFailed) {
      throw Breach{"the database reports a failure" + WordsOf(error)};
    }
    if (behind != call) throw Breach{"a refused call has changed its arguments" + WordsOf(error)};
    // A wrong password is counted and on the trail; with a session its batch is gone.
    const bool is_over = in_batch_ && error.number() == server::refusal::kNotLoggedIn;
    if (error.number() == server::refusal::kLoginRefused || is_over) state_ = books_->State();
    if (books_->State() != state_) {
      throw Breach{"a refused call has changed the books" + WordsOf(error)};
    }
  }
}

void Office::End() {
  // Not by a call, as the last session may be out, and all passwords changed.
  const std::string breaches =
      server::testing::TextOf(server::CheckBooks(books_->Books(), ""),
                              {"FRule", "FSubject", "FRecordID", "FRecord", "FProblem"});
  if (!breaches.empty()) throw Breach{"the books break a rule: " + breaches};
}

}  // namespace qdclgl::fuzz
