// txsample: makes sample databases for the demo, the tests and the benchmarks.
#include <iostream>

#include "anonymous.h"
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

int copy(const SampleOptions& options) {
    const CopyResult result = copyAnonymously(options.from, options.directory, options.seed);
    if (!result.failure.empty()) {
        std::cerr << "txsample: " << printable(result.failure) << std::endl;
        return couldNotWork;
    }
    std::cout << printable(options.directory) << ": an anonymous copy of " << result.files << " files";
    if (result.unread > 0)
        std::cout << "; " << result.unread << " things could not be read, which txcheck names";
    std::cout << std::endl;
    return sampleMade;
}

} // namespace

int main(int argc, char** argv) {
    openStandardStreams();
    SampleOptions options;
    int status = sampleMade;
    if (!parseOptions(argc, argv, options, status))
        return status;
    if (!options.from.empty())
        return copy(options);
    const SampleResult result = makeSample(options);
    if (!result.failure.empty()) {
        std::cerr << "txsample: " << printable(result.failure) << std::endl;
        return couldNotWork;
    }
    printResult(options, result);
    return sampleMade;
}
