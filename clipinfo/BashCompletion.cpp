#include <sstream>

#include "clipinfo/CommandLine.h"

namespace {

// What completes the value of an option, by what its help calls the value.
const char* ValueAction(const std::string& typeName) {
  if (typeName == "DIR") return "compgen -d";
  return typeName == "PATH" || typeName == "FILE" ? "compgen -f" : nullptr;
}

template <class Visit>
void ForEachName(const CLI::App& command, Visit visit) {
  for (const CLI::Option* option : ShownOptions(command)) {
    for (const std::string& name : option->get_snames()) visit(*option, "-" + name);
    for (const std::string& name : option->get_lnames()) visit(*option, "--" + name);
  }
}

std::string NamesOf(const CLI::App& command) {
  std::string names;
  ForEachName(command,
              [&](const CLI::Option&, const std::string& name) { names += (names.empty() ? "" : " ") + name; });
  return names;
}

// The branches `command:option) completion`, for options that take a value.
std::string ValueBranches(const CLI::App& command) {
  std::string branches;
  ForEachName(command, [&](const CLI::Option& option, const std::string& name) {
    if (!isWithValue(option)) return;
    const char* const action = ValueAction(option.get_type_name());
    branches += "    " + command.get_name() + ":" + name + ") ";
    branches += action != nullptr ? "mapfile -t COMPREPLY < <(" + std::string(action) + " -- \"$cur\"); return ;;\n"
                                  : std::string("return ;;\n");
  });
  return branches;
}

}  // namespace

std::string BashCompletion(const CLI::App& app) {
  std::string names;
  std::string options;
  std::string values;
  for (const CLI::App* command : ShownCommands(app)) {
    names += (names.empty() ? "" : " ") + command->get_name();
    options += "    " + command->get_name() + ") options='" + NamesOf(*command) + "' ;;\n";
    values += ValueBranches(*command);
  }
  std::ostringstream script;
  script << R"(# Completion of clipinfo for bash. Made by clipinfo --bash-completion.
_clipinfo() {
  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}
  local commands=')"
         << names << R"(' command=info options
  COMPREPLY=()
  case " $commands " in *" ${COMP_WORDS[1]} "*) command=${COMP_WORDS[1]} ;; esac
  case $command:$prev in
)" << values
         << R"(  esac
  case $command in
)" << options
         << R"(  esac
  if [[ $COMP_CWORD -eq 1 ]]; then
    options+=' )"
         << NamesOf(app) << R"('
    mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$cur")
  fi
  if [[ $cur == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
  else
    local clips
    mapfile -t clips < <(compgen -d -- "$cur"; compgen -f -X '!*.[mM][xX][fF]' -- "$cur")
    COMPREPLY+=("${clips[@]}")
  fi
}
complete -o filenames -F _clipinfo clipinfo
)";
  return script.str();
}
