#include "apps/qk7/documents/Completion.h"

#include <CLI/StringTools.hpp>

namespace qk7 {

namespace {

using Commands = std::vector<StDescribedCommand>;

const char* const g_szMade = "# Made from the tool's own commands and options.\n";

std::string Joined(const std::vector<std::string>& aWords, const std::string& Between = " ") {
    return CLI::detail::join(aWords, Between);
}

std::vector<std::string> CommandNames(const Commands& aCommands) {
    std::vector<std::string> names;
    for (std::size_t i = 1; i < aCommands.size(); ++i)
        names.push_back(aCommands[i].m_Name);
    return names;
}

std::vector<std::string> OptionNames(const StDescribedCommand& Command) {
    std::vector<std::string> names;
    for (const StDescribedOption& option : Command.m_aOptions)
        names.insert(names.end(), option.m_aNames.begin(), option.m_aNames.end());
    return names;
}

bool IsFolder(const StDescribedOption& Option) {
    return Option.m_Value == "DIR";
}

/// A value that is typed and no file.
bool IsFree(const StDescribedOption& Option) {
    return Option.m_Value == "N";
}

/// `'` within `'...'` ends it, stands alone, and begins it again.
std::string Quoted(const std::string& Text) {
    std::string quoted;
    for (const char c : Text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return "'" + quoted + "'";
}

// bash

std::string BashPattern(const StDescribedCommand& Command, const StDescribedOption& Option) {
    std::vector<std::string> patterns;
    for (const std::string& name : Option.m_aNames)
        patterns.push_back(Quoted(Command.m_Name + " " + name));
    return Joined(patterns, " | ");
}

/// The words that may follow an option which takes a value; nothing where files may.
std::string BashValues(const StDescribedCommand& Command) {
    std::string text;
    for (const StDescribedOption& option : Command.m_aOptions) {
        if (option.IsFlag())
            continue;
        const std::string pattern = "        " + BashPattern(Command, option) + ")\n            ";
        if (!option.m_aChoices.empty())
            text += pattern + "words=" + Quoted(Joined(option.m_aChoices)) + " ;;\n";
        else if (IsFolder(option))
            text += pattern + "action=directory ;;\n";
        else if (IsFree(option))
            text += pattern + "words=' ' ;;\n";
        else
            text += pattern + "action=file ;;\n";
    }
    return text;
}

std::string BashOptions(const StDescribedCommand& Command) {
    return "        " + Command.m_Name +
           ")\n            words=" + Quoted(Joined(OptionNames(Command))) + " ;;\n";
}

// zsh

/// Text within '...[...]...:...', in which brackets and colons have a meaning.
std::string ZshText(const std::string& Text) {
    std::string text;
    for (const char c : Text)
        text += (c == '[' || c == ']' || c == ':' || c == '\\' ? "\\" : "") + std::string(1, c);
    return text;
}

std::string ZshAction(const StDescribedOption& Option) {
    if (!Option.m_aChoices.empty())
        return "(" + Joined(Option.m_aChoices) + ")";
    return IsFolder(Option) ? "_files -/" : IsFree(Option) ? " " : "_files";
}

std::string ZshSpec(const StDescribedOption& Option, const std::string& Name) {
    std::string spec = Option.m_bRepeatable ? "*" : "(" + Joined(Option.m_aNames) + ")";
    spec += Name + "[" + ZshText(FirstClause(Option.m_Words)) + "]";
    if (!Option.IsFlag())
        spec += ":" + ZshText(Option.m_Value) + ":" + ZshAction(Option);
    return "            " + Quoted(spec) + " \\\n";
}

std::string ZshCase(const StDescribedCommand& Command) {
    std::string text = "    " + Command.m_Name + ")\n        _arguments -S \\\n";
    for (const StDescribedOption& option : Command.m_aOptions)
        for (const std::string& name : option.m_aNames)
            text += ZshSpec(option, name);
    for (const StDescribedArgument& argument : Command.m_aArguments)
        text += "            " +
                Quoted(std::string(argument.m_bRepeatable ? "*" : "1") + ":" +
                       ZshText(argument.m_Name) + ":_files") +
                " \\\n";
    return text + "            && return 0\n        ;;\n";
}

// fish

std::string FishOption(const std::string& Condition, const StDescribedOption& Option) {
    std::string line = "complete -c qk7 -n " + Quoted(Condition);
    for (const std::string& name : Option.m_aNames)
        line += name.rfind("--", 0) == 0 ? " -l " + name.substr(2) : " -s " + name.substr(1);
    if (!Option.m_aChoices.empty())
        line += " -x -a " + Quoted(Joined(Option.m_aChoices));
    else if (IsFolder(Option))
        line += " -x -a '(__fish_complete_directories)'";
    else if (IsFree(Option))
        line += " -x";
    else if (!Option.IsFlag())
        line += " -r -F";
    return line + " -d " + Quoted(FirstClause(Option.m_Words)) + "\n";
}

} // namespace

std::string BashCompletion(const Commands& aCommands) {
    const std::vector<std::string> names = CommandNames(aCommands);
    std::string text = std::string("# bash completion of qk7\n") + g_szMade + R"(
_qk7() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command='' words='' action=file word
    COMPREPLY=()
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case $word in
        )" + Joined(names, " | ") +
                       R"()
            command=$word
            break ;;
        esac
    done
    if [[ -z $command ]]; then
        mapfile -t COMPREPLY < <(compgen -W )" +
                       Quoted(Joined(names) + " " + Joined(OptionNames(aCommands[0]))) +
                       R"( -- "$current")
        return
    fi
    if [[ $current == -* ]]; then
        case $command in
)";
    for (std::size_t i = 1; i < aCommands.size(); ++i)
        text += BashOptions(aCommands[i]);
    text += "        esac\n    fi\n    case \"$command $previous\" in\n";
    for (std::size_t i = 1; i < aCommands.size(); ++i)
        text += BashValues(aCommands[i]);
    return text + R"(    esac
    if [[ -n $words ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
        return
    fi
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -A "$action" -- "$current")
}
complete -F _qk7 qk7
)";
}

std::string ZshCompletion(const Commands& aCommands) {
    std::string text = std::string("#compdef qk7\n") + g_szMade + R"(
_qk7() {
    local context state line
    local -a commands
    typeset -A opt_args
    commands=(
)";
    for (std::size_t i = 1; i < aCommands.size(); ++i)
        text += "        " +
                Quoted(aCommands[i].m_Name + ":" + ZshText(FirstClause(aCommands[i].m_Words))) +
                "\n";
    text += "    )\n    _arguments -C \\\n";
    for (const StDescribedOption& option : aCommands[0].m_aOptions)
        for (const std::string& name : option.m_aNames)
            text += ZshSpec(option, name);
    text += R"(            '1:command:->command' '*::argument:->argument' && return 0
    if [[ $state == command ]]; then
        _describe command commands
        return
    fi
    case $line[1] in
)";
    for (std::size_t i = 1; i < aCommands.size(); ++i)
        text += ZshCase(aCommands[i]);
    return text + "    esac\n    return 1\n}\n\n_qk7 \"$@\"\n";
}

std::string FishCompletion(const Commands& aCommands) {
    std::string text = std::string("# fish completion of qk7\n") + g_szMade;
    for (const StDescribedOption& option : aCommands[0].m_aOptions)
        text += FishOption("__fish_use_subcommand", option);
    for (std::size_t i = 1; i < aCommands.size(); ++i) {
        const StDescribedCommand& command = aCommands[i];
        text += "complete -c qk7 -f -n '__fish_use_subcommand' -a " + command.m_Name + " -d " +
                Quoted(FirstClause(command.m_Words)) + "\n";
        for (const StDescribedOption& option : command.m_aOptions)
            text += FishOption("__fish_seen_subcommand_from " + command.m_Name, option);
    }
    return text;
}

} // namespace qk7
