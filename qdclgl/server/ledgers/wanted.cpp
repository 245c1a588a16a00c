#include "qdclgl/server/ledgers/wanted.h"

#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/item.h"
#include "qdclgl/server/records/master_data.h"

namespace qdclgl::server {

const MasterData& Accounts();
const MasterData& ItemClasses();

Long AccountWanted(Database& db, const String& number) {
  const Long id = Accounts().IdWithKey(db, number);
  if (id == 0) Refuse(refusal::kNotFound, "There is no account \"" + number + "\".");
  return id;
}

Long ItemClassWanted(Database& db, const String& number) {
  const Long id = ItemClasses().IdWithKey(db, number);
  if (id == 0) Refuse(refusal::kBadReference, "There is no item class \"" + number + "\".");
  return id;
}

WantedItem ItemWanted(Database& db, const String& item_class, const String& item) {
  WantedItem wanted;
  if (item_class.empty()) {
    if (!item.empty()) Refuse(refusal::kBadReference, "An item is of an item class.");
    return wanted;
  }
  wanted.item_class = ItemClassWanted(db, item_class);
  if (item.empty()) return wanted;
  wanted.item = Items().IdWith(db, "FNumber", ToUpper(item), "FItemClassID", wanted.item_class);
  if (wanted.item == 0) {
    Refuse(refusal::kBadReference,
           "There is no item \"" + item + "\" of item class " + item_class + ".");
  }
  return wanted;
}

}  // namespace qdclgl::server
