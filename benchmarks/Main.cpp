/// Runs the benchmarks of a program while a second thread exists.
///
/// With a single thread, the C and C++ run-time libraries avoid atomic instructions, so the figures
/// would be better than in any application with several threads. Therefore a second thread is
/// blocked during the whole run.
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
