// The breaches that a check of the books finds, as a list that grows.
#pragma once

#include <string>
#include <string_view>

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/db/database.h"
#include "qdclgl/server/records/voucher_names.h"

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

}  // namespace qdclgl::server
