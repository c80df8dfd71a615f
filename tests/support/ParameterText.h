#pragma once

/// Parameters as texts, for expectations.

#include "Tools/ParameterBase.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace TestSupport {

/// What `answer(buffer, size)` says: asks for the size, then for the text.
template <class Answer>
std::string TextOf(Answer answer) {
    unsigned long nSize = 0;
    EXPECT_FALSE(answer(nullptr, nSize));
    std::vector<char> aText(nSize, '?');
    EXPECT_TRUE(answer(aText.data(), nSize));
    EXPECT_EQ(aText.back(), '\0');
    return aText.data();
}

inline std::string ValueText(ClParameter& Parameter) {
    return TextOf([&](char* p, unsigned long& n) { return Parameter.GetValue(p, n); });
}

inline std::string DefaultText(ClParameter& Parameter) {
    return TextOf([&](char* p, unsigned long& n) { return Parameter.GetDefaultValue(p, n); });
}

inline std::string PathText(const ClParameterBase& Node) {
    return TextOf([&](char* p, unsigned long& n) { return Node.GetPathName(p, n); });
}

} // namespace TestSupport
