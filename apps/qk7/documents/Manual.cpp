#include "apps/qk7/documents/Manual.h"

#include "apps/qk7/Tool.h"

#include <algorithm>
#include <cctype>

namespace qk7 {

namespace {

constexpr const char* szTool = "qk7";

/// Text as roff reads it: a hyphen stays one that can be copied, and no line begins a request.
std::string Roff(const std::string& Text) {
    std::string roff;
    for (const char c : Text) {
        const bool bLineStart = roff.empty() || roff.back() == '\n';
        if (bLineStart && (c == '.' || c == '\''))
            roff += "\\&";
        if (c == '-')
            roff += "\\-";
        else if (c == '\\')
            roff += "\\e";
        else
            roff += c;
    }
    return roff;
}

std::string Bold(const std::string& Text) {
    return "\\fB" + Roff(Text) + "\\fR";
}

std::string Italic(const std::string& Text) {
    return "\\fI" + Roff(Text) + "\\fR";
}

std::string Upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

std::string Section(const std::string& Name) {
    return ".SH " + Name + "\n";
}

/// A paragraph whose lines stay lines.
std::string Paragraph(const std::string& Words) {
    std::string text;
    for (const char c : Roff(Words))
        text += c == '\n' ? std::string("\n.br\n") : std::string(1, c);
    // Blanks at the front of a line mean what they do without a request.
    for (std::size_t n = 0; (n = text.find("\n  ", n)) != std::string::npos;)
        text.erase(n + 1, 2);
    return text + "\n";
}

std::string Item(const std::string& Tag, const std::string& Words) {
    return ".TP\n" + Tag + "\n" + Paragraph(Words);
}

std::string Heading(const std::string& Page, const StManual& Manual) {
    return ".TH " + Roff(Upper(Page)) + " 1 " + Manual.m_Date + " \"qk7 " + Manual.m_Version +
           "\" \"Calibration of the QK7\"\n";
}

/// The first clause, as the tables of contents show it: "Corrects captures" is "corrects captures".
std::string NameSection(const std::string& Page, const std::string& Words) {
    std::string words = FirstClause(Words);
    words[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(words[0])));
    return Section("NAME") + Roff(Page) + " \\- " + Roff(words) + "\n";
}

std::string Sentence(const std::string& Words) {
    return Words.back() == '.' ? Words : Words + ".";
}

std::string Synopsis(const StDescribedCommand& Command) {
    std::string text = Section("SYNOPSIS") + Bold(std::string(szTool) + " " + Command.m_Name);
    for (const StDescribedOption& option : Command.m_aOptions)
        if (option.m_bRequired)
            text += " " + Bold(option.m_aNames.front()) + " " + Italic(option.m_Value);
    text += " [" + Italic("OPTION") + "]...";
    for (const StDescribedArgument& argument : Command.m_aArguments) {
        const std::string name = Italic(argument.m_Name) + (argument.m_bRepeatable ? "..." : "");
        text += argument.m_bRequired ? " " + name : " [" + name + "]";
    }
    return text + "\n";
}

std::string Tag(const StDescribedOption& Option) {
    std::string tag;
    for (const std::string& name : Option.m_aNames)
        tag += (tag.empty() ? "" : ", ") + Bold(name);
    return Option.IsFlag() ? tag : tag + " " + Italic(Option.m_Value);
}

std::string Words(const StDescribedOption& Option) {
    std::string words = Option.m_Words;
    if (Option.m_bRequired)
        words += " (required)";
    if (!Option.m_Default.empty())
        words += " (default " + Option.m_Default + ")";
    return words;
}

std::string Options(const StDescribedCommand& Command) {
    std::string text = Section("OPTIONS");
    for (const StDescribedArgument& argument : Command.m_aArguments)
        text += Item(Italic(argument.m_Name), argument.m_Words);
    for (const StDescribedOption& option : Command.m_aOptions)
        text += Item(Tag(option), Words(option));
    return text;
}

std::string ExitStatus() {
    std::string text = Section("EXIT STATUS");
    for (const StExitStatus& status : ExitStatuses())
        text += Item(Bold(std::to_string(status.m_nStatus)), status.m_szWords);
    return text;
}

std::string Examples(const StDescribedCommand& Command) {
    if (Command.m_aExamples.empty())
        return "";
    std::string text = Section("EXAMPLES");
    for (const StExample& example : Command.m_aExamples)
        text += Item(Bold(example.m_szLine), example.m_szWords);
    return text;
}

/// All pages but this one.
std::string SeeAlso(const std::string& Page, const std::vector<StDescribedCommand>& aCommands) {
    std::vector<std::string> names;
    names.reserve(aCommands.size());
    for (const StDescribedCommand& command : aCommands)
        names.push_back(PageName(command));
    names.erase(std::remove(names.begin(), names.end(), Page), names.end());
    std::sort(names.begin(), names.end());
    std::string text = Section("SEE ALSO");
    for (const std::string& name : names)
        text += ".BR " + Roff(name) + " (1)" + (&name == &names.back() ? "\n" : ",\n");
    return text;
}

std::string ToolPage(const StDescribedCommand& Tool,
                     const std::vector<StDescribedCommand>& aCommands, const StManual& Manual) {
    std::string text = Heading(szTool, Manual) + NameSection(szTool, Tool.m_Words) +
                       Section("SYNOPSIS") + Bold(szTool) + " " + Italic("COMMAND") + " [" +
                       Italic("OPTION") + "]... [" + Italic("FILE") + "]...\n" +
                       Section("DESCRIPTION") + Paragraph(g_szConventions) + Section("COMMANDS");
    for (const StDescribedCommand& command : aCommands)
        if (command.m_Name != Tool.m_Name)
            text += Item(Bold(command.m_Name), FirstClause(command.m_Words));
    return text + Options(Tool) + ExitStatus() + SeeAlso(szTool, aCommands);
}

} // namespace

std::string PageName(const StDescribedCommand& Command) {
    return Command.m_Name == szTool ? szTool : std::string(szTool) + "-" + Command.m_Name;
}

std::string PageOf(const StDescribedCommand& Command,
                   const std::vector<StDescribedCommand>& aCommands, const StManual& Manual) {
    if (Command.m_Name == szTool)
        return ToolPage(Command, aCommands, Manual);
    const std::string page = PageName(Command);
    return Heading(page, Manual) + NameSection(page, Command.m_Words) + Synopsis(Command) +
           Section("DESCRIPTION") + Paragraph(Sentence(Command.m_Words)) + Options(Command) +
           ExitStatus() + Examples(Command) + SeeAlso(page, aCommands);
}

} // namespace qk7
