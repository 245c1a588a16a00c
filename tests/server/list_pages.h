// Pages of lists, put together, against the lists as a whole.
#pragma once

#include <functional>
#include <string>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/recordset.h"

namespace qdclgl::server::testing {

// What asks a list for so many rows, from the beginning on or behind a row of it.
Variant PageOf(Long count, const Ref<Dictionary>& behind = {});

// The last row of a list, which has some.
Ref<Dictionary> LastRow(const Ref<Recordset>& list);

// A list as it is read with a sort and a page, or whole with Missing.
using PagedList = std::function<Ref<Recordset>(const std::string& sort, const Variant& page)>;

// By each of the list's columns, rising and falling, and with a second column that goes the other
// way, its pages of `count` rows are the rows of the whole list in its order.
void ExpectPagesAreTheList(const PagedList& list, Long count);

}  // namespace qdclgl::server::testing
