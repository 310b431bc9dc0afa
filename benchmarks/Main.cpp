/// Runs the benchmarks of a program while a second thread exists.
///
/// With one thread only, the C and C++ run-time libraries leave out atomic instructions, which
/// flatters every figure in a way that no application of several threads sees. So one thread is
/// parked for the whole run.
#include <benchmark/benchmark.h>

#include <future>
#include <thread>

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;

    std::promise<void> over;
    std::thread parked([waitFor = over.get_future()] { waitFor.wait(); });
    benchmark::RunSpecifiedBenchmarks();
    over.set_value();
    parked.join();
    benchmark::Shutdown();
    return 0;
}
