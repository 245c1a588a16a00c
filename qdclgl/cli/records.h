// Records of one kind, in the books that somebody is logged in to.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/cli/record_kinds.h"
#include "qdclgl/cli/table.h"

namespace qdclgl::cli {

class Records {
 public:
  Records(const server::MasterData& kind, std::string props)
      : kind_(kind), props_(std::move(props)) {}

  const server::MasterData& kind() const { return kind_; }

  // The record that a KEY names: a number or name, or "#5" for an id; those that are marked deleted
  // too. Error NotFound when there is none, and when a key is that of several.
  Ref<Dictionary> Find(const std::string& key) const;
  // Nothing when there is none.
  Ref<Dictionary> Read(Long id) const;
  // Puts the rows that belong to a record into it, each list under its key.
  void AddLists(Dictionary& record) const;
  Long IdOf(const Dictionary& record) const;

  // Saves a row as the record with an id, as a new one for 0. What was saved in the meantime by
  // others is refused.
  Long Save(const Ref<Dictionary>& row, Long id) const;
  // Whether it is gone; otherwise it is marked deleted.
  bool Delete(Long id) const;

 private:
  Long IdWith(const std::string& key) const;

  const server::MasterData& kind_;
  std::string props_;
};

// Prints records with all that they hold: a plain one column by column, with its lists behind, by
// the keys that `set` takes.
void WriteRecords(const Console& console, Format format,
                  const std::vector<Ref<Dictionary>>& records);

}  // namespace qdclgl::cli
