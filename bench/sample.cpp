#include "bench/sample.h"

namespace bench {

namespace {

using qdclgl::Dictionary;
using qdclgl::Ref;
using qdclgl::Variant;
using qdclgl::Vector;

bool HasDetails(std::int32_t line) { return line % 10 == 0; }

// Writes into a row of the library or of the peer.
auto Into(Dictionary& row) {
  return [&row](std::string_view name, const auto& value) { row.Value(name, ToVariant(value)); };
}
auto Into(PeerRow& row) {
  return [&row](std::string_view name, const auto& value) { row[std::string(name)] = value; };
}

}  // namespace

Ref<Dictionary> OurHeader() {
  auto header = qdclgl::Make<Dictionary>();
  FillHeader(Into(*header));
  header->Value("_Entries", Variant(qdclgl::Make<Vector>()));
  return header;
}

Ref<Dictionary> OurDocument(std::int32_t lines) {
  auto header = OurHeader();
  const auto entries = header->Value("_Entries").As<Vector>();
  for (std::int32_t i = 1; i <= lines; ++i) {
    auto line = qdclgl::Make<Dictionary>();
    FillLine(i, Into(*line));
    if (HasDetails(i)) {
      auto details = qdclgl::Make<Vector>();
      for (std::int32_t j = 0; j < 2; ++j) {
        auto detail = qdclgl::Make<Dictionary>();
        FillDetail(2 * i + j, Into(*detail));
        details->Append(Variant(detail));
      }
      line->Value("_Details", Variant(details));
    }
    entries->Append(Variant(line));
  }
  return header;
}

PeerRow TheirHeader() {
  PeerRow header;
  FillHeader(Into(header));
  header["_Entries"] = PeerList();
  return header;
}

PeerRow TheirDocument(std::int32_t lines) {
  PeerRow header = TheirHeader();
  auto& entries = std::get<PeerList>(header["_Entries"]);
  for (std::int32_t i = 1; i <= lines; ++i) {
    PeerRow line;
    FillLine(i, Into(line));
    if (HasDetails(i)) {
      PeerList details(2);
      for (std::int32_t j = 0; j < 2; ++j) {
        FillDetail(2 * i + j, Into(details[static_cast<std::size_t>(j)]));
      }
      line["_Details"] = std::move(details);
    }
    entries.push_back(std::move(line));
  }
  return header;
}

}  // namespace bench
