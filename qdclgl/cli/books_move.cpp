#include "qdclgl/cli/books_move.h"

#include "qdclgl/cli/progress.h"
#include "qdclgl/cli/which_books.h"
#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/session/server_gateway.h"

namespace qdclgl::cli {

int CopyBooks(const Login& login, const std::string& to, const std::string& program_role,
              const Console& console) {
  const std::string props = login.Open();
  const auto account = Watched(console, [&] {
    return CreateObject("QDSVGLBooks.BooksInfo")
        ->Call("CopyTo", props, to, program_role)
        .As<Dictionary>();
  });
  if (account->Value("FBeganAnew").As<Boolean>()) {
    console.out << "The books had changed since the copy was broken off: it began anew.\n";
  } else if (account->Value("FWentOn").As<Boolean>()) {
    console.out << "The copy went on where it was broken off.\n";
  }
  console.out << "Copied: " << WhichBooks(*account) << ".\n";
  return kDone;
}

}  // namespace qdclgl::cli
