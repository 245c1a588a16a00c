// The manual as pages for `man`.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace qdclgl::cli {

// The name of a command's page, that of the program without one: "qdclgl-import".
std::string ManPageName(const std::string& program, const std::string& command);

// The page of the program, in roff: commands by groups, common options, topics.
std::string ManPage(const CLI::App& app);
// The page of one of its commands.
std::string ManPageOf(const CLI::App& app, const CLI::App& command);

// Writes the pages of the program and of all its commands into a folder that is there or is made,
// NAME.1 each. FileError when one can't be written.
void WriteManPages(const CLI::App& app, const std::string& folder);

}  // namespace qdclgl::cli
