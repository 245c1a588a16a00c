#include "qdclgl/server/db/connection_text.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

using namespace connection_key;

std::string Again(std::string_view text) { return ConnectionText::Parse(text).ToText(); }
std::string Refused(std::string_view text) {
  return RefusalOf([&] { ConnectionText::Parse(text); });
}

TEST(ConnectionTextTest, KeysComeInOneOrderAndSpelling) {
  EXPECT_EQ(Again(" data SOURCE = books.db ;; INITIAL catalog=ACC1;provider=sqlite"),
            "Provider=sqlite;Data Source=books.db;Initial catalog=ACC1;");
  EXPECT_EQ(
      Again("Provider=PostgreSQL;Initial catalog=b;Host=h;Port=1;User ID=u;Password=p;Schema=s"),
      "Provider=PostgreSQL;Host=h;Port=1;Initial catalog=b;Schema=s;User ID=u;Password=p;");
}

TEST(ConnectionTextTest, ATextWithoutEqualsIsTheFile) {
  const ConnectionText text = ConnectionText::Parse("/home/my books; {old}.db");
  EXPECT_TRUE(text.IsSQLite());
  EXPECT_EQ(text[kDataSource], "/home/my books; {old}.db");
  EXPECT_EQ(ConnectionText::Parse(text.ToText())[kDataSource], "/home/my books; {old}.db");
}

TEST(ConnectionTextTest, ValuesInBracesHoldAnything) {
  const ConnectionText text = ConnectionText::Parse(
      "Provider=PostgreSQL;Initial catalog={a;Password=x};Password={ }} ;{'\"=\\ };User ID=;");
  EXPECT_EQ(text[kCatalog], "a;Password=x");
  EXPECT_EQ(text[kPassword], " } ;{'\"=\\ ");
  EXPECT_EQ(text[kUser], "");
  EXPECT_EQ(Again(text.ToText()), text.ToText());
}

TEST(ConnectionTextTest, WhatIsNoConnectionTextIsRefused) {
  for (const std::string_view text :
       {"",
        "  \t",
        ";=",
        "=x",
        "Provider=SQLite;Data Source",
        "Provider=SQLite",
        "Provider=SQLite;Data Source=",
        "Provider=SQLite;Data Source=a;Data source=b",
        "Provider=SQLite;Data Source=a;Pooling=1",
        "Provider=Oracle;Data Source=a",
        "Data Source=a",
        "Provider=PostgreSQL;Host=h",
        "Provider=SQLite;Data Source={a",
        "Provider=SQLite;Data Source={a}b",
        "Provider=SQLite;Data Source={a}}",
        "Provider=SQLite;Data Source=a;Synchronous=Off",
        "Provider=SQLite;Data Source=a;x=y",
        "Provider=SQLite;Data Source=a;Lock timeout=0",
        "Provider=SQLite;Data Source=a;Lock timeout=-1",
        "Provider=SQLite;Data Source=a;Lock timeout=1000000",
        "Provider=PostgreSQL;Initial catalog=a;Tcp_user_timeout=1 s"}) {
    EXPECT_EQ(Refused(text), "BadConnectionText") << text;
  }
  EXPECT_EQ(Refused(std::string_view("a=b\0", 4)), "BadConnectionText");
  EXPECT_EQ(Refused(std::string_view("books\0.db", 9)), "BadConnectionText");
  EXPECT_EQ(Refused("Provider=SQLite;Data Source=\xFF\xFE.db"), "none") << "file names are bytes";
}

TEST(ConnectionTextTest, TextsThatMeanTheSameHaveOneCanonicalText) {
  const auto canonical = [](std::string_view text) {
    return ConnectionText::Parse(text).Canonical().ToText();
  };
  const std::string file = (std::filesystem::canonical(".") / "a.db").string();
  const std::string same = "Provider=SQLite;Data Source=" + file + ";";
  for (const char* text :
       {"a.db", "./a.db", "x/../a.db", ".//a.db", "provider=sqlite;data source=a.db;",
        "Data Source=a.db;Provider=SQLITE;Initial catalog=A;Synchronous=full;Session=1;"}) {
    EXPECT_EQ(canonical(text), same) << text;
  }
  EXPECT_EQ(canonical("Provider=SQLite;Data Source=a.db;Synchronous=NORMAL"),
            "Provider=SQLite;Data Source=" + file + ";Synchronous=Normal;");
  EXPECT_EQ(canonical("Provider=SQLite;Data Source=a.db;Lock timeout=60"), same)
      << "so long is waited anyway";
  EXPECT_EQ(canonical("Provider=SQLite;Data Source=a.db;Lock timeout=5;Tcp_user_timeout=1"),
            "Provider=SQLite;Data Source=" + file + ";Lock timeout=5;");
  EXPECT_NE(canonical("b.db"), same);
  EXPECT_EQ(canonical("Provider=postgresql;Initial catalog=b;Session=1;Host=h;Data Source=x"),
            canonical("host=h;Initial Catalog=b;Provider=PostgreSQL;Data source=x"));
}

TEST(ConnectionTextTest, APlaceIsWhereTheBooksAreWhoeverReachesThemAndHowever) {
  const auto place = [](std::string_view text) {
    return ConnectionText::Parse(text).Place().ToText();
  };
  EXPECT_EQ(place("Provider=postgresql;Host=h;Initial catalog=b;Schema=s;User ID=u;Password=p;"
                  "Sslmode=require;Lock timeout=5;Keepalives_idle=5;Session=1"),
            "Provider=PostgreSQL;Host=h;Initial catalog=b;Schema=s;");
  EXPECT_NE(place("Provider=PostgreSQL;Service=a;Initial catalog=b"),
            place("Provider=PostgreSQL;Service=c;Initial catalog=b"));
  EXPECT_EQ(place("Provider=SQLite;Data Source=a.db;Synchronous=Normal;Lock timeout=5"),
            place("a.db"));
}

TEST(ConnectionTextTest, KeysCanBePutInAndTakenOut) {
  const ConnectionText text = ConnectionText::Parse("Provider=SQLite;Data Source=a;");
  EXPECT_EQ(text.With(kSession, "1").ToText(), "Provider=SQLite;Data Source=a;Session=1;");
  EXPECT_EQ(text.With(kSession, "1").With(kSession, "2").Without(kSession).ToText(), text.ToText());
}

TEST(ConnectionTextTest, MessagesShowNoSecrets) {
  EXPECT_EQ(ConnectionText::Parse("Provider=PostgreSQL;Initial catalog=b;Password=p;Session=s")
                .ForMessage(),
            "Provider=PostgreSQL;Initial catalog=b;");
  EXPECT_EQ(SentenceOf([] { ConnectionText::Parse("Provider=x;Password=secret"); }).find("secret"),
            std::string::npos);
}

// A text that anybody can hand in reaches the database as words, not as options of its own.
class HostileConnectionTest : public RecordsTest {};

TEST_P(HostileConnectionTest, OptionsOfTheDatabaseCantBeSmuggledIn) {
  const auto version = [](const std::string& text) {
    return RefusalOf([&] { Call("QDSVGLBooks.BooksInfo", "Version", text); });
  };
  EXPECT_EQ(version("Provider=SQLite;Data Source={a.db\" mode=memory dbname=\"b.db}"), "NoBooks");
  EXPECT_EQ(version("Provider=SQLite;Data Source=:memory:"), "NoBooks");
  EXPECT_EQ(version("Provider=SQLite;Data Source=file:x?mode=memory"), "NoBooks");
  EXPECT_EQ(version("Provider=SQLite;Data Source=/nowhere/at all.db"), "NoBooks");
  EXPECT_EQ(version("Provider=SQLite;Data Source=/tmp"), "NoBooks");
}

class HostileSchemaTest : public HostileConnectionTest {};

TEST_P(HostileSchemaTest, SchemasAreNames) {
  const std::string before = State();
  const ConnectionText text = ConnectionText::Parse(connection);
  const std::string own(text[kSchema]);
  const auto with_schema = [&](const std::string& schema) {
    return RefusalOf([&] {
      Call("QDSVGLSession.SessionUpdate", "Login", text.With(kSchema, schema).ToText(),
           "administrator", "");
    });
  };
  EXPECT_EQ(with_schema(own + "; DROP SCHEMA " + own + " CASCADE; --"), "NoBooks");
  EXPECT_EQ(with_schema(own + "\"; DROP SCHEMA \"" + own + "\" CASCADE; --"), "NoBooks");
  EXPECT_EQ(with_schema("x', '" + own), "NoBooks");
  EXPECT_EQ(State(), before);
  const auto with = [&](std::string_view key, const std::string& value) {
    return RefusalOf([&] {
      Call("QDSVGLSession.SessionUpdate", "Login", text.With(key, value).ToText(), "administrator",
           "");
    });
  };
  EXPECT_EQ(with(kUser, "x' host='elsewhere"), "ConnectionLost");
  EXPECT_EQ(with(kCatalog, "x'\\ user='postgres"), "ConnectionLost");
  EXPECT_EQ(with(kPort, "1"), "ConnectionLost");
}

QDCLGL_BOOKS_TEST(HostileConnectionTest);
QDCLGL_BOOKS_TEST_OF(HostileSchemaTest, kPostgreSQL);

}  // namespace
}  // namespace qdclgl::server::testing
