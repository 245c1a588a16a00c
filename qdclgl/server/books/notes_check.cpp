#include "qdclgl/server/books/notes_check.h"

#include "qdclgl/server/records/note_data.h"

namespace qdclgl::server {

namespace {

// What is wrong with a note's data, "" when nothing is.
std::string ProblemOf(Database& db, Long id, const std::string& kind, Long size,
                      const std::string& hash) {
  try {
    const NoteData data{kind, ReadNoteContent(db, id)};
    const bool has_data = !kind.empty();
    if (static_cast<Long>(data.content.size()) != size ||
        (has_data ? data.Hash() : std::string()) != hash) {
      return "Its data are not of the size and the hash that it tells.";
    }
    if (has_data) data.ToValue();
    return "";
  } catch (const Error&) {
    return "Its data can't be read as what they are said to be.";
  }
}

}  // namespace

void CheckNotes(Database& db, Findings& findings) {
  for (const auto& [id, name, kind, size, hash] :
       db.Query<Long, std::string, std::string, Long, std::string>(
           "SELECT FNoteID, FName, FDataKind, FDataSize, FDataHash FROM t_Note ORDER BY FNoteID")) {
    const std::string problem = ProblemOf(db, id, kind, size, hash);
    if (!problem.empty()) findings.Add("NoteData", "Note", id, name, problem);
  }
}

}  // namespace qdclgl::server
