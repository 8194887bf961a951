#include "support/ratio_report.h"

#include <cstdio>
#include <map>
#include <vector>

namespace scanbench {
namespace {

struct Result {
    std::string group, name;
    double seconds;  // real time of one iteration
};

std::map<std::string, double> &goals()
{
    static std::map<std::string, double> g;
    return g;
}

// Keeps what the console shows and collects each case's real time.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.error_occurred || run.run_type != Run::RT_Iteration)
                continue;
            const std::string full = run.benchmark_name();
            const size_t slash = full.find('/');
            if (slash == std::string::npos)
                continue;
            const double seconds = run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
            results.push_back({full.substr(0, slash), full.substr(slash + 1), seconds});
        }
    }
    std::vector<Result> results;
};

} // namespace

void setGoal(const std::string &group, const std::string &name, double maxRatio)
{
    goals()[group + "/" + name] = maxRatio;
}

int runWithRatios(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    std::map<std::string, double> baselines;
    for (const Result &r : reporter.results)
        if (r.name == "baseline")
            baselines[r.group] = r.seconds;

    std::printf("\n%-28s %-22s %12s %8s %8s  %s\n", "group", "case", "ms", "ratio", "goal", "");
    for (const Result &r : reporter.results) {
        const auto base = baselines.find(r.group);
        const double ratio = base != baselines.end() && base->second > 0 ? r.seconds / base->second : 0.0;
        const auto goal = goals().find(r.group + "/" + r.name);
        std::string verdict;
        char goalText[16] = "";
        if (goal != goals().end()) {
            std::snprintf(goalText, sizeof goalText, "%.2f", goal->second);
            verdict = ratio <= goal->second ? "met" : "MISSED";
        }
        std::printf("%-28s %-22s %12.3f %8.2f %8s  %s\n", r.group.c_str(), r.name.c_str(), r.seconds * 1e3, ratio,
                    goalText, verdict.c_str());
    }
    return 0;
}

} // namespace scanbench
