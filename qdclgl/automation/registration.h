// What the server writes into the registry, and takes out again.
#pragma once

namespace qdclgl::automation {

// Registers every creatable class and the type library, which is written beside the server. A class
// that yields is left out where the machine has one of its name. When something fails, what was
// written is taken out again and the failure raised.
void Register();

// Removes every key that Register makes, and the type library. What is not there is passed over.
void Unregister();

}  // namespace qdclgl::automation
