#include "support/TestData.h"

std::string TestSupport::DataPath(const std::string& Name) {
    return std::string(TESSARIN_TEST_DATA) + "/" + Name;
}
