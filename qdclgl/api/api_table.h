// Every public member in rows, and their printed list, docs/api.tsv: the record of the public
// surface, and what a change of it is reviewed by.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qdclgl {

// One way of using a member.
struct ApiRow {
  std::string_view class_name;
  int ordinal = 0;  // 0 for a method of another interface of the class
  std::string_view member;
  std::string_view kind;  // method, get, let, set, or interface
  std::string_view type;
  std::string arguments;
  bool is_default = false;
  std::string_view key = {};  // of the object's row, where the member is a value under one
  std::string clear = {};     // the value whose writing removes the key
  std::string_view help = {};
};

std::vector<ApiRow> ApiRows();

// Tab-separated lines under a header, a line for each row.
std::string ApiTable(const std::vector<ApiRow>& rows = ApiRows());

}  // namespace qdclgl
