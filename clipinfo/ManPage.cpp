#include <algorithm>
#include <cctype>
#include <sstream>

#include "clipinfo/CommandLine.h"

namespace {

std::string UpperCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char letter) { return std::toupper(letter); });
  return text;
}

// A text as groff takes it literally: a line that begins with a dot or an apostrophe would be a request.
std::string Literal(const std::string& text) {
  std::string literal;
  for (const char letter : text) {
    const bool isLineStart = literal.empty() || literal.back() == '\n';
    if (isLineStart && (letter == '.' || letter == '\'')) literal += "\\&";
    if (letter == '\\') {
      literal += "\\e";
    } else {
      literal += letter == '-' ? "\\-" : std::string(1, letter);
    }
  }
  return literal;
}

std::string Bold(const std::string& text) { return "\\fB" + Literal(text) + "\\fR"; }

std::string Italic(const std::string& text) { return text.empty() ? "" : "\\fI" + Literal(text) + "\\fR"; }

// The option's names and what stands for its value: -j, --jobs N
std::string Names(const CLI::Option& option) {
  if (option.get_positional()) return Italic(option.get_name()) + (option.get_items_expected_max() > 1 ? "..." : "");
  std::string names;
  for (const std::string& name : option.get_snames()) names += (names.empty() ? "" : ", ") + Bold("-" + name);
  for (const std::string& name : option.get_lnames()) names += (names.empty() ? "" : ", ") + Bold("--" + name);
  return isWithValue(option) ? names + " " + Italic(option.get_type_name()) : names;
}

void PrintOptions(std::ostream& page, const CLI::App& app) {
  for (const CLI::Option* option : ShownOptions(app)) {
    page << ".TP\n" << Names(*option) << '\n' << Literal(option->get_description()) << '\n';
  }
}

std::string Usage(const CLI::App& command) {
  std::string usage = Bold("clipinfo " + command.get_name()) + " [" + Italic("option") + "...]";
  for (const CLI::Option* option : ShownOptions(command)) {
    if (option->get_positional()) usage += " " + Names(*option);
  }
  return usage;
}

// The paragraphs of a footer: a line that ends with a colon is the heading of the indented lines below it.
void PrintFooter(std::ostream& page, const std::string& footer, bool isOfCommand) {
  std::istringstream lines(footer);
  bool isExample = false;
  for (std::string line; std::getline(lines, line);) {
    const bool isIndented = line.substr(0, 2) == "  ";
    if (isExample && !isIndented) page << ".EE\n";
    if (!line.empty() && line.back() == ':') {
      const std::string heading = Literal(line.substr(0, line.size() - 1));
      page << (isOfCommand ? ".PP\n.B " + heading : ".SH " + UpperCase(heading)) << '\n';
    } else if (isIndented) {
      page << (isExample ? "" : ".PP\n.EX\n") << Literal(line.substr(2)) << '\n';
    } else {
      page << (line.empty() ? ".PP" : Literal(line)) << '\n';
    }
    isExample = isIndented;
  }
  if (isExample) page << ".EE\n";
}

}  // namespace

std::string ManPage(const CLI::App& app) {
  std::ostringstream page;
  page << ".TH " << UpperCase(app.get_name()) << " 1 \"\" \"clipinfo " CLIPINFO_VERSION "\" \"User Commands\"\n"
       << ".SH NAME\n"
       << Literal(app.get_name()) << " \\- " << Literal(app.get_description()) << "\n.SH SYNOPSIS\n";
  const std::vector<const CLI::App*> commands = ShownCommands(app);
  for (const CLI::App* command : commands) page << Usage(*command) << "\n.br\n";
  page << ".SH OPTIONS\n";
  PrintOptions(page, app);
  page << ".SH COMMANDS\n";
  for (const CLI::App* command : commands) {
    page << ".SS " << Literal(command->get_name()) << '\n' << Literal(command->get_description()) << ".\n";
    PrintOptions(page, *command);
    PrintFooter(page, command->get_footer(), true);
  }
  PrintFooter(page, app.get_footer(), false);
  return page.str();
}
