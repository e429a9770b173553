#pragma once

#include "engine/json.h"
#include "support/device_root.h"

#include <set>
#include <string>
#include <vector>

namespace qorcfg::test {

/// The package file of the device read through libuci, as text: its sections by type, named and
/// anonymous ones, with options and list items. Sections of a type keep their order; those that
/// `documents` hold by name are sorted; those of the types in `foreign`, which others keep there,
/// are left out. What cannot be read gives the reason.
std::string applied_text(const DeviceRoot &device, const std::string &package,
                         const std::vector<json_object *> &documents,
                         const std::set<std::string> &foreign = {});

/// The same text for a package that holds exactly what `documents` say, as far as UCI can: empty
/// values are no options, and line breaks are blanks. Of a section that several documents hold the
/// last one's stands.
std::string wanted_text(const std::vector<json_object *> &documents);

/// Such a text with the options of each section sorted by name: a single option that is set anew
/// goes to the end of its section.
std::string with_sorted_options(const std::string &text);

/// The items of a list option; empty when there is none.
std::vector<std::string> list_items(const DeviceRoot &device, const std::string &package,
                                    const std::string &section, const std::string &option);

} // namespace qorcfg::test
