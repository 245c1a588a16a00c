// Calls by name of every member of every public class, see neighbourhood.h.
#include "tests/fuzz/neighbourhood.h"

int main(int argc, char** argv) {
  using namespace qdclgl::fuzz;
  return FuzzMain(argc, argv, {"classes", 300, [](Choices& choices) {
                                 return std::make_unique<Neighbourhood>(choices);
                               }});
}
