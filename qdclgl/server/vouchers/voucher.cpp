#include "qdclgl/server/vouchers/voucher.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/conversions.h"
#include "qdclgl/frame/objects/variant_kind.h"
#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/access/session.h"
#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/vouchers/posting.h"
#include "qdclgl/server/vouchers/voucher_editors.h"
#include "qdclgl/server/vouchers/voucher_rules.h"
#include "qdclgl/server/vouchers/voucher_tree.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(VoucherInfo)
QD_DEFINE_MEMBERS(VoucherUpdate)

namespace {

constexpr std::string_view kSubject = "Voucher";
constexpr Integer kNobody = -1;

// ---- Reading ----

Ref<Dictionary> DetailOf(const Caller& caller, Long id, bool show_deleted) {
  const std::optional<VoucherTree> tree = VoucherTree::Read(caller, id);
  if (!tree || (tree->state.Get<"FDeleted">() && !show_deleted)) return nullptr;
  return tree->ToRow();
}

// The voucher with that number, group being a name or an id; 0 when there is none.
Long FindByNumber(Database& db, Long year, Long period, const Variant& group, Long number,
                  bool show_deleted) {
  const auto id =
      IsVariantKind(group, variant_kind::kNumber)
          ? db.QueryValue<Long>(
                "SELECT FVoucherID FROM t_Voucher WHERE FYear = ? AND FPeriod = ? AND FGroupID = ?"
                " AND FNumber = ? AND FDeleted <= ?",
                year, period, CLng(group), number, show_deleted)
          : db.QueryValue<Long>(
                "SELECT v.FVoucherID FROM t_Voucher v JOIN t_VoucherGroup g"
                " ON g.FGroupID = v.FGroupID WHERE v.FYear = ? AND v.FPeriod = ? AND g.FName = ?"
                " AND v.FNumber = ? AND v.FDeleted <= ?",
                year, period, ConcatenatedText(group), number, show_deleted);
  return id.value_or(0);
}

// ---- Changing ----

// Takes a voucher's header for a change. NotFound when there is none.
VoucherTree Held(Statement& asked, Long id) {
  std::optional<VoucherTree> tree = VoucherTree::Held(asked);
  if (!tree) {
    Refuse(refusal::kNotFound, "There is no voucher with the id " + std::to_string(id) + ".");
  }
  return *std::move(tree);
}

// Refuses a row that was read before somebody else saved the voucher.
void RequireVersion(const VoucherTree& stored, const Dictionary& row) {
  const Variant* given = row.Find(RowKey("FVersion"));
  if (given == nullptr || given->IsEmpty()) {
    Refuse(refusal::kNoVersion, "Voucher " + stored.Name() +
                                    ": the row does not say which version it changes; read the "
                                    "voucher again.");
  }
  const Long version = stored.state.Get<"FVersion">();
  const Long sent = Normalized({"FVersion", ColumnType::kLong}, *given).Held<Long>();
  if (sent == version) return;
  Refuse(refusal::kChanged, "Voucher " + stored.Name() +
                                ": somebody else has saved it in the meantime; it has version " +
                                std::to_string(version) + ", the row sent is version " +
                                std::to_string(sent) + ".");
}

// What the trail tells of a voucher; null where there is none.
std::string ChangesOf(const VoucherTree* before, const VoucherTree* after,
                      VoucherTree::Trailing part = VoucherTree::Trailing::kWhole) {
  const auto trail = [&](const VoucherTree* tree) {
    return tree != nullptr ? tree->Trail(part) : TrailRow();
  };
  const TrailRow old_row = trail(before), row = trail(after);
  return ChangesText(before != nullptr ? &old_row : nullptr, after != nullptr ? &row : nullptr);
}

std::string TextIn(const Dictionary& row, const Column& column) {
  const Variant* value = row.Find(RowKey(column.name));
  return value != nullptr ? Normalized(column, *value).Held<String>() : String();
}

// Writes the trail for a save; `before` is null for a new voucher.
void AuditSave(const Caller& caller, const VoucherTree* before, const VoucherTree& tree,
               const Dictionary& row, int origin, Statement* end) {
  const std::string machine = TextIn(row, {"MachineName", ColumnType::kText});
  const std::string address = TextIn(row, {"IPAddress", ColumnType::kText});
  WriteAudit(caller, {.subject = kSubject,
                      .record_id = tree.state.Get<"FVoucherID">(),
                      .record = tree.Name(),
                      .action = before == nullptr ? "Create" : "Update",
                      .changes = ChangesOf(before, &tree),
                      .machine_name = machine,
                      .address = address,
                      .origin = origin,
                      .end = end});
}

// Tells the caller's row what the server has given the voucher, once that is sure.
void WriteBack(const VoucherTree& tree, Dictionary& row) {
  row.Put(RowKey("FVoucherID"), tree.state.Get<"FVoucherID">());
  row.Put(RowKey("FVersion"), tree.state.Get<"FVersion">());
  row.Put(RowKey("FYear"), tree.header.Get<"FYear">());
  row.Put(RowKey("FPeriod"), tree.header.Get<"FPeriod">());
  row.Put(RowKey("FGroupID"), tree.header.Get<"FGroupID">());
  row.Put(RowKey("FNumber"), tree.header.Get<"FNumber">());
}

void SetPreparer(const Caller& caller, VoucherTree& tree) {
  tree.state.Put<"FPreparerID">(static_cast<Integer>(caller.session->user_id));
  tree.state.Put<"FPreparer">(caller.session->user_name);
}

const Dictionary& RequireRow(const Ref<Dictionary>& row) {
  if (!row) Refuse(refusal::kRequired, "There is no row to save.");
  return *row;
}

// A step of the workflow: what it asks of the voucher, and what it does to it, in the tree and in
// the books.
template <class Step>
void TakeStep(std::string_view props, const Right& right, Long id, std::string_view action,
              Step step) {
  const Caller caller = EnterUnconfirmed(props, right);
  Statement* held = nullptr;
  Statement* end = nullptr;
  CallersTransaction transaction(caller, Transaction::Kind::kSave, [&] {
    held = &VoucherTree::AskToHold(caller.db, id);
    end = &AskForTrailEnd(caller.db, kSubject, id);
  });
  const LedgerRules rules = LedgerRules::Of(caller.db);
  VoucherTree tree = Held(*held, id);
  if (tree.state.Get<"FDeleted">()) {
    Refuse(refusal::kVoucherDeleted, "Voucher " + tree.Name() + ": it is deleted.");
  }
  RequireOpenPeriod(rules, tree);
  const VoucherTree before = tree;
  step(caller, rules, tree);
  WriteAudit(caller, {.subject = kSubject,
                      .record_id = id,
                      .record = tree.Name(),
                      .action = action,
                      .changes = ChangesOf(&before, &tree, VoucherTree::Trailing::kHeader),
                      .end = end});
  transaction.Commit();
}

void RaiseVersion(VoucherTree& tree) {
  tree.state.Put<"FVersion">(tree.state.Get<"FVersion">() + 1);
}

// Puts the caller's name to a step, or takes it off again: the columns of id and name, and the flag
// that a step has besides.
template <ColumnName id_column, ColumnName name_column, ColumnName... flag>
void Sign(const Caller& caller, VoucherTree& tree, bool signs) {
  static_assert(sizeof...(flag) <= 1);
  const auto user = static_cast<Integer>(signs ? caller.session->user_id : kNobody);
  const std::string name = signs ? caller.session->user_name : "";
  tree.state.Put<id_column>(user);
  tree.state.Put<name_column>(name);
  (tree.state.Put<flag>(signs), ...);
  RaiseVersion(tree);
  static const std::string kSql =
      "UPDATE t_Voucher SET " + std::string(id_column.view()) + " = ?, " +
      std::string(name_column.view()) + " = ?" +
      (std::string() + ... + (", " + std::string(flag.view()) + " = ?")) +
      ", FVersion = FVersion + 1 WHERE FVoucherID = ?";
  caller.db.ExecuteLater(kSql, user, name, (static_cast<void>(flag), signs)...,
                         tree.state.Get<"FVoucherID">());
}

// OwnVoucher when the books want somebody else for the step, and the caller made the voucher or
// changed a part of it.
void RequireOtherHands(const Caller& caller, const VoucherTree& tree, bool is_wanted,
                       const std::string& step) {
  const Session& session = *caller.session;
  if (!is_wanted || !HadAHandIn(caller.db, tree, session.user_id)) return;
  const bool prepared = tree.state.Get<"FPreparerID">() == session.user_id;
  Refuse(refusal::kOwnVoucher, "Voucher " + tree.Name() + ": " + session.user_name +
                                   (prepared ? " prepared it" : " had a hand in it") +
                                   "; somebody else must " + step + " it.");
}

// WrongStep unless the condition holds.
void RequireStep(bool condition, const VoucherTree& tree, const char* reason) {
  if (!condition) Refuse(refusal::kWrongStep, "Voucher " + tree.Name() + ": " + reason);
}

}  // namespace

// ---- VoucherInfo ----

Ref<Dictionary> VoucherInfo::GetDetail(std::string_view PropsString, Long VoucherID,
                                       Boolean ShowDeleted) {
  const Caller caller = EnterUnconfirmed(PropsString, kRead);
  return DetailOf(caller, VoucherID, ShowDeleted);
}

Ref<Dictionary> VoucherInfo::GetDetailByNumber(std::string_view PropsString, Long nYear,
                                               Long Period, const Variant& Group, Long Number,
                                               Boolean ShowDeleted) {
  const Caller caller = Enter(PropsString, kRead);
  const Long id = FindByNumber(caller.db, nYear, Period, Group, Number, ShowDeleted);
  return id != 0 ? DetailOf(caller, id, ShowDeleted) : nullptr;
}

Ref<Recordset> VoucherInfo::GetList(std::string_view PropsString, Long& ListOptions, String& Filter,
                                    String& Sort, const Variant& Page) {
  const Caller caller = Enter(PropsString, RightTo<VoucherInfo>("GetList"));
  return ListVouchers(caller.db, (ListOptions & kWithDeleted) != 0, Filter, Sort, PageIn(Page));
}

Ref<Vector> VoucherInfo::GetJournal(std::string_view PropsString, DateTime DateFrom, Long AfterID,
                                    DateTime DateTo, Long Count) {
  const Caller caller = Enter(PropsString, kRead);
  Transaction transaction(caller.db, Transaction::Kind::kRead);
  const std::string last = DateTo == DateTime() ? "9999-12-31" : DateTo.ToText();
  auto vouchers = Make<Vector>();
  for (const auto& [id] :
       caller.db.Query<Long>("SELECT FVoucherID FROM t_Voucher WHERE FDeleted = 0 AND FDate <= ?"
                             " AND (FDate, FVoucherID) > (?, ?) ORDER BY FDate, FVoucherID LIMIT ?",
                             last, DateFrom.ToText(), AfterID, Count)) {
    vouchers->Append(Variant(DetailOf(caller, id, false)));
  }
  transaction.Commit();
  return vouchers;
}

Long VoucherInfo::ExistenceCheck(std::string_view PropsString, const Variant& VoucherID,
                                 const Variant& nYear, const Variant& Period, const Variant& Group,
                                 const Variant& Number) {
  const Caller caller = Enter(PropsString, kRead);
  if (!VoucherID.IsMissing()) {
    return caller.db
        .QueryValue<Long>("SELECT FVoucherID FROM t_Voucher WHERE FVoucherID = ? AND FDeleted = 0",
                          CLng(VoucherID))
        .value_or(0);
  }
  if (Period.IsMissing() || Group.IsMissing() || Number.IsMissing()) return 0;
  const Long year = nYear.IsMissing() ? CurrentPeriod(caller.db).year : CLng(nYear);
  return FindByNumber(caller.db, year, CLng(Period), Group, CLng(Number), false);
}

Long VoucherInfo::CheckExistCashProfit(std::string_view PropsString, const Long& VoucherID) {
  const Caller caller = Enter(PropsString, kRead);
  const auto assigned = caller.db.QueryValue<int>(
      "SELECT 1 FROM t_VoucherEntry WHERE FVoucherID = ? AND FCashFlowItem <> 0 LIMIT 1",
      VoucherID);
  return assigned ? 1 : 0;
}

// ---- VoucherUpdate ----

Long VoucherUpdate::Create(std::string_view PropsString, const Ref<Dictionary>& Voucher,
                           const Variant& Kind) {
  const Caller caller = EnterUnconfirmed(PropsString, kSave);
  VoucherTree tree = VoucherTree::FromRow(RequireRow(Voucher));
  tree.state.Put<"FVersion">(1);
  tree.state.Put<"FOwnerGroupID">(kNobody);
  tree.state.Put<"FCheckerID">(kNobody);
  tree.state.Put<"FApproveID">(kNobody);
  tree.state.Put<"FCashierID">(kNobody);
  tree.state.Put<"FPosterID">(kNobody);
  SetPreparer(caller, tree);

  Statement* facts = nullptr;
  CallersTransaction transaction(caller, Transaction::Kind::kSave,
                                 [&] { facts = &VoucherFacts::Ask(caller.db, tree); });
  ApplyRules(caller.db, VoucherFacts::From(*facts), nullptr, tree);
  Statement* end = nullptr;
  InsertNumbered(caller.db, tree, [&] { end = &AskForTrailEnd(caller.db, kSubject, 0); });
  tree.InsertLines(caller.db);
  constexpr Long kAutomatic = 2;
  const bool automatic = !Kind.IsMissing() && CLng(Kind) == kAutomatic;
  AuditSave(caller, nullptr, tree, *Voucher, automatic ? 2 : 1, end);
  transaction.Commit();
  WriteBack(tree, *Voucher);
  return tree.state.Get<"FVoucherID">();
}

void VoucherUpdate::Update(std::string_view PropsString, const Long& VoucherID,
                           const Ref<Dictionary>& Voucher) {
  const Caller caller = EnterUnconfirmed(PropsString, kSave);
  VoucherTree tree = VoucherTree::FromRow(RequireRow(Voucher));

  Statement *held = nullptr, *asked = nullptr, *end = nullptr;
  CallersTransaction transaction(caller, Transaction::Kind::kSave, [&] {
    held = &VoucherTree::AskToHold(caller.db, VoucherID);
    VoucherTree::AskForLines(caller.db, VoucherID);
    asked = &VoucherFacts::Ask(caller.db, tree);
    end = &AskForTrailEnd(caller.db, kSubject, VoucherID);
  });
  VoucherTree stored = Held(*held, VoucherID);
  RequireVersion(stored, *Voucher);
  const VoucherFacts facts = VoucherFacts::From(*asked);
  RequireChangeable(facts.rules, stored);
  stored.TakeLines(caller.db);
  tree.state = stored.state;
  tree.state.Put<"FVersion">(stored.state.Get<"FVersion">() + 1);
  const Long preparer = stored.state.Get<"FPreparerID">();
  if (preparer != caller.session->user_id) AddEditor(caller.db, stored, preparer);
  SetPreparer(caller, tree);
  ApplyRules(caller.db, facts, &stored, tree);
  GiveNumber(caller.db, stored, tree);
  tree.Update(caller.db);
  AuditSave(caller, &stored, tree, *Voucher, caller.marked ? 2 : 1, end);
  transaction.Commit();
  WriteBack(tree, *Voucher);
}

void VoucherUpdate::Delete(std::string_view PropsString, const Long& VoucherID, Boolean Purge,
                           std::string_view MachineName, std::string_view IPAddress) {
  const Caller caller = EnterUnconfirmed(PropsString, RightTo<VoucherUpdate>("Delete"));
  Database& db = caller.db;
  Statement* held = nullptr;
  CallersTransaction transaction(caller, Transaction::Kind::kSave, [&] {
    held = &VoucherTree::AskToHold(db, VoucherID);
    VoucherTree::AskForLines(db, VoucherID);
  });
  VoucherTree tree = Held(*held, VoucherID);
  const LedgerRules rules = LedgerRules::Of(db);
  // A voucher that is marked already can still be removed for good.
  if (Purge && tree.state.Get<"FDeleted">()) {
    RequireUnsigned(tree);
    RequireOpenPeriod(rules, tree);
  } else {
    RequireChangeable(rules, tree);
  }
  std::string changes;
  if (Purge) {
    tree.TakeLines(db);
    changes = ChangesOf(&tree, nullptr);
    db.ExecuteLater("DELETE FROM t_VoucherDetail WHERE FVoucherID = ?", VoucherID);
    db.ExecuteLater("DELETE FROM t_VoucherEntry WHERE FVoucherID = ?", VoucherID);
    RemoveEditors(db, VoucherID);
    db.ExecuteLater("DELETE FROM t_Voucher WHERE FVoucherID = ?", VoucherID);
  } else {
    VoucherTree marked = tree;
    marked.state.Put<"FDeleted">(true);
    RaiseVersion(marked);
    changes = ChangesOf(&tree, &marked, VoucherTree::Trailing::kHeader);
    db.ExecuteLater(
        "UPDATE t_Voucher SET FDeleted = 1, FVersion = FVersion + 1 WHERE FVoucherID = ?",
        VoucherID);
  }
  WriteAudit(caller, {.subject = kSubject,
                      .record_id = VoucherID,
                      .record = tree.Name(),
                      .action = Purge ? "Purge" : "Delete",
                      .changes = changes,
                      .machine_name = MachineName,
                      .address = IPAddress});
  transaction.Commit();
}

void VoucherUpdate::Check(std::string_view PropsString, const Long& VoucherID,
                          const Boolean& Checked) {
  TakeStep(PropsString, RightTo<VoucherUpdate>("Check"), VoucherID, Checked ? "Check" : "UnCheck",
           [&](const Caller& caller, const LedgerRules& rules, VoucherTree& tree) {
             RequireStep(!tree.state.Get<"FPosted">(), tree, "it is posted.");
             RequireStep(tree.state.Get<"FChecked">() != Checked, tree,
                         Checked ? "it is checked already." : "it is not checked.");
             RequireStep(tree.state.Get<"FApproveID">() == kNobody, tree,
                         "it is approved; take the approval back first.");
             RequireOtherHands(caller, tree, Checked && rules.checker_not_preparer, "check");
             Sign<"FCheckerID", "FChecker", "FChecked">(caller, tree, Checked);
           });
}

void VoucherUpdate::Approve(std::string_view PropsString, const Long& VoucherID,
                            const Boolean& Approved) {
  TakeStep(PropsString, RightTo<VoucherUpdate>("Approve"), VoucherID,
           Approved ? "Approve" : "UnApprove",
           [&](const Caller& caller, const LedgerRules& rules, VoucherTree& tree) {
             RequireStep(!tree.state.Get<"FPosted">(), tree, "it is posted.");
             RequireStep(tree.state.Get<"FChecked">(), tree, "it is not checked.");
             RequireStep((tree.state.Get<"FApproveID">() != kNobody) != Approved, tree,
                         Approved ? "it is approved already." : "it is not approved.");
             RequireOtherHands(caller, tree, Approved && rules.approver_not_preparer, "approve");
             Sign<"FApproveID", "FApprover">(caller, tree, Approved);
           });
}

void VoucherUpdate::Cash(std::string_view PropsString, const Long& VoucherID, const Boolean& Cashed,
                         const Variant& Voucher) {
  TakeStep(PropsString, RightTo<VoucherUpdate>("Cash"), VoucherID, Cashed ? "Cash" : "UnCash",
           [&](const Caller& caller, const LedgerRules& rules, VoucherTree& tree) {
             if (!Voucher.IsMissing()) {
               RequireVersion(tree, RequireRow(Voucher.As<Dictionary>()));
             }
             RequireStep((tree.state.Get<"FCashierID">() != kNobody) != Cashed, tree,
                         Cashed ? "it is cashed already." : "it is not cashed.");
             RequireOtherHands(caller, tree, Cashed && rules.cashier_not_preparer, "cash");
             Sign<"FCashierID", "FCashier">(caller, tree, Cashed);
           });
}

namespace {

void MovePosting(std::string_view props, Long id, Direction direction) {
  const bool posts = direction == Direction::kPost;
  TakeStep(props, VoucherUpdate::kPost, id, posts ? "Post" : "UnPost",
           [&](const Caller& caller, const LedgerRules& rules, VoucherTree& tree) {
             RequireStep(tree.state.Get<"FPosted">() != posts, tree,
                         posts ? "it is posted already." : "it is not posted.");
             RequireStep(!posts || !rules.check_before_post || tree.state.Get<"FChecked">(), tree,
                         "it is not checked, as the books want it before posting.");
             RequireOtherHands(caller, tree, posts && rules.poster_not_preparer, "post");
             MoveBalances(caller.db, id, tree.Name(),
                          {tree.header.Get<"FYear">(), tree.header.Get<"FPeriod">()}, direction);
             Sign<"FPosterID", "FPoster", "FPosted">(caller, tree, posts);
           });
}

}  // namespace

void VoucherUpdate::Post(std::string_view PropsString, const Long& VoucherID) {
  MovePosting(PropsString, VoucherID, Direction::kPost);
}

void VoucherUpdate::UnPost(std::string_view PropsString, const Long& VoucherID) {
  MovePosting(PropsString, VoucherID, Direction::kUnPost);
}

void VoucherUpdate::ClearCashFlow(std::string_view PropsString, const Long& VoucherID) {
  const Caller caller = EnterUnconfirmed(PropsString, kSave);
  Statement* held = nullptr;
  CallersTransaction transaction(caller, Transaction::Kind::kSave, [&] {
    held = &VoucherTree::AskToHold(caller.db, VoucherID);
    VoucherTree::AskForLines(caller.db, VoucherID);
  });
  VoucherTree tree = Held(*held, VoucherID);
  RequireChangeable(LedgerRules::Of(caller.db), tree);
  AddEditor(caller.db, tree, caller.session->user_id);
  tree.TakeLines(caller.db);
  const VoucherTree before = tree;
  for (VoucherLine& line : tree.lines) line.cells.Put<"FCashFlowItem">(0);
  RaiseVersion(tree);
  caller.db.ExecuteLater("UPDATE t_VoucherEntry SET FCashFlowItem = 0 WHERE FVoucherID = ?",
                         VoucherID);
  // A row that was read before still has them.
  caller.db.ExecuteLater("UPDATE t_Voucher SET FVersion = FVersion + 1 WHERE FVoucherID = ?",
                         VoucherID);
  WriteAudit(caller, {.subject = kSubject,
                      .record_id = VoucherID,
                      .record = tree.Name(),
                      .action = "ClearCashFlow",
                      .changes = ChangesOf(&before, &tree)});
  transaction.Commit();
}

}  // namespace qdclgl::server
