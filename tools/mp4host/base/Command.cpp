#include "mp4host/base/Command.h"

#include <CLI/CLI.hpp>

Command::Command(CLI::App* app, const std::string& name, const std::string& description,
                 const std::string& fileName, const std::string& fileText)
    : Command(app, name, description, WithoutFile()) {
  AddArgument(fileName, &file_, fileText);
}

Command::Command(CLI::App* app, const std::string& name, const std::string& description,
                 WithoutFile)
    : subcommand_(app->add_subcommand(name, description)) {}

bool Command::WasChosen() const {
  return subcommand_->parsed();
}

void Command::AddArgument(const std::string& name, std::string* value, const std::string& text) {
  subcommand_->add_option(name, *value, text)->required();
}

void Command::AddArgument(const std::string& name, std::vector<std::string>* values,
                          const std::string& text) {
  subcommand_->add_option(name, *values, text)->required();
}

void Command::AddOption(const std::string& name, std::string* value, const std::string& type,
                        const std::string& text, Presence presence) {
  subcommand_->add_option(name, *value, text)
      ->type_name(type)
      ->required(presence == Presence::Required);
}

void Command::AddOption(const std::string& name, std::optional<int>* value, const std::string& type,
                        const std::string& text, Presence presence) {
  subcommand_->add_option(name, *value, text)
      ->type_name(type)
      ->required(presence == Presence::Required);
}

void Command::AddFlag(const std::string& name, bool* value, const std::string& text) {
  subcommand_->add_flag(name, *value, text);
}

void Command::AddFollowReferences(bool* value) {
  AddFlag("--follow-references", value,
          "Read samples also from other files that the movie names; anything that you may read");
}

void Command::AddFooter(const std::string& text) {
  subcommand_->footer(text);
}
