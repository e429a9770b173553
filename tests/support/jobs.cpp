#include "support/jobs.h"

#include "engine/new_json_util.h"

namespace qorcfg::test {

Jobs read_jobs(const DeviceRoot &device)
{
    const Json document =
        parse_json(device.read("/tmp/cache/qorcfg/jobs.json"), JsonSyntax::lenient);
    const auto number = [](json_object *value) { return json_object_get_int(value); };
    Jobs jobs;
    jobs.last = number(json_get_member(document.get(), "last"));
    jobs.ended = number(json_get_member(document.get(), "ended"));
    json_object *running = json_get_member(document.get(), "running");
    for (std::size_t i = 0; i < json_size(running); ++i) {
        jobs.running.push_back(number(json_element(running, i)));
    }
    return jobs;
}

bool ended_jobs(const DeviceRoot &device)
{
    return read_jobs(device).running.empty();
}

} // namespace qorcfg::test
