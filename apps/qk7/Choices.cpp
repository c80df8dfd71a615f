#include "apps/qk7/Choices.h"

namespace qk7 {

namespace {

// The parser keeps a validator's name and shows it nowhere.
const std::string g_Mark = "choices:";

CLI::Validator Marked(CLI::Validator validator, const std::vector<std::string>& aChoices) {
    return validator.name(g_Mark + CLI::detail::join(aChoices, "|")).description("");
}

} // namespace

CLI::Validator OneOf(const std::vector<std::string>& aChoices) {
    return Marked(CLI::IsMember(aChoices), aChoices);
}

CLI::Validator Suggested(const std::vector<std::string>& aChoices) {
    return Marked(CLI::Validator([](std::string&) { return std::string(); }, ""), aChoices);
}

std::vector<std::string> ChoicesOf(const CLI::Option& Option) {
    // The parser has no constant way to its validators.
    auto& rOption = const_cast<CLI::Option&>(Option);
    try {
        for (int i = 0;; ++i) {
            const std::string name = rOption.get_validator(i)->get_name();
            if (name.rfind(g_Mark, 0) == 0)
                return CLI::detail::split(name.substr(g_Mark.size()), '|');
        }
    } catch (const CLI::OptionNotFound&) { // behind the last one
        return {};
    }
}

} // namespace qk7
