#pragma once

/// One run of each processor class on inputs that let it do its work, by one table.

#include "support/Records.h"

#include <functional>
#include <memory>
#include <ostream>
#include <vector>

class ClProcessorBase;

namespace Processors {

using TestSupport::Bytes;

/// A processor connected to its inputs and outputs.
class ClRun {
public:
    ClRun() = default;
    ClRun(const ClRun&) = delete;
    ClRun& operator=(const ClRun&) = delete;
    virtual ~ClRun() = default;

    virtual ClProcessorBase& Processor() = 0;
    /// The inputs as they are.
    virtual Bytes Inputs() const = 0;
    /// All that the processor has written.
    virtual Bytes Outputs() const = 0;
};

struct StRow {
    const char* m_szName;
    std::function<std::unique_ptr<ClRun>()> m_Make;
};

inline std::ostream& operator<<(std::ostream& rTo, const StRow& Row) {
    return rTo << Row.m_szName;
}

const std::vector<StRow>& AllProcessors();

} // namespace Processors
