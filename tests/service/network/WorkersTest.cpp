#include <connector/service/network/Workers.hpp>

#include <gtest/gtest.h>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using connector::service::Task;
using connector::service::Workers;

class FunctionTask : public Task {
public:
    FunctionTask(std::function<void()> newWork, std::function<void()> newFinish)
        : onWork(std::move(newWork)), onFinish(std::move(newFinish)) {}

    void work() noexcept override { onWork(); }
    void finish() noexcept override { onFinish(); }

private:
    const std::function<void()> onWork;
    const std::function<void()> onFinish;
};

/// Workers beside a network thread.
class WorkersTest : public testing::Test {
protected:
    ~WorkersTest() override { stop(); }

    void start(std::size_t count) {
        workers.start(count);
        workers.resume();
        network = std::thread([this] { io.run(); });
    }

    void stop() {
        io.stop();
        if (network.joinable())
            network.join();
        workers.stop();
    }

    template <typename Work>
    std::unique_ptr<Task> task(Work work) {
        return task(std::move(work), [] {});
    }

    template <typename Work, typename Finish>
    std::unique_ptr<Task> task(Work work, Finish finish) {
        return std::make_unique<FunctionTask>(std::move(work), [this, finish] {
            finish();
            const std::lock_guard<std::mutex> lock(mutex);
            ++finished;
            change.notify_all();
        });
    }

    void awaitFinished(int count) {
        std::unique_lock<std::mutex> lock(mutex);
        change.wait(lock, [&] { return finished >= count; });
    }

    /// The tasks of one turn of the network thread.
    template <typename... Tasks>
    void run(std::unique_ptr<Tasks>... tasks) {
        std::promise<void> given;
        boost::asio::post(io, [&] {
            (workers.run(std::move(tasks)), ...);
            given.set_value();
        });
        given.get_future().wait();
    }

    boost::asio::io_context io{1};
    const boost::asio::executor_work_guard<boost::asio::io_context::executor_type> guard{
        io.get_executor()};
    Workers workers{io};
    std::thread network;

private:
    std::mutex mutex;
    std::condition_variable change;
    int finished = 0;
};

TEST_F(WorkersTest, ATaskWorksOnAWorkerAndFinishesOnTheNetworkThread) {
    start(1);
    std::thread::id worker;
    std::thread::id finisher;
    run(task([&] { worker = std::this_thread::get_id(); },
             [&] { finisher = std::this_thread::get_id(); }));
    awaitFinished(1);
    EXPECT_EQ(network.get_id(), finisher);
    EXPECT_NE(network.get_id(), worker);
    EXPECT_NE(std::this_thread::get_id(), worker);
}

TEST_F(WorkersTest, TasksBeginInTheOrderInWhichTheyWereGiven) {
    start(1);
    constexpr int count = 1000;
    std::vector<int> order;
    for (int i = 0; i < count; ++i)
        run(task([&order, i] { order.push_back(i); }));
    awaitFinished(count);
    ASSERT_EQ(count, static_cast<int>(order.size()));
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST_F(WorkersTest, ASlowTaskDoesNotKeepThoseBehindItFromAWorker) {
    start(2);
    std::promise<void> second;
    run(task([&] { second.get_future().wait(); }), task([&] { second.set_value(); }));
    awaitFinished(2);
}

TEST_F(WorkersTest, ASlowTaskDoesNotKeepLaterOnesFromAWorker) {
    start(2);
    std::promise<void> begun;
    std::promise<void> second;
    run(task([&] {
        begun.set_value();
        second.get_future().wait();
    }));
    begun.get_future().wait();
    run(task([&] { second.set_value(); }));
    awaitFinished(2);
}

TEST_F(WorkersTest, ASlowTaskDoesNotKeepBackTheResultsOfThoseBeforeIt) {
    start(1);
    std::promise<void> first;
    run(task([] {}, [&] { first.set_value(); }), task([&] { first.get_future().wait(); }));
    awaitFinished(2);
}

TEST_F(WorkersTest, AsManySlowTasksRunAtOnceAsThereAreWorkers) {
    constexpr int count = 5;
    start(count);
    std::atomic<int> running{0};
    std::promise<void> all;
    const std::shared_future<void> allRun = all.get_future().share();
    const auto meet = [&] {
        if (++running == count)
            all.set_value();
        allRun.wait();
    };
    run(task(meet), task(meet), task(meet), task(meet), task(meet));
    awaitFinished(count);
}

TEST_F(WorkersTest, AFinishedTaskMayGiveAnother) {
    start(1);
    run(task([] {}, [&] { workers.run(task([] {})); }));
    awaitFinished(2);
}

TEST_F(WorkersTest, StopWaitsForTheTaskThatRunsAndDropsTheOthersAndTheResult) {
    start(1);
    std::promise<void> begun;
    std::promise<void> end;
    bool isDone = false;
    std::string others;
    const auto kept = std::make_shared<int>();
    run(task(
            [&] {
                begun.set_value();
                end.get_future().wait();
                isDone = true;
            },
            [&] { others += "finished"; }),
        task([&, kept] { others += "worked"; }));
    begun.get_future().wait();
    io.stop();
    network.join();
    std::thread stopper([&] { workers.stop(); });
    while (kept.use_count() > 1) // dropped before it waits
        std::this_thread::yield();
    end.set_value();
    stopper.join();
    EXPECT_TRUE(isDone);
    EXPECT_EQ("", others);
}

TEST_F(WorkersTest, DroppingTasksNeedsNoStackForEach) {
    start(1);
    std::promise<void> begun;
    std::promise<void> end;
    run(task([&] {
        begun.set_value();
        end.get_future().wait();
    }));
    begun.get_future().wait();
    std::promise<void> given;
    boost::asio::post(io, [&] {
        for (int i = 0; i < 500000; ++i)
            workers.run(task([] {}));
        given.set_value();
    });
    given.get_future().wait();
    end.set_value();
    stop();
}

} // namespace
