#include "qdclgl/derived/core_errors.h"

#include "qdclgl/frame/vocabulary/errors.h"

namespace qdclgl::derived {

// The name is the constant's own, so that a number can't stand beside another one's.
#define QDCLGL_CORE_ERROR(name, meaning, advice) \
  CoreError { error_number::k##name, #name, meaning, advice }

std::span<const CoreError> CoreErrors() {
  static constexpr CoreError kErrors[] = {
      QDCLGL_CORE_ERROR(InvalidCall, "A key, an index or a position that is not there.",
                        "Ask `Lookup`, `Contains` or `Count` first, and count from 1."),
      QDCLGL_CORE_ERROR(Overflow, "A number does not fit its type, or a list has no end.",
                        "Use a wider type; look whether the component's list ends."),
      QDCLGL_CORE_ERROR(OutOfMemory, "A copy of more than 4,000,000 containers and objects.",
                        "Look for what is held in many places of the row."),
      QDCLGL_CORE_ERROR(SubscriptOutOfRange, "An element outside the bounds of an array or list.",
                        "Stay between 1 and `Count`."),
      QDCLGL_CORE_ERROR(TypeMismatch, "A value can't be converted to the member's type.",
                        "The help text of the member tells its type; look at the value."),
      QDCLGL_CORE_ERROR(OutOfStackSpace, "Calls or containers are nested too deep.",
                        "Look for an object that holds itself, or a component that calls back "
                        "without end."),
      QDCLGL_CORE_ERROR(ObjectNotSet, "A member of Nothing was called.",
                        "Test the reference first: many look-ups give Nothing for no record."),
      QDCLGL_CORE_ERROR(InvalidPropertyValue, "A value that the property can't have.",
                        "The member's help text tells the values."),
      QDCLGL_CORE_ERROR(PropertyNotSettable, "A property that can't be written now.",
                        "The member's help text tells when it can."),
      QDCLGL_CORE_ERROR(CannotCreateObject,
                        "No component is registered under a ProgID, or there is no such class.",
                        "Call `server::RegisterServerComponents` or `RegisterComponent` first; "
                        "look at the spelling."),
      QDCLGL_CORE_ERROR(MemberNotFound, "No such member, or none that is used this way.",
                        "The class's page tells its members and how they are used."),
      QDCLGL_CORE_ERROR(AutomationError, "A foreign object failed and gave no number.",
                        "Its own description tells more, where it has one."),
      QDCLGL_CORE_ERROR(NamedArgumentNotFound, "The member has no argument of that name.",
                        "The class's page tells the names."),
      QDCLGL_CORE_ERROR(ArgumentNotOptional, "An argument that is needed was left out.",
                        "Give it; those in brackets may be left out."),
      QDCLGL_CORE_ERROR(WrongArgumentCount, "More arguments than the member has.",
                        "The class's page tells them."),
      QDCLGL_CORE_ERROR(DuplicateKey, "The key is in the collection already.",
                        "Choose another key, or remove the element first."),
      QDCLGL_CORE_ERROR(BadArguments, "A recordset can't use an argument or a criterion.",
                        "A criterion is a column, an operator and a value."),
      QDCLGL_CORE_ERROR(NoCurrentRow,
                        "The recordset stands before its first row or behind its last.",
                        "Ask `Eof` and `Bof` first."),
      QDCLGL_CORE_ERROR(FieldNotFound, "The recordset has no such column.",
                        "Look at the spelling and at the component's columns."),
      QDCLGL_CORE_ERROR(ObjectClosed, "The recordset is closed.",
                        "Read what is needed before it is closed, or list anew."),
      QDCLGL_CORE_ERROR(WrongThread, "The object belongs to another thread.",
                        "Use an object on the thread that made it."),
      QDCLGL_CORE_ERROR(UnknownProfileCategory, "There is no such category of settings.",
                        "The categories are told in settings.md; case counts."),
      QDCLGL_CORE_ERROR(SystemFieldNotRemovable, "A field of the system's own is not removed.",
                        "Only fields that were added to an item class can be removed."),
      QDCLGL_CORE_ERROR(NoClassOrType, "The class or the type that is needed was not given.",
                        "Set it before the call."),
      QDCLGL_CORE_ERROR(CoefficientRejected, "The coefficient of a unit can't be that.",
                        "The sentence tells what it may be."),
  };
  return kErrors;
}

#undef QDCLGL_CORE_ERROR

}  // namespace qdclgl::derived
