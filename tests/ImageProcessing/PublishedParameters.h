#pragma once

/// What a processor publishes in the tree channel.

#include "Tools/ParameterContainer.h"
#include "Tools/ProcessorBase.h"
#include "support/ParameterText.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace TestSupport {

struct StPublished {
    std::string m_Name;
    std::string m_Description; ///< empty where there is none
    int m_nFlags;
    std::string m_Default;

    bool operator==(const StPublished& other) const {
        return m_Name == other.m_Name && m_Description == other.m_Description &&
               m_nFlags == other.m_nFlags && m_Default == other.m_Default;
    }
};

inline void PrintTo(const StPublished& Published, std::ostream* pStream) {
    *pStream << Published.m_Name << " '" << Published.m_Description << "' flags "
             << Published.m_nFlags << " default " << Published.m_Default;
}

constexpr int cnIn = ePfIn;
constexpr int cnOut = ePfOut;
constexpr int cnInOut = ePfIn | ePfOut;

/// The parameters of a processor in the order of publication.
inline std::vector<StPublished> Published(ClProcessorBase& Processor) {
    ClParameterContainer Container;
    Processor.QueryParameters(Container);
    std::vector<StPublished> aAll;
    for (ClParameter* p = Container.GetFirstParameter(); p != nullptr;
         p = Container.GetNextParameter(p))
        aAll.push_back({p->GetName(), p->GetDescription() != nullptr ? p->GetDescription() : "",
                        p->GetFlags(), DefaultText(*p)});
    return aAll;
}

/// The names that an enum parameter lists.
inline std::vector<std::string> ValueNames(ClParameter& Parameter) {
    ClParameterEnumInterface* pEnum = Parameter.GetEnumInterface();
    std::vector<std::string> aNames;
    for (unsigned long i = 0; pEnum != nullptr && i < pEnum->GetValueNameCount(); ++i) {
        char szName[64] = {};
        EXPECT_TRUE(pEnum->GetValueName(i, szName, sizeof szName));
        aNames.emplace_back(szName);
    }
    return aNames;
}

} // namespace TestSupport
