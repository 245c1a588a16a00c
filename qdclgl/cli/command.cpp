#include "qdclgl/cli/command.h"

#include <CLI/CLI.hpp>
#include <utility>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/console.h"

namespace qdclgl::cli {

// ---- Options ----

Option Option::Required() const { return Option(option_->required()); }

Option Option::Excludes(const Option& other) const {
  return Option(option_->excludes(other.option_));
}

Option Option::Excludes(const std::string& name) const { return Option(option_->excludes(name)); }

Option Option::Needs(const Option& other) const { return Option(option_->needs(other.option_)); }

Option Option::Values(int count) const { return Option(option_->expected(count)); }

Option Option::MayLackValue() const { return Option(option_->expected(0, 1)); }

Option Option::OneWordEach() const { return Option(option_->allow_extra_args(false)); }

Option Option::PartedBy(char mark) const { return Option(option_->delimiter(mark)); }

Option Option::Positive() const { return Option(option_->check(CLI::PositiveNumber)); }

Option Option::OneOf(const std::vector<std::string>& words) const {
  return Option(option_->check(CLI::IsMember(words)));
}

Option Option::ShowsUsual() const { return Option(option_->capture_default_str()); }

Option Option::ShownAs(const std::string& text) const { return Option(option_->option_text(text)); }

// ---- Commands ----

Option Command::Word(const std::string& name, std::string& value, const std::string& help) const {
  return Option(app_->add_option(name, value, help));
}

Option Command::Words(const std::string& name, std::vector<std::string>& values,
                      const std::string& help) const {
  return Option(app_->add_option(name, values, help));
}

Option Command::Text(const std::string& name, std::string& value, const std::string& type,
                     const std::string& help) const {
  return Option(app_->add_option(name, value, help)->type_name(type));
}

Option Command::Texts(const std::string& name, std::vector<std::string>& values,
                      const std::string& type, const std::string& help) const {
  return Option(app_->add_option(name, values, help)->type_name(type));
}

Option Command::Whole(const std::string& name, Long& value, const std::string& help) const {
  return Read(
      name, [&value, name](const std::string& text) { value = WholeOption(name, text); }, "NUMBER",
      help);
}

Option Command::Date(const std::string& name, DateTime& value, const std::string& help) const {
  return Read(
      name, [&value, name](const std::string& text) { value = DateOption(name, text); }, "DATE",
      help);
}

Option Command::Read(const std::string& name, Take take, const std::string& type,
                     const std::string& help) const {
  return Option(app_->add_option_function<std::string>(name, take, help)->type_name(type));
}

Option Command::ReadEach(const std::string& name, Take take, const std::string& type,
                         const std::string& help) const {
  const auto take_all = [take = std::move(take)](const std::vector<std::string>& texts) {
    for (const std::string& text : texts) take(text);
  };
  return Option(app_->add_option_function<std::vector<std::string>>(name, take_all, help)
                    ->type_name(type))
      .OneWordEach();
}

Option Command::Flag(const std::string& name, bool& value, const std::string& help) const {
  return Option(app_->add_flag(name, value, help));
}

Option Command::Flag(const std::string& name, std::function<void()> take,
                     const std::string& help) const {
  return Option(app_->add_flag_callback(name, std::move(take), help));
}

void Command::WhenRead(std::function<void()> act) const {
  app_->parse_complete_callback(std::move(act));
}

// ---- What is wrong with a value ----

void RefuseOption(const std::string& name, const std::string& reason) {
  throw UsageError(name + ": " + OneLine(reason));
}

Long WholeOption(const std::string& name, const std::string& text) {
  try {
    return ReadWhole(text);
  } catch (const BadCell& bad) {
    RefuseOption(name, bad.what());
  }
}

DateTime DateOption(const std::string& name, const std::string& text) {
  try {
    return ReadDate(text);
  } catch (const BadCell& bad) {
    RefuseOption(name, bad.what());
  }
}

}  // namespace qdclgl::cli
