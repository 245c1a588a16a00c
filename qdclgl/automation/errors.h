// Errors across the edge: exceptions become what automation clients read, and what a foreign server
// reports becomes an exception.
#pragma once

#include <cstdint>

#include "qdclgl/automation/com.h"
#include "qdclgl/frame/vocabulary/errors.h"

namespace qdclgl::automation {

// The result code of a run-time error: 0x800A0000 + the number for a plain one; a number that is a
// result code already is that code. No number, 0, is 440 in both directions.
HRESULT CodeOfNumber(std::int32_t number);
// The other way.
std::int32_t NumberOfCode(HRESULT code);

// Both are called in a catch block, and are where exceptions end. The error is filed as the
// thread's error information; the answer is its code, or E_OUTOFMEMORY and E_UNEXPECTED for what is
// no Error.
HRESULT ReportException() noexcept;
// In the form of an Invoke: fills `exception` unless it is null; the answer is
// DISP_E_EXCEPTION.
HRESULT ReportInvokeException(EXCEPINFO* exception) noexcept;

// Runs a body that returns a result code, or raises.
template <class Body>
HRESULT Guarded(Body body) noexcept {
  try {
    return body();
  } catch (...) {
    return ReportException();
  }
}

// A call into a foreign object that may fail with words: what an earlier failure left as the
// thread's error information is not to pass for this one's.
template <class Body>
HRESULT CallOut(Body body) noexcept {
  SetErrorInfo(0, nullptr);
  return AnswerOf(body);
}

// Raises what a foreign object's Invoke reported: its `exception` for DISP_E_EXCEPTION, whose
// texts are released; the plain number that stands for the other codes of a dispatch; any other
// code as a number of its own, with the thread's error information. A failure that has no number
// is 440.
[[noreturn]] void RaiseFailure(HRESULT code, EXCEPINFO* exception = nullptr);

// For calls of the platform itself.
inline void Check(HRESULT code) {
  if (FAILED(code)) RaiseFailure(code);
}

}  // namespace qdclgl::automation
