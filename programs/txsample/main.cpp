// txsample: makes sample databases for the demo, the tests and the benchmarks.
#include <iostream>

#include "options.h"
#include "platform/system/standardstreams.h"
#include "reporting/printable.h"
#include "sample.h"

namespace {

void printResult(const SampleOptions& options, const SampleResult& result) {
    std::cout << printable(options.directory) << ": " << result.datafiles << " data files with "
              << result.records << " records, " << result.sidefiles << " side files, damages:";
    if (result.damages.empty())
        std::cout << " none";
    for (const std::string& damage : result.damages)
        std::cout << ' ' << damage;
    std::cout << std::endl;
}

} // namespace

int main(int argc, char** argv) {
    openStandardStreams();
    SampleOptions options;
    int status = sampleMade;
    if (!parseOptions(argc, argv, options, status))
        return status;
    const SampleResult result = makeSample(options);
    if (!result.failure.empty()) {
        std::cerr << "txsample: " << printable(result.failure) << std::endl;
        return couldNotWork;
    }
    printResult(options, result);
    return sampleMade;
}
