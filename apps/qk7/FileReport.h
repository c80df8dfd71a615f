#pragma once

/// What a command tells about its files, each in its turn: lines of text, or a JSON array with an
/// object for each file. Failures are told on standard error as well, at once.

#include "apps/qk7/Console.h"

#include <nlohmann/json.hpp>

#include <string>

namespace qk7 {

using Json = nlohmann::ordered_json;

/// JSON as the tool prints it. A file name may be any bytes; JSON is UTF-8.
std::string Dump(const Json& Value);

enum class EForm { eSilent, eText, eJson };

class ClFileReport {
public:
    ClFileReport(const std::string& Command, EForm eForm)
        : m_eForm(eForm), m_Failures(Command), m_Json(Json::array()) {}

    /// What is told of a file that succeeded.
    void Add(const std::string& Text, const Json& Object);
    /// A file that failed has no text, but an object: "file", "error" and, of a `ClRefusedTarget`,
    /// what it knows. The bar, if there is one, makes room for the message.
    void AddFailure(const std::string& Path, const std::exception& Error,
                    ClProgress* pProgress = nullptr);
    /// Prints, and ends as `ClFailures::End`.
    void End() const;

private:
    EForm m_eForm;
    ClFailures m_Failures;
    std::string m_Text;
    Json m_Json;
};

} // namespace qk7
