// Books whose words can be completed.
#pragma once

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {

class CompletionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    UnsetVariable("QDCLGL_BOOK");
    SetVariable("QDCLGL_REGISTRY", folder.Path("registry"));
    book = folder.Path("books.db");
    ASSERT_EQ(RunProgram({"init", book, "--no-password", "--year", "2024"}).code, 0);
    const std::string chart = folder.Write("a.csv", "number,name,dc\n1000,Cash,1\n1001,Bank,1\n");
    ASSERT_EQ(RunProgram({"import", book, "--accounts", chart}).code, 0);
    ASSERT_EQ(RunProgram({"add", book, "groups", "Cash book"}).code, 0);
  }

  Folder folder;
  std::string book;
};

}  // namespace qdclgl::cli::testing
