#include "tests/server/list_pages.h"

#include <gtest/gtest.h>

#include "tests/server/books_state.h"

namespace qdclgl::server::testing {

namespace {

// A line for each row, with what stands in the columns.
std::string RowsText(const Ref<Recordset>& list) {
  std::string text;
  for (; !list->Eof(); list->MoveNext()) {
    for (Long i = 0; i < list->FieldCount(); ++i) {
      const Variant value = list->FieldValue(i);
      if (!value.IsObject()) text += CStr(value) + "|";
    }
    text += "\n";
  }
  return text;
}

}  // namespace

Variant PageOf(Long count, const Ref<Dictionary>& behind) {
  auto page = Make<Dictionary>();
  page->Value("Count", count);
  if (behind) page->Value("Behind", Variant(behind));
  return Variant(page);
}

Ref<Dictionary> LastRow(const Ref<Recordset>& list) {
  Ref<Dictionary> last;
  for (list->MoveFirst(); !list->Eof(); list->MoveNext()) last = list->Row();
  return last;
}

void ExpectPagesAreTheList(const PagedList& list, Long count) {
  const Ref<Recordset> all = list("", Missing);
  ASSERT_GT(all->RecordCount(), count) << "one page is no pages";
  const std::string id = all->FieldName(0);
  std::vector<std::string> sorts = {""};
  for (Long i = 0; i < all->FieldCount(); ++i) {
    const std::string column = all->FieldName(i);
    if (column.starts_with('_')) continue;  // a list of rows
    sorts.insert(sorts.end(), {column, column + " DESC", column + " DESC, " + id});
  }
  for (const std::string& sort : sorts) {
    std::string pages;
    Ref<Dictionary> behind;
    // One page more than there can be is one that does not go on.
    for (Long most = all->RecordCount() / count + 2; most > 0; --most) {
      const Ref<Recordset> page = list(sort, PageOf(count, behind));
      ASSERT_LE(page->RecordCount(), count) << sort;
      if (page->RecordCount() == 0) break;
      behind = LastRow(page);
      page->MoveFirst();
      pages += RowsText(page);
    }
    EXPECT_EQ(pages, RowsText(list(sort, Missing))) << "by " << sort;
  }
}

}  // namespace qdclgl::server::testing
