#include "qk7/Documents.h"

#include <gtest/gtest.h>

namespace TestSupport {

nlohmann::json ResultsOf(const std::string& Document, const std::string& Command) {
    const nlohmann::json document = nlohmann::json::parse(Document);
    EXPECT_EQ(document.at("schema"), "qk7/" + Command + "/1");
    return document.at("results");
}

} // namespace TestSupport
