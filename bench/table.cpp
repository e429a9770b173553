#include "table.h"

#include <cstdio>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qorcfg::bench {

namespace {

constexpr std::string_view floor_word = "Floor";

/// "CommitFloor/10" is the floor of "Commit/10"; "" for what is no floor.
std::string measured_by(std::string name)
{
    const std::size_t at = name.find(floor_word);
    const std::size_t end = at + floor_word.size();
    if (at == std::string::npos || (end != name.size() && name[end] != '/')) {
        return "";
    }
    return name.erase(at, floor_word.size());
}

class TableReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context & /*context*/) override { return true; }
    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            const bool alone = run.run_type != Run::RT_Aggregate && run.repetitions <= 1;
            if (alone || run.aggregate_name == "median") {
                add(run);
            }
        }
    }
    void Finalize() override
    {
        for (const Row &row : rows_) {
            print(row);
        }
    }
    bool failed() const { return failed_; }

private:
    struct Row {
        std::string name;
        double microseconds;
        std::map<std::string, double> counters;
    };

    void add(const Run &run)
    {
        const std::string name = run.run_name.function_name +
                                 (run.run_name.args.empty() ? "" : "/" + run.run_name.args) +
                                 (run.threads > 1 ? "/" + run.run_name.threads : "");
        if (run.error_occurred) {
            std::fprintf(stderr, "%s: %s\n", name.c_str(), run.error_message.c_str());
            failed_ = true;
            return;
        }
        constexpr double microseconds_in_a_second = 1e6;
        const double iterations = run.iterations == 0 ? 1.0 : static_cast<double>(run.iterations);
        const double time = run.real_accumulated_time / iterations * microseconds_in_a_second;
        if (const std::string of = measured_by(name); !of.empty()) {
            floors_[of] = time;
            return;
        }
        Row row{name, time, {}};
        for (const auto &[counter, value] : run.counters) {
            row.counters[counter] = value.value;
        }
        rows_.push_back(row);
    }

    void print(const Row &row) const
    {
        std::printf("%-34s %12.1f us", row.name.c_str(), row.microseconds);
        if (const auto floor = floors_.find(row.name); floor != floors_.end()) {
            std::printf("  floor %12.1f us  ratio %5.2f", floor->second,
                        row.microseconds / floor->second);
        }
        for (const auto &[name, value] : row.counters) {
            std::printf("  %s %.10g", name.c_str(), value);
        }
        std::printf("\n");
    }

    std::vector<Row> rows_;
    std::map<std::string, double> floors_;
    bool failed_ = false;
};

} // namespace

int run_and_print(int argc, char **argv)
{
    const bool json = argc > 1 && std::string_view(argv[1]) == "--json";
    std::vector<char *> arguments(argv, argv + argc);
    std::string format = "--benchmark_format=json";
    if (json) {
        arguments[1] = format.data();
    }
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
        return 2;
    }
    if (json) {
        benchmark::RunSpecifiedBenchmarks();
        return 0;
    }
    TableReporter table;
    benchmark::RunSpecifiedBenchmarks(&table);
    return table.failed() ? 1 : 0;
}

} // namespace qorcfg::bench
