/// Random programs against the reference model of a publisher.

#include "PublisherModel.hpp"
#include "Generator.hpp"
#include "LibraryStream.hpp"
#include "Lockstep.hpp"

#include <gtest/gtest.h>

using namespace test::model;

namespace {

using Publisher = connector::reactive_streams::CachedValuePublisher<int>;

constexpr std::size_t steps = 60;

class PublisherModelTest : public testing::TestWithParam<int> {};

std::unique_ptr<Subject> noSubject(Journal&) {
    return nullptr;
}

bool passes(std::uint64_t seed, int capacity) {
    ProgramRunner library(noSubject, [capacity](std::function<void()> onFinish) {
        return std::make_unique<LibraryStream<int>>(
            std::make_shared<Publisher>(std::move(onFinish), capacity));
    });
    ProgramRunner model(noSubject, [capacity](std::function<void()> onFinish) {
        return std::make_unique<ModelStream>(
            std::make_shared<PublisherModel>(std::move(onFinish), capacity));
    });
    library.addPublisher();
    model.addPublisher();
    return expectSame(seed, PublisherGenerator(seed).program(steps), library, model);
}

TEST_P(PublisherModelTest, RandomProgramsHaveTheSameJournalAsTheModel) {
    for (const std::uint64_t seed : seedsUpTo(MODEL_SEEDS)) {
        if (!passes(seed, GetParam()))
            break;
    }
}

INSTANTIATE_TEST_SUITE_P(Capacities, PublisherModelTest, testing::Values(-1, 0, 1, 2, 5));

} // namespace
