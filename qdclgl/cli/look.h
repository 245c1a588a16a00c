// How tables look to whoever reads them.
#pragma once

#include <cstddef>
#include <memory>

#include "qdclgl/cli/money.h"

namespace qdclgl::cli {

struct Look {
  // Of a terminal; 0 where there is none, and nothing is cut then.
  std::size_t width = 0;
  std::size_t height = 0;
  bool obeys_escapes = true;  // as not every terminal does
  bool has_colour = false;
  bool has_unicode = false;
  bool shows_keys = false;  // the columns' keys in place of headings
  Negatives negatives = Negatives::kMinus;
  // What the books say of their currencies; two decimals where there are no books.
  std::shared_ptr<CurrencyScales> scales = nullptr;

  bool IsTerminal() const { return width > 0; }
  int DecimalsOf(Long currency) const { return scales ? scales->Of(currency) : 2; }
};

// The terminal that a descriptor is, if it is one.
Look LookAt(int descriptor);

}  // namespace qdclgl::cli
