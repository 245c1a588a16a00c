// The start-up of an apartment, and the client's online or offline state.
//
// Each thread that makes objects of the library is an apartment. Its first object makes it ask the
// server whether the client is offline and write the answer to the registry, where other programs
// of the suite read it. A client without a session or a server starts on line.
#pragma once

#include "qdclgl/frame/objects/variant.h"

namespace qdclgl {

// Whether the server wants the client offline: IsNeedOffline(PropsString, True, computer name by
// reference) of QDSVBase.BaseInfo.
Boolean QueryNeedOffline();

// Keeps the state and writes "OFFLINE" or "ONLINE" to the registry: under
// SoftWare\Quenda\LocalDatabase\ and the session's user name, as the value named after the
// session's database. Returns Empty, or in words what the registry refused. Error 5 for a
// connection text in which no ";" follows the database.
Variant SetOfflineState(Boolean Offline);

// The state of this apartment, False until its start.
Boolean IsOffline();

// The start-up routine: asks the server and writes the registry. Raises nothing.
void Main();

// Runs Main unless this apartment has started already. The constructors of the library's objects
// call it.
void StartApartment();

// Marks this apartment as started or not; returns what it was. For programs that start on their own
// terms, and for tests.
bool SetApartmentStarted(bool started);

// A base of every class whose first object starts its apartment.
struct ApartmentMember {
  ApartmentMember() { StartApartment(); }
};

}  // namespace qdclgl
