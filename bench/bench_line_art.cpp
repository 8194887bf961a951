// The line art of a thresholded bitmap against potrace with its default
// parameters on the same bitmap, one thread: the generated 300-dpi 12-field
// pencil page, and each drawing of the shared line art folder when it is
// there. Each drawing is a group: "baseline" is potrace, "ours" the edge
// follower with its filter and the Bezier fit. The fidelity and memory of
// both are in report_line_art_fidelity.
#include <cstdio>
#include <string>
#include <vector>

#include "support/line_art_inputs.h"
#include "support/ratio_report.h"

namespace {

void registerDrawing(const std::string &group, const BM_GreyMap &bitmap) {
    benchmark::RegisterBenchmark((group + "/baseline").c_str(), [&bitmap](benchmark::State &state) {
        for (auto _ : state) lineart::runPotrace(bitmap);
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((group + "/ours").c_str(), [&bitmap](benchmark::State &state) {
        for (auto _ : state) lineart::runOurs(std::make_unique<BM_GreyMap>(bitmap));
    })->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char **argv) {
    static const lineart::Drawing page = lineart::generatedPage();
    registerDrawing("page", page.bitmap);
    scanbench::setGoal("page", "ours", 1.0);
    std::string where;
    static const std::vector<lineart::Drawing> drawings = lineart::sharedDrawings(where);
    if (drawings.empty())
        std::printf("No drawings in %s: only the generated page is measured.\n", where.c_str());
    for (const lineart::Drawing &d : drawings) registerDrawing(d.name.substr(0, d.name.find('.')), d.bitmap);
    return scanbench::runWithRatios(argc, argv);
}
