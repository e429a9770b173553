#pragma once

#include "engine/json.h"
#include "platform/reference/store.h"
#include "support/device_root.h"
#include "tools/qorctl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

namespace qorcfg {

/// How a run of the tool ended.
struct Outcome {
    int status;
    std::string out;
    std::string err;

    /// Whether the run failed as it should: this status, nothing printed, and one line on standard
    /// error that has `part` in it.
    testing::AssertionResult refused(int wanted, const std::string &part) const
    {
        const bool one_line = std::count(err.begin(), err.end(), '\n') == 1 && err.back() == '\n';
        if (status == wanted && out.empty() && one_line && err.rfind("qorctl: ", 0) == 0 &&
            err.find(part) != std::string::npos) {
            return testing::AssertionSuccess();
        }
        return testing::AssertionFailure()
               << "status " << status << ", out '" << out << "', err '" << err << "'";
    }
};

/// Runs the tool in a scratch root of its own, with an empty store.
class QorctlTest : public testing::Test {
protected:
    static Outcome run(std::vector<std::string> arguments, const std::string &input = "")
    {
        arguments.insert(arguments.begin(), "qorctl");
        std::istringstream in(input);
        std::ostringstream out;
        std::ostringstream err;
        const int status = run_qorctl(arguments, in, out, err);
        return {status, out.str(), err.str()};
    }

    /// What the run printed, read as JSON and printed compactly again; "" when it is none.
    static std::string json_of(const Outcome &outcome)
    {
        const Json document = parse_json(outcome.out, JsonSyntax::strict);
        return document ? json_compact_text(document.get()) : "";
    }

    static std::vector<std::string> marked()
    {
        std::vector<MarkedKey> keys;
        EXPECT_EQ(store_marked_keys(keys), "");
        std::vector<std::string> names;
        for (const MarkedKey &key : keys) {
            names.push_back(key.key);
        }
        return names;
    }

    std::string path(const std::string &built_in) const { return device.path(built_in); }

    /// Writes a file and returns its whole path.
    std::string write(const std::string &built_in, const std::string &text) const
    {
        device.write(built_in, text);
        return path(built_in);
    }

    const test::DeviceRoot device;
};

} // namespace qorcfg
