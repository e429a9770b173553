#include "components/components.h"

#include "core/base/predicates.h"
#include "engine/uci_commit.h"

#include <array>

namespace qorcfg {

namespace {

constexpr std::array keys{
    "ap_mode", "parental_switch", "ParentalControl", "enable_circle_plc", "ParentalControl_table",
};

constexpr std::array choice_options{
    Option{"switch", "parental_switch"},
    Option{"opendns", "ParentalControl"},
    Option{"circle", "enable_circle_plc"},
};

constexpr std::array table_options{
    Option{"table", "ParentalControl_table"},
};

int update(int job)
{
    QORCFG_LOG(" update parental");
    Document doc;
    Section section = doc.append("parental_ctl", anonymous_sections);
    if (is_ap_mode() != 0) {
        // The router in front of an access point does the filtering.
        section.add("switch", "2").add("opendns", "0").add("circle", "0");
    } else {
        section.add(choice_options);
    }
    section.add(table_options);
    return commit(doc, "parental", "@parental_ctl[0]", job);
}

void init()
{
    log_init("parental");
    subscribe_all(keys, update);
}

void register_()
{
    log_register("parental");
}

} // namespace

const Operations ietf_parental{init, nullptr, register_};

} // namespace qorcfg
