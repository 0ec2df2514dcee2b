#include "bench/contest.h"
#include "bench/corners.h"
#include "bench/player.h"
#include "bench/sound_case.h"

#include <string>
#include <vector>

namespace bench {

std::vector<Corner> shortBlockCorners() {
    std::vector<Corner> corners;
    for (const SoundCase& situation : shortBlockCases())
        corners.push_back({section::kBlocks, situation.name(),
                           [situation](const Corner& corner, const std::string& library, const Take& take) {
                               Player built(builtEffect(library), situation);
                               Player reference(literalReference(), situation);
                               const std::vector<double> medians =
                                   medianNanoseconds({built.contestant(), reference.contestant()});
                               take({corner.section, corner.name, kReference, medians[0], medians[1]});
                           }});
    return corners;
}

} // namespace bench
