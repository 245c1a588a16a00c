// Deep copies of the data tree, and insertion into its lists.
#pragma once

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/vector.h"

namespace qdclgl {

// A copy of the whole tree below `dict`, unmodified; Nothing gives Nothing. Dictionaries and
// Vectors are copied likewise, any other object by its own late-bound `Clone`; plain values and
// Nothing stay as they are. Error 28 for a tree that holds itself, also by way of an object that
// copies it in its `Clone`; error 7 for a copy of more than kMostCopies (nesting.h).
Ref<Dictionary> CloneDictionary(const Ref<Dictionary>& dict);

// A copy of the list with the same lower bound. Its Dictionaries are copied deep, any other object
// by its late-bound `Clone`: so a Vector that lies directly inside a Vector is copied shallow and
// goes on sharing its rows. Error 91 for Nothing.
Ref<Vector> CloneVector(const Ref<Vector>& vec);

// Puts `item` at `index` and moves the elements from there on up by one. The Vector must not be
// empty. Error 9, and nothing changes, unless there is an element at `index` or before it. Error 91
// for Nothing.
void VectorInsertAt(const Ref<Vector>& vec, Long index, const Ref<Object>& item);

}  // namespace qdclgl
