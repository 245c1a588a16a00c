// Accounts and items by the numbers that callers name them by.
#pragma once

#include <string>

#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

// The id of an account. NotFound when there is none.
Long AccountWanted(Database& db, const String& number);
// That of an item class. BadReference likewise.
Long ItemClassWanted(Database& db, const String& number);

struct WantedItem {
  Long item_class = 0;
  Long item = 0;  // 0: whatever item of the class
};

// An item class and perhaps an item of it, where they are named. BadReference when there is no such
// class or item, and for an item without a class.
WantedItem ItemWanted(Database& db, const String& item_class, const String& item);

}  // namespace qdclgl::server
