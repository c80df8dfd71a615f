#include "apps/qk7/documents/Described.h"

#include "apps/qk7/Choices.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace qk7 {

namespace {

bool IsRepeatable(const CLI::Option& Option) {
    return Option.get_items_expected_max() > 1;
}

StDescribedOption Described(const CLI::Option& Option) {
    StDescribedOption option;
    for (const std::string& name : Option.get_snames())
        option.m_aNames.push_back("-" + name);
    for (const std::string& name : Option.get_lnames())
        option.m_aNames.push_back("--" + name);
    if (Option.get_items_expected_max() > 0)
        option.m_Value = Option.get_type_name();
    option.m_Words = Option.get_description();
    option.m_Default = Option.get_default_str();
    option.m_bRequired = Option.get_required();
    option.m_bRepeatable = IsRepeatable(Option);
    option.m_aChoices = ChoicesOf(Option);
    return option;
}

StDescribedCommand Described(const CLI::App& Command) {
    StDescribedCommand command;
    command.m_Name = Command.get_name();
    command.m_Words = Command.get_description();
    command.m_aExamples = ExamplesOf(command.m_Name);
    for (const CLI::Option* pOption : Command.get_options()) {
        if (pOption->get_positional())
            command.m_aArguments.push_back({pOption->get_name(true), pOption->get_description(),
                                            pOption->get_required(), IsRepeatable(*pOption)});
        else
            command.m_aOptions.push_back(Described(*pOption));
    }
    return command;
}

} // namespace

std::vector<StDescribedCommand> Describe(const CLI::App& App) {
    std::vector<StDescribedCommand> commands = {Described(App)};
    for (const CLI::App* pCommand : App.get_subcommands([](const CLI::App*) { return true; }))
        commands.push_back(Described(*pCommand));
    return commands;
}

std::string FirstClause(const std::string& Words) {
    std::size_t nEnd = Words.size();
    for (const char* szEnd : {"\n", "; ", ": ", ". "})
        nEnd = std::min(nEnd, Words.find(szEnd));
    std::string clause = Words.substr(0, nEnd);
    clause.erase(clause.find_last_not_of(":.") + 1);
    return clause;
}

} // namespace qk7
