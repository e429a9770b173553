#pragma once

#include "apply/apply.h"
#include "engine/document.h"
#include "engine/uci_commit.h"
#include "support/applied_package.h"
#include "support/device_root.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace qorcfg::test {

/// Writes batch files, by hand or through the engine, and applies them in this process.
class ApplyTest : public testing::Test {
protected:
    using Kind = BatchSelection::Kind;

    /// One run of the applier; what it reported is in `errors`. Whether all went well.
    bool apply(const BatchSelection &selection = {})
    {
        std::ostringstream err;
        const bool done = apply_batches(selection, err);
        errors = err.str();
        return done;
    }
    bool apply_job(int job) { return apply({Kind::job, job}); }
    bool apply_startup() { return apply({Kind::startup, 0}); }

    /// Adds text to a batch file of the UCI side.
    void batch(const std::string &name, const std::string &text) const
    {
        const std::string path = folder + name;
        device.write(path, device.read(path) + text);
    }
    std::string package(const std::string &name = "net") const
    {
        return device.read("/tmp/etc/config/" + name);
    }
    void set_package(const std::string &text, const std::string &name = "net") const
    {
        device.write("/tmp/etc/config/" + name, text);
    }
    /// What lies in the batch folder, snapshots left out.
    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const std::string &name : device.names_in("/tmp/cache/qorcfg/ucicfg.d")) {
            if (name.rfind("uci-", 0) != 0) {
                names.push_back(name);
            }
        }
        return names;
    }
    /// One job's write of a document, applied: the package against what the document says.
    void expect_applied(const char *document, const char *name = "net")
    {
        const Document doc = Document::parse(document);
        commit_uci_section(doc, name, "part", 0, ++job);
        EXPECT_TRUE(apply_job(job)) << errors;
        EXPECT_EQ(applied_text(device, name, {doc.get()}), wanted_text({doc.get()}));
        EXPECT_EQ(files(), std::vector<std::string>{});
    }

    static constexpr const char *folder = "/tmp/cache/qorcfg/ucicfg.d/";
    DeviceRoot device;
    std::string errors;
    int job = 0;
};

} // namespace qorcfg::test
