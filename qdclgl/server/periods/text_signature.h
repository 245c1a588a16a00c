// What the texts of many vouchers have in them, in a few bytes: a search for words then reads only
// vouchers that may have them.
//
// A signature has a mark for each run of three and of four letters in the texts. Where one of the
// word's runs has no mark, none of the texts has the word. Different runs may share a mark, so the
// other way round nothing is sure. Signatures are kept for vouchers of closed periods alone, since
// their texts don't change: a save pays nothing for them.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "qdclgl/server/db/database.h"
#include "qdclgl/server/periods/calendar.h"

namespace qdclgl::server {

class TextSignature {
 public:
  using Marks = std::vector<std::size_t>;

  // Of no text.
  TextSignature();
  // As the books keep it; one of another length than ours has all marks.
  explicit TextSignature(std::string stored);

  // The marks of a text, whatever the case of its letters; none for fewer than three bytes.
  static Marks MarksOf(std::string_view text);

  void Add(std::string_view text);
  bool HasAll(const Marks& marks) const;
  // Whether everything that the other one has a mark for has one here.
  bool HasAllOf(const TextSignature& other) const;

  // Printable characters of ASCII.
  const std::string& stored() const { return places_; }

 private:
  std::string places_;
};

// Vouchers by their ids, from the first to the last.
using VoucherRange = std::pair<std::int64_t, std::int64_t>;

// Keeps signatures of vouchers when a period is closed, or of those of all periods before the
// current one, telling how much of it is done; and takes back those of a period that is opened
// again, and of later ones. In a transaction in which nobody else saves vouchers.
void SignVouchersOf(Database& db, AccountingPeriod closed);
void SignVouchersBefore(Database& db, AccountingPeriod current,
                        const std::function<void(double share)>& tell);
void TakeBackSignatures(Database& db, AccountingPeriod opened);

// The vouchers among whose texts and those of their lines and items all the words may stand;
// nothing when that leaves too many to be worth while.
std::optional<std::vector<VoucherRange>> VouchersThatMayHave(Database& db,
                                                             std::span<const std::string> words);

// The blocks of vouchers whose signature lacks something, or is kept although a period of theirs is
// open.
std::vector<VoucherRange> WrongSignatures(Database& db, AccountingPeriod current);

}  // namespace qdclgl::server
