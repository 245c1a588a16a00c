// Run-time errors. Every failure of the library is raised as one exception type that carries what
// an automation client sees: a number, a source and a description.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

#include "qdclgl/language.h"

namespace qdclgl {

// The numbers that the library itself raises. A server's own numbers pass through unchanged.
namespace error_number {

inline constexpr std::int32_t kInvalidCall = 5;  // bad key, index or position; row not found
inline constexpr std::int32_t kOverflow = 6;
inline constexpr std::int32_t kOutOfMemory = 7;  // also a copy beyond its bound
inline constexpr std::int32_t kSubscriptOutOfRange = 9;
inline constexpr std::int32_t kTypeMismatch = 13;
inline constexpr std::int32_t kOutOfStackSpace = 28;
inline constexpr std::int32_t kObjectNotSet = 91;
inline constexpr std::int32_t kInvalidPropertyValue = 380;
inline constexpr std::int32_t kPropertyNotSettable = 387;
inline constexpr std::int32_t kCannotCreateObject = 429;
inline constexpr std::int32_t kMemberNotFound = 438;
inline constexpr std::int32_t kAutomationError = 440;  // a foreign failure without a number
inline constexpr std::int32_t kNamedArgumentNotFound = 448;
inline constexpr std::int32_t kArgumentNotOptional = 449;
inline constexpr std::int32_t kWrongArgumentCount = 450;
inline constexpr std::int32_t kDuplicateKey = 457;
inline constexpr std::int32_t kBadArguments = 3001;  // a recordset's refused argument or criterion
inline constexpr std::int32_t kNoCurrentRow = 3021;
inline constexpr std::int32_t kFieldNotFound = 3265;
inline constexpr std::int32_t kObjectClosed = 3704;
// The platform's code for a call on another thread than the object's.
inline constexpr auto kWrongThread = static_cast<std::int32_t>(0x8001010Eu);

// Errors of the library's own: the automation base for object errors plus a code.
constexpr std::int32_t Own(std::uint32_t code) {
  return static_cast<std::int32_t>(0x80044000u + code);
}

inline constexpr std::int32_t kUnknownProfileCategory = Own(0);
inline constexpr std::int32_t kSystemFieldNotRemovable = Own(0x42);
inline constexpr std::int32_t kNoClassOrType = Own(0x104);
inline constexpr std::int32_t kCoefficientRejected = Own(0x150);

}  // namespace error_number

class Error : public std::exception {
 public:
  explicit Error(std::int32_t number, std::string source = {}, std::string description = {});

  std::int32_t number() const { return number_; }
  const std::string& source() const { return source_; }
  const std::string& description() const { return description_; }

  // One line for a log or a terminal: "error 5" or "error 5 (source): description".
  const char* what() const noexcept override { return line_.c_str(); }

 private:
  std::int32_t number_;
  std::string source_;
  std::string description_;
  std::string line_;
};

// Raises `number` with source and description left empty. Cold: what leads to it is kept apart from
// the code that runs.
[[noreturn]] [[gnu::cold]] void RaiseError(std::int32_t number);

}  // namespace qdclgl
