#include "qdclgl/cli/man_page.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "qdclgl/cli/console.h"
#include "qdclgl/cli/manual.h"
#include "qdclgl/server/db/path_text.h"
#include "qdclgl/version.h"

namespace qdclgl::cli {

namespace {

using server::PathOf;

constexpr const char* kDescription = "the command line of a general ledger";

// A text as roff prints it: no hyphen that a line may be broken at, and nothing that it would obey.
std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\\') {
      escaped += "\\e";
    } else if (c == '-') {
      escaped += "\\-";
    } else if (c == '\'') {
      escaped += "\\(aq";
    } else if (c == '"') {
      escaped += "\\(dq";
    } else {
      escaped += c;
    }
  }
  return escaped.starts_with('.') ? "\\&" + escaped : escaped;
}

// A line of a paragraph, with what is to be typed in bold.
std::string Line(const std::string& line) {
  std::string text;
  bool is_bold = false;
  std::istringstream words(line);
  for (std::string part; std::getline(words, part, '`'); is_bold = !is_bold) {
    text += is_bold ? "\\fB" + Escaped(part) + "\\fR" : Escaped(part);
  }
  return text + '\n';
}

// Paragraphs as the manual has them, each behind `.PP`.
std::string Paragraphs(const std::string& text) {
  std::string page;
  bool is_verbatim = false, begins = true;
  const auto end_verbatim = [&] {
    if (is_verbatim) page += ".fi\n.RE\n";
    is_verbatim = false;
  };
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.empty()) {
      begins = true;
      continue;
    }
    const bool stands = line.front() == ' ';
    if (begins) {
      end_verbatim();
      page += ".PP\n";
      if (stands) page += ".RS 4\n.nf\n";
      is_verbatim = stands;
      begins = false;
    }
    page += stands ? Escaped(line.substr(line.find_first_not_of(' '))) + '\n' : Line(line);
  }
  end_verbatim();
  return page;
}

std::string Head(const std::string& name, const std::string& description) {
  std::string title = name;
  std::ranges::transform(title, title.begin(), [](unsigned char c) { return std::toupper(c); });
  return ".TH " + Escaped(title) + " 1 \"\" \"qdclgl " + std::string(Version()) +
         "\" \"User Commands\"\n.SH NAME\n" + Escaped(name) + " \\- " + Escaped(description) +
         "\n.SH SYNOPSIS\n";
}

// Options, or what is told without one, as the help names and explains them.
std::string Options(const CLI::App& command, bool are_positional) {
  const HelpFormatter formatter;
  std::string page;
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_positional() != are_positional) continue;
    std::string value = formatter.make_option_opts(option);
    value.erase(0, value.find_first_not_of(' '));
    page += ".TP\n\\fB" + Escaped(formatter.make_option_name(option, are_positional)) + "\\fR" +
            (value.empty() ? "" : " " + Escaped(value)) + '\n' + Line(option->get_description());
  }
  return page;
}

std::string Section(const std::string& title, const std::string& content) {
  return content.empty() ? "" : ".SH " + title + '\n' + content;
}

// The commands of a group, a line on each.
std::string Commands(const CLI::App& app, const std::string& title) {
  std::string page = ".SS " + Escaped(title) + '\n';
  for (const CLI::App* command : app.get_subcommands({})) {
    if (command->get_group() != title) continue;
    page += ".TP\n\\fB" + Escaped(command->get_name()) + "\\fR\n" +
            Line(command->get_description() + '.');
  }
  return page;
}

}  // namespace

std::string ManPageName(const std::string& program, const std::string& command) {
  return command.empty() ? program : program + '-' + command;
}

std::string ManPage(const CLI::App& app) {
  const std::string name = app.get_name();
  std::string page = Head(name, kDescription) + "\\fB" + Escaped(name) +
                     "\\fR \\fICOMMAND\\fR [\\fIBOOK\\fR] [\\fIOPTION\\fR ...]\n";
  page += Section("DESCRIPTION", Paragraphs(app.get_footer()));
  page += ".SH COMMANDS\nEach has a page of its own: \\fB" + Escaped(name) +
          "\\-\\fR\\fICOMMAND\\fR(1).\n";
  for (const ManualGroup& group : ManualGroups()) page += Commands(app, group.title);
  page += Commands(app, ListsTitle());
  page += Section("OPTIONS", Options(app, false));
  for (const Chapter& topic : Topics()) {
    const std::string text(topic.text);
    const std::size_t end_of_title = text.find('\n');
    std::string title = text.substr(0, end_of_title);
    std::ranges::transform(title, title.begin(), [](unsigned char c) { return std::toupper(c); });
    page += Section(title, Paragraphs(text.substr(end_of_title + 1)));
  }
  return page;
}

std::string ManPageOf(const CLI::App& app, const CLI::App& command) {
  const std::string name = app.get_name();
  const HelpFormatter formatter;
  std::string usage = formatter.make_usage(&command, "");
  usage.erase(0, usage.find(':') + 1);
  usage.erase(usage.find_last_not_of('\n') + 1);
  return Head(ManPageName(name, command.get_name()), command.get_description()) + "\\fB" +
         Escaped(name + ' ' + command.get_name()) + "\\fR" + Escaped(usage) + '\n' +
         Section("DESCRIPTION", Paragraphs(ManualText(command.get_name()))) +
         Section("ARGUMENTS", Options(command, true)) +
         Section("OPTIONS", Options(command, false)) + ".SH SEE ALSO\n\\fB" + Escaped(name) +
         "\\fR(1)\n";
}

void WriteManPages(const CLI::App& app, const std::string& folder) {
  const auto write = [&](const std::string& command, const std::string& page) {
    const std::string name = ManPageName(app.get_name(), command) + ".1";
    std::ofstream file(PathOf(folder) / name, std::ios::binary);
    if (!(file << page).flush()) throw FileError(name + " can't be written into " + folder);
  };
  std::error_code failed;
  std::filesystem::create_directories(PathOf(folder), failed);
  if (failed) throw FileError(folder + " can't be made: " + failed.message());
  write("", ManPage(app));
  for (const CLI::App* command : app.get_subcommands({})) {
    write(command->get_name(), ManPageOf(app, *command));
  }
}

}  // namespace qdclgl::cli
