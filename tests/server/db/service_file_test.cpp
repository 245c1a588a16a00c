// Servers that a service file knows by names.
#include <filesystem>
#include <fstream>

#include "tests/server/books_state.h"
#include "tests/support/process.h"

namespace qdclgl::server::testing {
namespace {

namespace key = connection_key;
using qdclgl::testing::ProcessId;
using qdclgl::testing::SetVariable;
using qdclgl::testing::UnsetVariable;

class ServiceFile : public ::testing::TestWithParam<DatabaseKind>, protected TestBooks {
 protected:
  ServiceFile() : TestBooks(GetParam()), file_(ServiceFilePath()) {
    SetVariable("PGSERVICEFILE", file_.string());
    const ConnectionText text = ConnectionText::Parse(connection);
    std::ofstream(file_) << "[north]\nhost=" << text[key::kHost] << "\nport=" << text[key::kPort]
                         << "\nuser=" << text[key::kUser]
                         << "\n\n[south]\nhost=" << text[key::kHost]
                         << "\nport=1\nuser=" << text[key::kUser] << "\n";
    by_name_ = text.Without(key::kHost).Without(key::kPort).Without(key::kUser);
  }
  ~ServiceFile() override {
    UnsetVariable("PGSERVICEFILE");
    std::filesystem::remove(file_);
  }

  Long CurrenciesAt(const std::string& service) {
    const auto session = Call("QDSVGLSession.SessionUpdate", "Login",
                              by_name_.With(key::kService, service).ToText(), "administrator", "");
    return Call("QDSVGLCurrency.CurrencyInfo", "GetList", session).As<Recordset>()->RecordCount();
  }
  std::string RefusalAt(const std::string& service) {
    return RefusalOf([&] { CurrenciesAt(service); });
  }

  std::filesystem::path file_;
  ConnectionText by_name_;

 private:
  static std::filesystem::path ServiceFilePath() {
    return std::filesystem::temp_directory_path() /
           ("qdclgl_services_" + std::to_string(ProcessId()) + ".conf");
  }
};
QDCLGL_BOOKS_TEST_OF(ServiceFile, kPostgreSQL);

TEST_P(ServiceFile, ANameLeadsToTheServerThatItsSectionSays) {
  EXPECT_EQ(CurrenciesAt("north"), 1);
  EXPECT_EQ(RefusalAt("south"), "ConnectionLost");
}

TEST_P(ServiceFile, ANameThatNoFileKnowsIsRefusedByIt) {
  try {
    CurrenciesAt("east");
    ADD_FAILURE() << "it led somewhere";
  } catch (const Error& error) {
    EXPECT_EQ(error.description(), "PostgreSQL: definition of service \"east\" not found");
  }
}

TEST_P(ServiceFile, WhatTheTextSaysGoesBeforeTheFile) {
  by_name_ = by_name_.With(key::kPort, ConnectionText::Parse(connection)[key::kPort]);
  EXPECT_EQ(CurrenciesAt("south"), 1);
}

}  // namespace
}  // namespace qdclgl::server::testing
