// Currencies. Currency 1 is the base currency, in which vouchers balance.
#pragma once

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/objects/members.h"

namespace qdclgl::server {

// The base currency's id.
inline constexpr Long kBaseCurrency = 1;

// "QDSVGLCurrency.CurrencyInfo": reads currencies.
class CurrencyInfo final : public Object {
  QD_MEMBERS(CurrencyInfo, Object, Creatable, "Reads currencies.")

 public:
  QD_METHOD(Ref<Dictionary>, GetDetail, (std::string_view PropsString, const Long& CurrencyID),
            "A currency, Nothing when there is none.")
  QD_METHOD(Ref<Dictionary>, GetDetailByNumber,
            (std::string_view PropsString, std::string_view Number),
            "A currency by its number, case ignored; Nothing when there is none.")
  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, const Long& ListOptions = {}, const String& Filter = {},
             const String& Sort = {}),
            "The currencies; bit 1 of ListOptions includes those marked deleted. BadFilter, "
            "BadSort.")
  QD_METHOD(Long, ExistenceCheck,
            (std::string_view PropsString, const Variant& CurrencyID = Missing,
             const Variant& Number = Missing),
            "The id of the currency with that id, or otherwise with that number; 0 when there is "
            "none.")
};

// "QDSVGLCurrency.CurrencyUpdate": writes currencies; administrators only.
class CurrencyUpdate final : public Object {
  QD_MEMBERS(CurrencyUpdate, Object, Creatable, "Writes currencies.")

 public:
  QD_METHOD(Long, Create, (std::string_view PropsString, const Ref<Dictionary>& dict),
            "Saves a new currency; its id and version come back in the row too. Errors: Required, "
            "BadNumber, NumberTaken, BadValue.")
  QD_METHOD(void, Update,
            (std::string_view PropsString, const Long& CurrencyID, const Ref<Dictionary>& dict),
            "Saves a currency; the new version comes back in the row. Errors: NotFound, NoVersion, "
            "Changed, and those of Create.")
  QD_METHOD(void, Delete,
            (std::string_view PropsString, const Long& CurrencyID,
             std::string_view MachineName = "", std::string_view IPAddress = ""),
            "Removes a currency; one that accounts or vouchers use is marked deleted instead. "
            "NotFound; InUse for the base currency, and for one that is used and marked already.")
};

}  // namespace qdclgl::server
