#include "apps/qk7/Arguments.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

namespace qk7 {

namespace {

constexpr char cMark = '\1';

/// Where the value begins in an argument that is one, or has one behind "=".
std::size_t ValueIn(const std::string& Argument) {
    const std::size_t nEqual = Argument.find('=');
    return Argument.rfind("--", 0) == 0 && nEqual != std::string::npos ? nEqual + 1 : 0;
}

/// A list to the parser, nothing at all, or what looks marked already.
bool NeedsMark(const std::string& Argument, std::size_t nValue) {
    if (nValue == Argument.size())
        return nValue > 0;
    return Argument[nValue] == cMark || (Argument[nValue] == '[' && Argument.back() == ']');
}

std::string Marked(std::string argument) {
    const std::size_t nValue = ValueIn(argument);
    if (NeedsMark(argument, nValue))
        argument.insert(nValue, 1, cMark);
    return argument;
}

/// Writes a number in the one way that the parser reads as it stands.
template <class Number>
std::string Normalise(std::string& rText) {
    Number number = 0;
    const char* pEnd = rText.data() + rText.size();
    const auto read = std::from_chars(rText.data(), pEnd, number);
    if (read.ec == std::errc::result_out_of_range)
        return rText + " is too large a number";
    if (read.ec != std::errc() || read.ptr != pEnd)
        return rText + " is no whole number";
    rText = std::to_string(number);
    return "";
}

} // namespace

std::vector<std::string> ForParser(int nArguments, const char* const* aArguments) {
    std::vector<std::string> arguments;
    for (int i = nArguments - 1; i > 0; --i)
        arguments.push_back(Marked(aArguments[i]));
    return arguments;
}

std::string WithoutMarks(std::string Text) {
    Text.erase(std::remove(Text.begin(), Text.end(), cMark), Text.end());
    return Text;
}

CLI::Validator AsWritten() {
    const auto asWritten = [](std::string& rText) -> std::string {
        rText.erase(0, rText.find(cMark) == 0 ? 1 : 0);
        return rText.empty() ? "is empty" : "";
    };
    return CLI::Validator(asWritten, "");
}

CLI::Validator Whole() {
    return CLI::Validator(Normalise<std::uint64_t>, "");
}

CLI::Validator WholeOrNegative() {
    return CLI::Validator(Normalise<std::int64_t>, "");
}

} // namespace qk7
