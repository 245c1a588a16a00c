// Connection texts: written back and read again they say the same, and no message tells a password.
#include "qdclgl/server/db/connection_text.h"

#include "qdclgl/frame/session/session.h"
#include "qdclgl/server/db/refusals.h"
#include "tests/fuzz/targets/target.h"

namespace {

using namespace qdclgl;
using namespace qdclgl::server;
using fuzz::Require;

void LookAt(std::string_view bytes) {
  const ConnectionText text = ConnectionText::Parse(bytes);
  const std::string written = text.ToText();
  const ConnectionText read = ConnectionText::Parse(written);
  Require(read.ToText() == written, "a text that was written back is itself");
  for (const std::string_view key :
       {connection_key::kDataSource, connection_key::kCatalog, connection_key::kPassword,
        connection_key::kSession, connection_key::kUser}) {
    Require(read[key] == text[key], "each value comes back");
    Require(text.Without(key)[key].empty(), "what is taken out is out");
    const ConnectionText changed = text.With(key, bytes);
    Require(changed[key] == bytes, "what is put in is in");
    Require(ConnectionText::Parse(changed.ToText())[key] == bytes, "and comes back");
  }
  constexpr std::string_view kSecret = "<no one else says so>";
  if (bytes.find(kSecret) != std::string_view::npos) return;
  for (const std::string_view key : {connection_key::kPassword, connection_key::kSession}) {
    Require(text.With(key, kSecret).ForMessage().find(kSecret) == std::string::npos,
            "a message tells no secret");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(fuzz::TextOf(data, size));
  try {
    LookAt(text);
  } catch (const Error& error) {
    Require(error.number() == refusal::kBadConnectionText, "a text is refused as such");
  }
  const std::int32_t raised = fuzz::NumberOf([&] { GetPropsValue(text, "Initial catalog", "="); });
  Require(raised == 0 || raised == error_number::kInvalidCall,
          "a value is there or not, or error 5");
  return 0;
}
