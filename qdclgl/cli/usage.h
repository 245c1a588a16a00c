// What is wrong with a command line, in words of the program.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace qdclgl::cli {

// The names of all commands, in the order of the help.
std::vector<std::string> CommandNames(const CLI::App& app);

// The command of that name. UsageError, with the nearest name, when there is none.
CLI::App& CommandNamed(CLI::App& app, const std::string& name);

// UsageError when the first word is neither a command nor an option of the program itself.
void CheckCommandWord(CLI::App& app, const std::vector<std::string>& words);

// The sentence that tells what a command line lacks or has too much of.
std::string UsageSentence(const CLI::App& app, const CLI::ParseError& error);

}  // namespace qdclgl::cli
