// The data of notes, any Variant: told by kind and content, and kept as texts of the database, some
// for large ones.
#pragma once

#include <cstddef>
#include <string>

#include "qdclgl/frame/objects/variant.h"
#include "qdclgl/server/db/columns.h"

namespace qdclgl::server {

// The most bytes of a content.
inline constexpr std::size_t kLargestNoteData = 16 * 1024 * 1024;

struct NoteData {
  std::string kind;     // "String", "Byte array", "Byte array from 1"; "" where there are none
  std::string content;  // the bytes or the text; other values as texts that lose nothing

  // What the trail tells of the content.
  std::string Hash() const;

  // BadValue for an object that is neither a Dictionary nor a Vector, and for what such a one may
  // not hold; TooLarge for more bytes than there may be.
  static NoteData From(const Variant& value);
  // BadValue for a kind or a content that From doesn't give.
  Variant ToValue() const;
};

// The table of contents.
const StoredTable& NoteDataTable();

void WriteNoteContent(Database& db, Long note, const std::string& content);
void RemoveNoteContent(Database& db, Long note);
// BadValue for texts that WriteNoteContent doesn't write.
std::string ReadNoteContent(Database& db, Long note);

}  // namespace qdclgl::server
