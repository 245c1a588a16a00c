// What the longer examples have in common: fresh books in a file, a login, rows and how they print.
#pragma once

#include <cstdio>
#include <initializer_list>
#include <utility>

#include "qdclgl/qdclgl.h"
#include "qdclgl/server/server.h"

namespace example {

using namespace qdclgl;

// A row as server components take it.
inline Ref<Dictionary> Row(std::initializer_list<std::pair<const char*, Variant>> cells) {
  auto row = Make<Dictionary>();
  for (const auto& [key, value] : cells) row->Value(key, value);
  return row;
}

// These columns of all rows, a line for each row.
inline void Print(const char* heading, const Ref<Recordset>& rows,
                  std::initializer_list<const char*> columns) {
  std::printf("%s\n", heading);
  for (; !rows->Eof(); rows->MoveNext()) {
    const Ref<Dictionary> row = rows->Row();
    for (const char* column : columns) std::printf("  %s", CStr(row->Value(column)).c_str());
    std::printf("\n");
  }
}

inline Long AccountId(const char* number) { return Make<AccountSet>()->Item(number)->AccountID(); }

// Saves a voucher of two lines: so much from one account into another.
inline Long Save(DateTime date, const char* text, Currency amount, const char* debit,
                 const char* credit) {
  auto voucher = Make<VoucherSet>()->CreateNew();
  voucher->VoucherDate(date);
  voucher->GroupID(1);
  auto lines = voucher->Entries();
  lines->Count(2);
  lines->Item(1)->AccountID(AccountId(debit));
  lines->Item(1)->Explanation(text);
  lines->Item(1)->Debit(amount);
  lines->Item(2)->AccountID(AccountId(credit));
  lines->Item(2)->Explanation(text);
  lines->Item(2)->Credit(amount);
  voucher->SaveChanges1();
  return voucher->VoucherID();
}

inline void SaveAndPost(DateTime date, const char* text, Currency amount, const char* debit,
                        const char* credit) {
  Make<VoucherSet>()->Post(Save(date, text, amount, debit, credit));
}

// Makes books of 2024 in the file that the command line names, logs in, and tells the story. Its
// argument is the PropsString, by which server components know who calls.
inline int Tell(int count, char** arguments, void (*story)(const String& props)) {
  if (count != 2) return std::fprintf(stderr, "usage: %s FILE\n", arguments[0]), 2;
  try {
    server::RegisterServerComponents();
    CreateObject("QDSVGLBooks.BooksUpdate")
        ->Call("Create", arguments[1], "EUR", 2024, Named("NoPassword", true));
    story(CreateObject("QDSVGLSession.SessionUpdate")
              ->Call("Login", arguments[1], "administrator", "")
              .As<String>());
    return 0;
  } catch (const Error& error) {
    return std::fprintf(stderr, "%s\n", error.what()), 1;
  }
}

}  // namespace example
