#pragma once

namespace qorcfg::bench {

/// While it lives, output goes nowhere: the engine prints every line that it writes.
class SilentOutput {
public:
    SilentOutput();
    ~SilentOutput();
    SilentOutput(const SilentOutput &) = delete;
    SilentOutput &operator=(const SilentOutput &) = delete;

private:
    int output_;
    int errors_;
};

} // namespace qorcfg::bench
