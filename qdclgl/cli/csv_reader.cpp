#include "qdclgl/cli/csv_reader.h"

#include <new>

#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::cli {

namespace {

constexpr unsigned char kOptions = CSV_STRICT | CSV_STRICT_FINI;
constexpr std::size_t kBlock = 1 << 16;
// A quote that is never closed must not draw the whole file into memory.
constexpr std::size_t kLongestCell = 1 << 20;
// Nor a row that never ends.
constexpr std::size_t kMostCells = 1000;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

CsvReader::CsvReader(std::istream& in, char separator) : in_(in), separator_(separator) {
  StartParser();
  ReadMore();
  if (buffer_.starts_with(kByteOrderMark)) Begin(kByteOrderMark.size());
}

CsvReader::~CsvReader() { csv_free(&parser_); }

void CsvReader::StartParser() {
  if (csv_init(&parser_, kOptions) != 0) throw std::bad_alloc();
  csv_set_delim(&parser_, static_cast<unsigned char>(separator_));
}

bool CsvReader::ReadMore() {
  buffer_.erase(0, cell_offset_);
  next_ -= cell_offset_;
  cell_offset_ = 0;
  const std::size_t size = buffer_.size();
  buffer_.resize(size + kBlock);
  in_.read(buffer_.data() + size, kBlock);
  const auto count = static_cast<std::size_t>(in_.gcount());
  buffer_.resize(size + count);
  bytes_ += static_cast<long long>(count);
  return count > 0;
}

void CsvReader::Advance(std::size_t count) {
  for (const std::size_t end = next_ + count; next_ < end; ++next_) {
    const char c = buffer_[next_];
    if (c == '\r' || (c == '\n' && !behind_cr_)) {
      ++position_.line;
      position_.column = 1;
    } else if (c != '\n' && (static_cast<unsigned char>(c) & 0xC0) != 0x80) {
      ++position_.column;
    }
    behind_cr_ = c == '\r';
  }
}

void CsvReader::Begin(std::size_t offset) {
  next_ = offset;
  cell_offset_ = offset;
  cell_at_ = position_;
}

void CsvReader::TakeCell(std::string_view text) {
  const auto complain = [&](const std::string& reason) {
    if (!row_->problem) row_->problem = {cell_at_, reason};
  };
  ++cell_count_;
  if (row_->cells.size() == kMostCells) {
    return complain("the row has more than " + std::to_string(kMostCells) + " cells");
  }
  row_->cells.push_back({std::string(text), cell_at_});
  if (!IsUtf8(text)) complain("the text is not UTF-8");
  if (text.find('\0') != text.npos) complain("the text holds a zero byte");
}

void CsvReader::GiveUp(CsvRow& row, bool is_open) {
  // A cell over several lines fails where its text stops making sense; what one wants to know is
  // where it begins.
  if (!is_open && position_.line == cell_at_.line) {
    row.problem = {position_, "the quotes are wrong here: a cell with a quote in it stands in "
                              "quotes, and each quote inside is doubled"};
  } else {
    row.problem = {cell_at_, "the quoted text that begins here is not closed, or goes on behind "
                             "its closing quote"};
  }
  csv_free(&parser_);
  StartParser();

  std::size_t end = buffer_.find_first_of("\r\n", cell_offset_);
  while (end == buffer_.npos) {
    cell_offset_ = next_ = buffer_.size();
    if (!ReadMore()) break;
    end = buffer_.find_first_of("\r\n");
  }
  position_ = {cell_at_.line + 1, 1};
  behind_cr_ = end != buffer_.npos && buffer_[end] == '\r';
  Begin(end == buffer_.npos ? buffer_.size() : end + 1);
}

bool CsvReader::Next(CsvRow& row) {
  row.cells.clear();
  row.problem.reset();
  row.at = position_;
  row_ = &row;
  row_ended_ = false;
  cell_count_ = 0;
  Begin(next_);

  const auto on_cell = [](void* text, std::size_t size, void* self) {
    static_cast<CsvReader*>(self)->TakeCell({static_cast<const char*>(text), size});
  };
  const auto on_row = [](int, void* self) { static_cast<CsvReader*>(self)->row_ended_ = true; };

  const char cell_ends[] = {separator_, '"', '\r', '\n', '\0'};
  while (!row_ended_) {
    if (next_ == buffer_.size() && !ReadMore()) {
      if (csv_fini(&parser_, on_cell, on_row, this) != 0) {
        GiveUp(row, true);
        return true;
      }
      return row_ended_;
    }
    // The parser takes the text up to a character that can end a cell, so that a cell is told when
    // its end is reached and not before.
    const std::size_t end = buffer_.find_first_of(cell_ends, next_);
    const std::size_t count = (end == buffer_.npos ? buffer_.size() : end + 1) - next_;
    const std::size_t cells = cell_count_;
    const std::size_t taken =
        csv_parse(&parser_, buffer_.data() + next_, count, on_cell, on_row, this);
    Advance(taken);
    const bool is_endless = next_ - cell_offset_ > kLongestCell;
    if (taken < count || is_endless) {
      GiveUp(row, is_endless);
      return true;
    }
    const bool is_blank_line = cells == 0 && !parser_.quoted && end != buffer_.npos &&
                               (buffer_[end] == '\r' || buffer_[end] == '\n');
    if (cell_count_ > cells || is_blank_line) Begin(next_);
    if (is_blank_line && row.cells.empty()) row.at = position_;
  }
  return true;
}

}  // namespace qdclgl::cli
