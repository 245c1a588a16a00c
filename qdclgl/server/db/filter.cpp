#include "qdclgl/server/db/filter.h"

#include <charconv>
#include <utility>

#include "qdclgl/frame/objects/conversions.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

constexpr int kDeepestNesting = 100;
constexpr std::size_t kMostValues = 1000;

struct Token {
  enum class Kind { kEnd, kWord, kNumber, kText, kDate, kSign };
  Kind kind = Kind::kEnd;
  std::string_view word;  // as written; without quotes or # signs for texts and dates
  std::size_t position = 0;
};

class Lexer {
 public:
  Lexer(std::string_view text, std::int32_t error, std::string_view what)
      : text_(text), error_(error), what_(what) {
    Advance();
  }

  const Token& token() const { return token_; }
  bool AtEnd() const { return token_.kind == Token::Kind::kEnd; }

  void Advance() {
    while (next_ < text_.size() && IsBlank(text_[next_])) ++next_;
    token_ = {Token::Kind::kEnd, {}, next_};
    if (next_ == text_.size()) return;
    const char c = text_[next_];
    if (c == '\'') return Delimited(Token::Kind::kText, '\'');
    if (c == '#') return Delimited(Token::Kind::kDate, '#');
    if (IsDigit(c) || ((c == '-' || c == '+' || c == '.') && StartsNumber(next_ + 1))) {
      return Take(Token::Kind::kNumber, [before = c](char d) mutable {
        const bool is_exponent = AsciiToLower(std::exchange(before, d)) == 'e';
        return IsWord(d) || d == '.' || (is_exponent && (d == '-' || d == '+'));
      });
    }
    if (IsWord(c)) return Take(Token::Kind::kWord, IsWord);
    const std::size_t length = text_.substr(next_, 2) == "<>" || text_.substr(next_, 2) == "<=" ||
                                       text_.substr(next_, 2) == ">="
                                   ? 2
                                   : 1;
    token_ = {Token::Kind::kSign, text_.substr(next_, length), next_};
    next_ += length;
  }

  bool IsWordToken(std::string_view word) const {
    return token_.kind == Token::Kind::kWord && EqualsIgnoringAsciiCase(token_.word, word);
  }
  bool IsSign(std::string_view sign) const {
    return token_.kind == Token::Kind::kSign && token_.word == sign;
  }
  bool TakeWord(std::string_view word) {
    const bool there = IsWordToken(word);
    if (there) Advance();
    return there;
  }
  bool TakeSign(std::string_view sign) {
    const bool there = IsSign(sign);
    if (there) Advance();
    return there;
  }

  const Column& TakeColumn(std::span<const Column> columns) {
    if (token_.kind != Token::Kind::kWord) Fail("a column is expected");
    const Column* column = FindColumn(columns, token_.word);
    if (column == nullptr) {
      std::string reason = "there is no column " + std::string(token_.word) + "; there are";
      for (const Column& one : columns) {
        reason.append(&one == columns.data() ? " " : ", ").append(one.name);
      }
      Fail(reason);
    }
    Advance();
    return *column;
  }

  [[noreturn]] void Fail(const std::string& reason) const { FailAt(token_.position, reason); }
  [[noreturn]] void FailAt(std::size_t position, const std::string& reason) const {
    Refuse(error_, "The " + std::string(what_) + " can't be understood at character " +
                       std::to_string(Utf16Length(text_.substr(0, position)) + 1) + ": " + reason +
                       ".");
  }

 private:
  static bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
  static bool IsDigit(char c) { return c >= '0' && c <= '9'; }
  static bool IsWord(char c) {
    return IsDigit(c) || c == '_' || (AsciiToLower(c) >= 'a' && AsciiToLower(c) <= 'z');
  }
  bool StartsNumber(std::size_t position) const {
    return position < text_.size() && (IsDigit(text_[position]) || text_[position] == '.');
  }

  template <class Belongs>
  void Take(Token::Kind kind, Belongs belongs) {
    std::size_t end = next_ + 1;
    while (end < text_.size() && belongs(text_[end])) ++end;
    token_ = {kind, text_.substr(next_, end - next_), next_};
    next_ = end;
  }

  void Delimited(Token::Kind kind, char delimiter) {
    const std::size_t first = next_ + 1;
    std::size_t end = first;
    while (true) {
      end = text_.find(delimiter, end);
      if (end == text_.npos) {
        FailAt(next_, std::string("a ") + delimiter + " that is not closed");
      }
      if (delimiter != '\'' || text_.substr(end, 2) != "''") break;
      end += 2;
    }
    token_ = {kind, text_.substr(first, end - first), next_};
    next_ = end + 1;
  }

  std::string_view text_;
  std::int32_t error_;
  std::string_view what_;
  std::size_t next_ = 0;
  Token token_;
};

class FilterParser {
 public:
  FilterParser(std::string_view text, std::span<const Column> columns)
      : lexer_(text, refusal::kBadFilter, "filter"), columns_(columns) {}

  Filter Parse() {
    if (!lexer_.AtEnd()) {
      Either();
      if (!lexer_.AtEnd()) lexer_.Fail("AND, OR or the end is expected");
    }
    return std::move(filter_);
  }

 private:
  void Either() {
    Both();
    while (lexer_.TakeWord("OR")) {
      filter_.sql += " OR ";
      Both();
    }
  }

  void Both() {
    Condition();
    while (lexer_.TakeWord("AND")) {
      filter_.sql += " AND ";
      Condition();
    }
  }

  void Condition() {
    if (++nesting_ > kDeepestNesting) lexer_.Fail("it is nested too deeply");
    if (lexer_.TakeWord("NOT")) {
      filter_.sql += "NOT ";
      Condition();
    } else if (lexer_.TakeSign("(")) {
      filter_.sql += "(";
      Either();
      if (!lexer_.TakeSign(")")) lexer_.Fail("a ) is expected");
      filter_.sql += ")";
    } else {
      Comparison();
    }
    --nesting_;
  }

  void Comparison() {
    const Column& column = lexer_.TakeColumn(columns_);
    filter_.columns.push_back(column.name);
    std::string name(column.name);
    const bool negated = lexer_.TakeWord("NOT");
    if (lexer_.IsWordToken("LIKE")) {
      if (column.type != ColumnType::kText) lexer_.Fail("LIKE is for columns of text");
      lexer_.Advance();
      filter_.sql += name + (negated ? " NOT LIKE ? ESCAPE '\\'" : " LIKE ? ESCAPE '\\'");
      Pattern();
      return;
    }
    if (lexer_.TakeWord("IN")) {
      if (!lexer_.TakeSign("(")) lexer_.Fail("a ( is expected behind IN");
      filter_.sql += name + (negated ? " NOT IN (" : " IN (");
      do {
        Value(column);
        filter_.sql += "?, ";
      } while (lexer_.TakeSign(","));
      filter_.sql.replace(filter_.sql.size() - 2, 2, ")");
      if (!lexer_.TakeSign(")")) lexer_.Fail("a , or a ) is expected");
      return;
    }
    if (negated) lexer_.Fail("LIKE or IN is expected behind NOT");
    for (const std::string_view sign : {"=", "<>", "<=", ">=", "<", ">"}) {
      if (!lexer_.TakeSign(sign)) continue;
      filter_.sql += name + " " + std::string(sign) + " ";
      const Column* other = lexer_.token().kind == Token::Kind::kWord
                                ? FindColumn(columns_, lexer_.token().word)
                                : nullptr;
      if (other == nullptr) {
        Value(column);
        filter_.sql += "?";
        return;
      }
      if (other->type != column.type) lexer_.Fail("the two columns are of different kinds");
      filter_.sql += other->name;
      filter_.columns.push_back(other->name);
      lexer_.Advance();
      return;
    }
    if (column.type != ColumnType::kBoolean) lexer_.Fail("a comparison is expected");
    filter_.sql += name + " <> 0";
  }

  void Pattern() {
    if (lexer_.token().kind != Token::Kind::kText) lexer_.Fail("a text is expected behind LIKE");
    std::string pattern = Unquoted();
    for (std::size_t i = 0; i < pattern.size(); ++i) {
      if (pattern[i] == '\\' && ++i == pattern.size()) lexer_.Fail("the pattern ends in \\");
    }
    Bind(std::move(pattern));
  }

  void Value(const Column& column) {
    const Token& token = lexer_.token();
    const bool is_number = token.kind == Token::Kind::kNumber;
    switch (column.type) {
      case ColumnType::kText:
        if (token.kind != Token::Kind::kText) lexer_.Fail("a text in quotes is expected");
        return Bind(Unquoted());
      case ColumnType::kDate:
        if (token.kind != Token::Kind::kText && token.kind != Token::Kind::kDate) {
          lexer_.Fail("a date is expected, such as #2024-01-31#");
        }
        return Bind(DateValue(token.word));
      case ColumnType::kBoolean:
        if (lexer_.IsWordToken("TRUE")) return Bind(std::int64_t{1});
        if (lexer_.IsWordToken("FALSE")) return Bind(std::int64_t{0});
        if (is_number) return Bind(std::int64_t{Number(0) != 0});
        lexer_.Fail("TRUE or FALSE is expected");
      case ColumnType::kDouble:
      case ColumnType::kSingle:
        if (!is_number) lexer_.Fail("a number is expected");
        return Bind(Real());
      case ColumnType::kDecimal:
        if (!is_number) lexer_.Fail("a number is expected");
        return Bind(Exact());
      case ColumnType::kCurrency:
        if (!is_number) lexer_.Fail("an amount is expected");
        return Bind(Number(4));
      default:
        if (!is_number) lexer_.Fail("a number is expected");
        return Bind(Number(0));
    }
  }

  template <class T>
  void Bind(T value) {
    if (filter_.values.size() == kMostValues) lexer_.Fail("there are too many values");
    filter_.values.emplace_back(std::move(value));
    lexer_.Advance();
  }

  std::string Unquoted() const {
    std::string text;
    const std::string_view word = lexer_.token().word;
    if (!IsStorable(word)) lexer_.Fail("the text holds a zero byte or is not UTF-8");
    for (std::size_t i = 0; i < word.size(); ++i) {
      text += word[i];
      if (word[i] == '\'') ++i;
    }
    return text;
  }

  std::string DateValue(std::string_view word) const {
    try {
      return DateText(CDate(Variant(word)));
    } catch (const Error&) {
      lexer_.Fail("there is no such date; dates are written as #2024-01-31#");
    }
  }

  double Real() const {
    const std::string_view word = Unsigned();
    double value = 0;
    const auto [end, failure] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (failure != std::errc() || end != word.data() + word.size()) {
      lexer_.Fail("there is no such number");
    }
    return value;
  }

  std::string Exact() const {
    Real();
    try {
      return DecimalText(Decimal::FromText(Unsigned()));
    } catch (const Error&) {
      lexer_.Fail("there is no such number");
    }
  }

  // A plain number with at most so many decimals, counted in its last decimal.
  std::int64_t Number(int decimals) const {
    std::string_view word = Unsigned();
    const auto point = word.find('.');
    std::string digits(word.substr(0, point));
    std::string_view fraction = point == word.npos ? std::string_view() : word.substr(point + 1);
    while (!fraction.empty() && fraction.back() == '0') fraction.remove_suffix(1);
    if (fraction.size() > static_cast<std::size_t>(decimals)) {
      lexer_.Fail(decimals == 0 ? "a whole number is expected"
                                : "an amount has at most 4 decimals");
    }
    digits.append(fraction).append(static_cast<std::size_t>(decimals) - fraction.size(), '0');
    std::int64_t value = 0;
    const auto [end, failure] =
        std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (failure != std::errc() || end != digits.data() + digits.size()) {
      lexer_.Fail("there is no such number");
    }
    return value;
  }

  std::string_view Unsigned() const {
    std::string_view word = lexer_.token().word;
    if (word.starts_with('+')) word.remove_prefix(1);
    return word;
  }

  Lexer lexer_;
  std::span<const Column> columns_;
  Filter filter_;
  int nesting_ = 0;
};

}  // namespace

Filter ParseFilter(std::string_view text, std::span<const Column> columns) {
  return FilterParser(text, columns).Parse();
}

std::vector<SortTerm> SortTerms(std::string_view text, std::span<const Column> columns) {
  Lexer lexer(text, refusal::kBadSort, "sort");
  std::vector<SortTerm> terms;
  if (lexer.AtEnd()) return terms;
  do {
    const Column& column = lexer.TakeColumn(columns);
    terms.push_back({column.name, lexer.TakeWord("DESC")});
    if (!terms.back().is_descending) lexer.TakeWord("ASC");
  } while (lexer.TakeSign(","));
  if (!lexer.AtEnd()) lexer.Fail("a , or the end is expected");
  return terms;
}

std::string SortText(std::span<const SortTerm> terms) {
  std::string sql;
  for (const SortTerm& term : terms) {
    if (!sql.empty()) sql += ", ";
    sql.append(term.column).append(term.is_descending ? " DESC" : "");
  }
  return sql;
}

}  // namespace qdclgl::server
