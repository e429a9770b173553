#include "fault/fault.h"
#include "platform/file.h"
#include "support/device_root.h"

#include <algorithm>
#include <sstream>

namespace qorcfg::test {

std::string armed_environment(const std::string &program, const Fault &fault,
                              const std::string &log)
{
    return "QOR_FAULT_" + program + "=" + std::to_string(fault.call) + " " +
           std::to_string(static_cast<int>(fault.kind)) + " " + std::to_string(fault.error) + " " +
           log;
}

CallLog::CallLog(const std::string &path)
{
    constexpr std::size_t bound = std::size_t{1} << 20;
    text_ = read_file(path, bound).value_or("");
    for (const std::string &line : split_lines(text_)) {
        std::istringstream words(line);
        long process = 0;
        std::size_t call = 0;
        std::string halves;
        std::string next;
        words >> process >> call >> halves >> next;
        writes_.resize(std::max(writes_.size(), call));
        writes_.at(call - 1) = writes_.at(call - 1) || halves == "halves";
        met_ = met_ || next == "FAULT";
    }
}

std::vector<Fault> CallLog::faults() const
{
    std::vector<Fault> faults;
    for (std::size_t i = 0; i < writes_.size(); ++i) {
        const long call = static_cast<long>(i) + 1;
        const int error = call % 2 == 0 ? ENOSPC : EIO;
        faults.push_back({call, FaultKind::fail, error});
        faults.push_back({call, FaultKind::stop, error});
        if (writes_[i]) {
            faults.push_back({call, FaultKind::half, error});
            faults.push_back({call, FaultKind::half_stop, error});
        }
    }
    return faults;
}

} // namespace qorcfg::test
