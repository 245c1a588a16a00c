// What the components of master data share, proved once for all of them.
//
// A kind of record is declared as data in its own test file, beside the tests of the rules that are
// its own, and handed to the suites by QDCLGL_RECORD_KIND. The suites beside this header run over
// every kind and every database. They reach a kind by its ProgIDs and its table alone.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "qdclgl/frame/containers/recordset.h"
#include "tests/server/books_state.h"

namespace qdclgl::server::testing {

template <class Value>
using ByColumn = std::vector<std::pair<std::string_view, Value>>;

struct RecordKind {
  // A column of the kind's rows, in the type that rows have.
  struct Column {
    std::string_view name;
    Variant sample;   // in the sample record
    Variant changed;  // in the same record once everything that can change has changed
  };
  // A method beside those that all kinds have. Its first arguments are PropsString and the id.
  struct Method {
    std::string_view component, name, role;
    std::vector<Variant> arguments = {};  // behind the id
  };
  // A column that holds the id of a record of another kind.
  struct Reference {
    std::string_view column;
    std::string_view noun, id, update;  // of that kind, as below
    Long (*make)(RecordBooks& books);   // a new record of it, another one at each call
    std::string_view refusal = "BadReference";
    bool is_required = false;
    bool is_marked = false;  // a removal of what is referred to marks it; otherwise it refuses
  };
  using Deed = void (*)(RecordBooks& books, Long id);

  std::string_view noun;     // as sentences call a record: "Voucher group"
  std::string_view subject;  // as the audit trail does: "VoucherGroup"
  std::string_view info, update;
  std::string_view table, id;
  std::vector<Column> columns;  // all that rows have behind id and version, in their order

  // Departures from: callers write the column; without its key it is the zero of its type; the
  // value is kept as it was sent, a text whatever it holds and however long it is.
  ByColumn<Variant> absent = {};                          // what a row without the key stands for
  ByColumn<Variant> spelled = {};                         // another spelling of the sample's value
  ByColumn<std::size_t> longest = {};                     // texts: at most so many UTF-16 units
  std::vector<std::string_view> coded = {};               // texts that follow rules of their own
  std::vector<std::string_view> kept_by_server = {};      // what callers send is passed over
  std::vector<std::string_view> joined = {};              // likewise; of another table
  ByColumn<std::string_view> follows = {};                // likewise; as another column
  std::vector<std::string_view> ids_of_record = {};       // likewise; hold the record's own id
  std::vector<std::string_view> never_shown = {};         // only the table has them
  std::vector<std::string_view> lists = {};               // further keys of a single record
  std::vector<std::string_view> required = {};            // texts
  ByColumn<std::string_view> unique = {};                 // texts, with the refusal of a second one
  std::string_view name = "FName";                        // the column with the record's name
  std::string_view order;                                 // the column that lists go by
  bool has_list_options = true;                           // otherwise lists show all records
  std::string_view text_key = {};                         // the column that records are found by
  std::string_view detail_by_text = {};                   // the method for it
  std::string_view id_argument = {}, text_argument = {};  // of ExistenceCheck
  std::string_view reader = "reader", writer = "administrator";
  std::vector<Method> further_methods = {};

  std::string_view mark = {};   // the column that marks a record deleted
  bool mark_by_sign = false;    // a sign other than 0 makes Delete mark the record
  std::vector<Deed> uses = {};  // what makes a record used
  bool used_is_marked = false;  // Delete marks a used record; otherwise it refuses, InUse

  void (*prepare)(RecordBooks& books) = nullptr;  // what the sample record refers to
  std::vector<Reference> references = {};
};

inline constexpr std::string_view kVersion = "FVersion";
inline constexpr const char* kBatch = "QDSVGLBatch.BatchUpdate";
inline constexpr Long kNoRecord = 30000;  // an id that no test comes to

// What a declaration says of a column.
inline bool Has(const std::vector<std::string_view>& columns, std::string_view column) {
  return std::ranges::find(columns, column) != columns.end();
}
template <class Value>
const Value* Find(const ByColumn<Value>& values, std::string_view column) {
  const auto found = std::ranges::find(values, column, &std::pair<std::string_view, Value>::first);
  return found == values.end() ? nullptr : &found->second;
}

// What does not fit into a column of a value's type.
std::vector<Variant> UnfitFor(const Variant& value);
// As filters write a value.
std::string Literal(const Variant& value);

// A row's keys, types and values, a line for each; "Nothing" without a row. Lists of rows, whose
// keys begin with an underscore, are left to the tests of their kinds.
std::string TypedText(const Dictionary& row);
std::string TypedText(const Ref<Dictionary>& row);
std::vector<Ref<Dictionary>> RowsOf(const Ref<Recordset>& list);

// A kind on a database.
struct RecordCase {
  const RecordKind* kind;
  DatabaseKind database;
};
std::ostream& operator<<(std::ostream& out, const RecordCase& record_case);

// The kinds of all test files, and where they come from.
std::vector<const RecordKind*>& RecordKinds();
bool AddRecordKind(const RecordKind& kind);
// A kind on each database; on none when the suite does not concern it.
std::vector<RecordCase> CasesOf(const RecordKind& kind, bool concerned = true);
std::string NameOfCase(const ::testing::TestParamInfo<RecordCase>& info);

class RecordSuite : public ::testing::TestWithParam<RecordCase>, protected RecordBooks {
 protected:
  RecordSuite();

  // Which values a row has: those of the sample record, those of the changed one, or what stands
  // for the keys that are absent.
  enum class Values { kSample, kChanged, kAbsent };
  // What callers send. Records of different numbers differ in their unique columns.
  Ref<Dictionary> Sent(Values values, int number = 0) const;
  // The sample in its other spelling.
  Ref<Dictionary> SentSpelled() const;
  // What is there once it is saved: every column, in its type.
  std::string Saved(Values values, Long id, Long version, int number = 0) const;

  Long Create(const Ref<Dictionary>& row);
  Long CreateSample(int number = 0) { return Create(Sent(Values::kSample, number)); }
  void Update(Long id, const Ref<Dictionary>& row);
  void Delete(Long id, Long sign = 0);
  // What is read of one record but for its lists, which the kind's own tests look at.
  Ref<Dictionary> Detail(Long id);
  // The same for a record that must be there; raises NotFound where it is not.
  Ref<Dictionary> Record(Long id);
  Long VersionOf(Long id) { return Record(id)->Value(kVersion).As<Long>(); }
  Ref<Dictionary> DetailByText(std::string_view text);
  Ref<Recordset> List(Long options = 0, std::string filter = "", std::string sort = "",
                      const Variant& page = Missing);
  // The row of a record in the list, null when it is not there.
  Ref<Dictionary> Listed(Long id, Long options = 0);
  Long Existence(Argument argument);

  // "Voucher group Receipts", and without the noun.
  std::string Called(const Dictionary& record) const;
  // The mark of a deleted record, and of another one, in the type of its column.
  Variant Marked(bool is_marked) const;
  std::string NameIn(const Dictionary& record) const;
  // Whether a row without the column is refused.
  bool IsNeeded(std::string_view column) const;
  // The columns that callers write.
  bool IsWritten(const RecordKind::Column& column) const;
  std::vector<const RecordKind::Column*> Written() const;
  std::vector<const RecordKind::Column*> WrittenFreely() const;  // texts that hold anything
  // The kind's other records.
  std::string RowsBut(Long id);
  // The books but for the audit trail.
  std::string StateWithoutTrail() const;

  // Create, and Update of the newest record, are refused so for the rows that `spoil` has changed;
  // the rows stay as they were sent.
  void ExpectRefusedSaves(std::string_view refusal,
                          const std::function<void(Dictionary& row)>& spoil);
  Ref<Dictionary> WithoutLists(const Ref<Dictionary>& record) const;
  // Runs on another thread, with a connection and a session of its own, as an administrator.
  void InAnotherSession(const std::function<void()>& operation);

  const RecordKind& kind;

 private:
  Variant ValueOf(const RecordKind::Column& column, Values values, int number) const;

  std::string other_session_;
};

// Kinds whose records are found by a text, can be used by others, refer to others, can be marked
// deleted.
class FoundRecordSuite : public RecordSuite {};
class UsedRecordSuite : public RecordSuite {};
class ReferringRecordSuite : public RecordSuite {
 protected:
  using Reference = RecordKind::Reference;
  // The sample record with that id in a column.
  Ref<Dictionary> SentWith(const Reference& reference, Long id, int number) const;
  void RemoveReferred(const Reference& reference, Long id);
};
class MarkedRecordSuite : public RecordSuite {
 protected:
  // Each way in which a record of the kind comes to be marked.
  std::vector<std::function<void(Long id)>> WaysToMark();
};

// The calls that a kind's own tests make of its two components.
class RecordCalls : public RecordsTest {
 protected:
  // `component` is "QDSVGLCurrency.Currency".
  explicit RecordCalls(const std::string& component)
      : info_(component + "Info"), update_(component + "Update") {}

  Long Create(const Ref<Dictionary>& row) { return Call(update_, "Create", props, row).As<Long>(); }
  void Update(Long id, const Ref<Dictionary>& row) {
    Call(update_, "Update", props, ByRef(id), row);
  }
  // Changes one column of a stored record.
  void Change(Long id, std::string_view key, const Variant& value) {
    const Ref<Dictionary> row = Detail(id);
    row->Put(key, value);
    Update(id, row);
  }
  void Delete(Long id) {
    Call(update_, "Delete", props, ByRef(id), std::string("HOST"), std::string("10.0.0.1"));
  }
  Ref<Dictionary> Detail(Long id) {
    return Call(info_, "GetDetail", props, ByRef(id)).As<Dictionary>();
  }

 private:
  std::string info_, update_;
};

#define QDCLGL_RECORD_KIND(Name, kind)                                                          \
  [[maybe_unused]] const bool kHas##Name = AddRecordKind(kind);                                 \
  INSTANTIATE_TEST_SUITE_P(Name, RecordSuite, ::testing::ValuesIn(CasesOf(kind)), NameOfCase);  \
  INSTANTIATE_TEST_SUITE_P(Name, FoundRecordSuite,                                              \
                           ::testing::ValuesIn(CasesOf(kind, !kind.text_key.empty())),          \
                           NameOfCase);                                                         \
  INSTANTIATE_TEST_SUITE_P(Name, UsedRecordSuite,                                               \
                           ::testing::ValuesIn(CasesOf(kind, !kind.uses.empty())), NameOfCase); \
  INSTANTIATE_TEST_SUITE_P(Name, ReferringRecordSuite,                                          \
                           ::testing::ValuesIn(CasesOf(kind, !kind.references.empty())),        \
                           NameOfCase);                                                         \
  INSTANTIATE_TEST_SUITE_P(Name, MarkedRecordSuite,                                             \
                           ::testing::ValuesIn(CasesOf(kind, !kind.mark.empty())), NameOfCase)

}  // namespace qdclgl::server::testing
