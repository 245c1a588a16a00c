// CSV files: rows written in the plainest way read as the same, and places only go forward.
#include <sstream>

#include "qdclgl/cli/csv_reader.h"
#include "tests/fuzz/targets/target.h"

namespace {

using namespace qdclgl::cli;
using qdclgl::fuzz::Require;

std::vector<CsvRow> Read(const std::string& text) {
  std::istringstream in(text);
  CsvReader reader(in);
  std::vector<CsvRow> rows;
  CsvRow row;
  while (reader.Next(row)) {
    Require(rows.size() <= text.size(), "there are no more rows than characters");
    rows.push_back(row);
  }
  Require(reader.bytes() == static_cast<long long>(text.size()), "the whole file is read");
  return rows;
}

bool IsBefore(const Position& left, const Position& right) {
  return left.line < right.line || (left.line == right.line && left.column <= right.column);
}

std::string Written(const std::vector<CsvRow>& rows) {
  std::string text;
  for (const CsvRow& row : rows) {
    std::string line;
    for (const CsvCell& cell : row.cells) {
      if (!line.empty()) line += ',';
      line += '"';
      for (const char c : cell.text) line += std::string(c == '"' ? 2 : 1, c);
      line += '"';
    }
    text += line + '\n';
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(qdclgl::fuzz::TextOf(data, size));
  const std::vector<CsvRow> rows = Read(text);
  Position last;
  bool is_whole = true;
  for (const CsvRow& row : rows) {
    is_whole = is_whole && !row.problem;
    for (const CsvCell& cell : row.cells) {
      Require(IsBefore(last, cell.at), "cells stand one behind the other");
      last = cell.at;
    }
  }
  if (!is_whole) return 0;
  const std::vector<CsvRow> again = Read(Written(rows));
  Require(again.size() == rows.size(), "as many rows come back");
  for (std::size_t i = 0; i < rows.size(); ++i) {
    Require(again[i].cells.size() == rows[i].cells.size(), "as many cells come back");
    for (std::size_t j = 0; j < rows[i].cells.size(); ++j) {
      Require(again[i].cells[j].text == rows[i].cells[j].text, "each cell comes back");
    }
  }
  return 0;
}
