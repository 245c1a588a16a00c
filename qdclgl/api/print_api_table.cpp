// Prints the API table; `scripts/update-api-table` puts it into docs/api.tsv.
#include <cstdio>

#include "qdclgl/api/api_table.h"

int main() {
  const std::string table = qdclgl::ApiTable();
  return std::fwrite(table.data(), 1, table.size(), stdout) == table.size() ? 0 : 1;
}
