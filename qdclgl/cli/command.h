// A command and its options, as the families of commands make them. The parser behind them is seen
// by few files alone: it takes longer to compile than any family.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "qdclgl/frame/values/values.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace qdclgl::cli {

class Option {
 public:
  explicit Option(CLI::Option* option) : option_(option) {}

  Option Required() const;
  // Not beside the other one, which a name means among those that the command has so far.
  Option Excludes(const Option& other) const;
  Option Excludes(const std::string& name) const;
  // Only beside the other one.
  Option Needs(const Option& other) const;

  // Takes so many words at once.
  Option Values(int count) const;
  // May stand without its value, which is empty then.
  Option MayLackValue() const;
  // May stand again and again, with one word each time.
  Option OneWordEach() const;
  // Words may stand in one, with this mark between them.
  Option PartedBy(char mark) const;

  Option Positive() const;
  Option OneOf(const std::vector<std::string>& words) const;

  // The help shows what it is without being given.
  Option ShowsUsual() const;
  // The help shows this in place of its type.
  Option ShownAs(const std::string& text) const;

 private:
  CLI::Option* option_;
};

// What is given as `value` or `values` holds what is usual, and lives until the run is over.
class Command {
 public:
  explicit Command(CLI::App* app) : app_(app) {}

  // A word that stands without an option, or all that are left.
  Option Word(const std::string& name, std::string& value, const std::string& help) const;
  Option Words(const std::string& name, std::vector<std::string>& values,
               const std::string& help) const;

  // With a value, whose type is a word for the help.
  Option Text(const std::string& name, std::string& value, const std::string& type,
              const std::string& help) const;
  Option Texts(const std::string& name, std::vector<std::string>& values, const std::string& type,
               const std::string& help) const;
  Option Whole(const std::string& name, Long& value, const std::string& help) const;
  Option Date(const std::string& name, DateTime& value, const std::string& help) const;
  // `take` gets the value, or each of those that are given one by one.
  using Take = std::function<void(const std::string& text)>;
  Option Read(const std::string& name, Take take, const std::string& type,
              const std::string& help) const;
  Option ReadEach(const std::string& name, Take take, const std::string& type,
                  const std::string& help) const;

  Option Flag(const std::string& name, bool& value, const std::string& help) const;
  Option Flag(const std::string& name, std::function<void()> take, const std::string& help) const;

  // Once all its words are read, in front of its run.
  void WhenRead(std::function<void()> act) const;

  // What tells of all commands looks at it there.
  CLI::App& parser() const { return *app_; }

 private:
  CLI::App* app_;
};

// Refuses the value of an option.
[[noreturn]] void RefuseOption(const std::string& name, const std::string& reason);
// A whole number as an option's text is read: what is wrong with it is wrong usage.
Long WholeOption(const std::string& name, const std::string& text);
// A date likewise.
DateTime DateOption(const std::string& name, const std::string& text);

}  // namespace qdclgl::cli
