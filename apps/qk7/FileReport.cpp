#include "apps/qk7/FileReport.h"

#include "apps/qk7/TargetReport.h"

namespace qk7 {

std::string Dump(const Json& Value) {
    return Value.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

void ClFileReport::Add(const std::string& Text, const Json& Object) {
    m_Text += Text;
    m_Json.push_back(Object);
}

void ClFileReport::AddFailure(const std::string& Path, const std::exception& Error,
                              ClProgress* pProgress) {
    m_Failures.Add(Error, pProgress);
    m_Json.push_back(FailureJson(Path, Error));
}

void ClFileReport::End() const {
    if (m_eForm != EForm::eSilent)
        Print(m_eForm == EForm::eJson ? Dump(m_Json) : m_Text);
    m_Failures.End();
}

} // namespace qk7
