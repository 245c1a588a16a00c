// Who is logged in to some books beyond the end of a run: a file of the person's own, one for the
// books, with the ticket of a kept session.
#pragma once

#include <optional>
#include <string>

namespace qdclgl::cli {

struct KeptLogin {
  std::string user;
  std::string ticket;
};

// Nothing when nobody is logged in to these books. FileError for a file that others can read or
// write, or that is none of ours.
std::optional<KeptLogin> KeptLoginTo(const std::string& book);
// Takes the place of the one before. FileError.
void KeepLogin(const std::string& book, const KeptLogin& login);
void ForgetLogin(const std::string& book);

}  // namespace qdclgl::cli
