#pragma once

#include "api/Api.h"
#include "support/Records.h"

namespace TestSupport {

/// A handle that holds the record of a small scanner, with the ideal pattern as its target.
struct StLoaded : ClApiHandle {
    StLoaded() { EXPECT_EQ(SetData(RecordBlock(PlausibleRecord())), 0); }
};

} // namespace TestSupport
