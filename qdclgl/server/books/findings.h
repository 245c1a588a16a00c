// The breaches that a check of the books finds, as a list that grows.
#pragma once

#include <string>
#include <string_view>

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

class Findings {
 public:
  void Add(std::string_view rule, std::string_view subject, Long id, std::string_view record,
           std::string_view problem) {
    list_->AddRow({rule, subject, id, record, problem});
  }

  // A breach for each row (id, record) of a query.
  template <class... Values>
  void AddRows(Database& db, std::string_view rule, std::string_view subject,
               std::string_view problem, std::string_view sql, const Values&... values) {
    for (const auto& [id, record] : db.Query<Long, std::string>(sql, values...)) {
      Add(rule, subject, id, record, problem);
    }
  }

  Ref<Recordset> list() const { return list_; }

 private:
  Ref<Recordset> list_ =
      Recordset::Create({"FRule", "FSubject", "FRecordID", "FRecord", "FProblem"});
};

// The text of a voucher's name, in SQL, for the tables v and g of kFromVouchers.
inline constexpr std::string_view kVoucherName =
    "CAST(v.FYear AS TEXT) || '/' || CAST(v.FPeriod AS TEXT) || ' ' || COALESCE(g.FName, '?') ||"
    " ' ' || CAST(v.FNumber AS TEXT)";
inline constexpr std::string_view kFromVouchers =
    " FROM t_Voucher v LEFT JOIN t_VoucherGroup g ON g.FGroupID = v.FGroupID";

}  // namespace qdclgl::server
