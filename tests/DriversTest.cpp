#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Quarry.Frame/InvokableProcessor.h"
#include "Quarry.Frame/InvokableUpdater.h"
#include "Quarry.Frame/Processor.h"
#include "Quarry/Quarry.h"
#include "support/Allocations.h"
#include "support/Framed.h"

namespace {

using namespace quarry::test;

/// One call that reached a fake, with the records it was given.
struct Call {
    std::string name;
    const void* first = nullptr;
    const void* second = nullptr;

    bool operator==(const Call& other) const {
        return name == other.name && first == other.first && second == other.second;
    }
};
std::ostream& operator<<(std::ostream& out, const Call& call) {
    return out << call.name << "(" << call.first << ", " << call.second << ")";
}

std::vector<Call> calls;
std::function<void()> duringCall = [] {};
int32_t currentState = 0;

struct FakeProcessor : IProcessor {
    void Process(ProcessData* input, ProcessResult* result) override {
        calls.push_back({"Process", input, result});
        duringCall();
    }
    void DisposeResult(ProcessResult* result) override {
        calls.push_back({"DisposeResult", result});
        duringCall();
    }
};

struct FakeUpdater : IUpdatable {
    void Update(UpdateData* data) override {
        calls.push_back({"Update", data});
        duringCall();
    }
    int32_t GetState() override {
        calls.push_back({"GetState"});
        return currentState;
    }
    void GetResult(UpdateResult* result) override {
        calls.push_back({"GetResult", result});
        duringCall();
    }
};

struct CountedTarget : Disposable {
    explicit CountedTarget(int* destructions) : count(destructions) {}
    ~CountedTarget() override { ++*count; }
    int* count;
};

struct ProcessorHandle : InvokableProcessor {
    explicit ProcessorHandle(Disposable* held = nullptr) { target = held; }
    IProcessor* GetProcessor() override {
        ++lookups;
        return &processor;
    }
    FakeProcessor processor;
    int lookups = 0;
};

struct UpdaterHandle : InvokableUpdater {
    IUpdatable* GetUpdater() override {
        ++lookups;
        return &updater;
    }
    FakeUpdater updater;
    int lookups = 0;
};

class Drivers : public testing::Test {
protected:
    void SetUp() override {
        calls.clear();
        duringCall = [] {};
        currentState = 0;
    }

    /// Any addresses will do: the drivers only pass them on.
    char memory[2] = {};
    ProcessData* const input = reinterpret_cast<ProcessData*>(&memory[0]);
    ProcessResult* const result = reinterpret_cast<ProcessResult*>(&memory[1]);
    UpdateData* const frame = reinterpret_cast<UpdateData*>(&memory[0]);
    UpdateResult* const updateResult = reinterpret_cast<UpdateResult*>(&memory[1]);

    ProcessorHandle processor;
    UpdaterHandle updater;
    void* const processorHandle = static_cast<Invokable*>(&processor);
    void* const updaterHandle = static_cast<Invokable*>(&updater);
};

TEST_F(Drivers, PassBothRecordsToTheProcessor) {
    Process(processorHandle, input, result);
    EXPECT_EQ(calls, (std::vector<Call>{{"Process", input, result}}));
}

TEST_F(Drivers, PassAResultToTheProcessorThatShallDisposeOfIt) {
    DisposeResult(processorHandle, result);
    EXPECT_EQ(calls, (std::vector<Call>{{"DisposeResult", result}}));
}

TEST_F(Drivers, UpdateAndThenAskForTheState) {
    Update(updaterHandle, frame);
    EXPECT_EQ(calls, (std::vector<Call>{{"Update", frame}, {"GetState"}}));
}

TEST_F(Drivers, ReturnTheStateThatTheUpdateSet) {
    currentState = 1;
    duringCall = [] { currentState = 2; };
    EXPECT_EQ(Update(updaterHandle, frame), 2);
}

TEST_F(Drivers, ReturnAStateThatNoUpdaterHasAsItIs) {
    currentState = -77;
    EXPECT_EQ(Update(updaterHandle, frame), -77);
}

TEST_F(Drivers, PassAResultToTheUpdater) {
    GetUpdateResult(updaterHandle, updateResult);
    EXPECT_EQ(calls, (std::vector<Call>{{"GetResult", updateResult}}));
}

TEST_F(Drivers, PassNullRecordsOn) {
    Process(processorHandle, nullptr, nullptr);
    EXPECT_EQ(calls, (std::vector<Call>{{"Process", nullptr, nullptr}}));
}

TEST_F(Drivers, AskTheHandleOncePerCall) {
    Update(updaterHandle, frame);
    EXPECT_EQ(updater.lookups, 1);
    Process(processorHandle, input, result);
    EXPECT_EQ(processor.lookups, 1);
}

TEST_F(Drivers, CatchNothing) {
    duringCall = [] { throw 4711; };
    EXPECT_THROW(Process(processorHandle, input, result), int);
    EXPECT_THROW(DisposeResult(processorHandle, result), int);
    EXPECT_THROW(Update(updaterHandle, frame), int);
    EXPECT_THROW(GetUpdateResult(updaterHandle, updateResult), int);
}

TEST_F(Drivers, DoNotAskForTheStateOfAFailedUpdate) {
    duringCall = [] { throw 4711; };
    EXPECT_THROW(Update(updaterHandle, frame), int);
    EXPECT_EQ(calls, (std::vector<Call>{{"Update", frame}}));
}

TEST_F(Drivers, ThrowInvalidArgumentForANullHandle) {
    EXPECT_THROW(Process(nullptr, input, result), std::invalid_argument);
    EXPECT_THROW(DisposeResult(nullptr, result), std::invalid_argument);
    EXPECT_THROW(Update(nullptr, frame), std::invalid_argument);
    EXPECT_THROW(GetUpdateResult(nullptr, updateResult), std::invalid_argument);
}

TEST_F(Drivers, ThrowInvalidArgumentForAHandleOfTheOtherKind) {
    EXPECT_THROW(Process(updaterHandle, input, result), std::invalid_argument);
    EXPECT_THROW(DisposeResult(updaterHandle, result), std::invalid_argument);
    EXPECT_THROW(Update(processorHandle, frame), std::invalid_argument);
    EXPECT_THROW(GetUpdateResult(processorHandle, updateResult), std::invalid_argument);
}

TEST_F(Drivers, CallNothingOnAHandleOfTheOtherKind) {
    EXPECT_THROW(Process(updaterHandle, input, result), std::invalid_argument);
    EXPECT_THROW(Update(processorHandle, frame), std::invalid_argument);
    EXPECT_TRUE(calls.empty());
    EXPECT_EQ(updater.lookups + processor.lookups, 0);
}

TEST_F(Drivers, ThrowLogicErrorForAHandleWithoutATarget) {
    InvokableProcessor idleProcessor;
    InvokableUpdater idleUpdater;
    EXPECT_THROW(Process(&idleProcessor, input, result), std::logic_error);
    EXPECT_THROW(DisposeResult(&idleProcessor, result), std::logic_error);
    EXPECT_THROW(Update(&idleUpdater, frame), std::logic_error);
    EXPECT_THROW(GetUpdateResult(&idleUpdater, updateResult), std::logic_error);
}

TEST_F(Drivers, DisposeOfNothingForNull) {
    const std::size_t live = LiveBlocks();
    Dispose(nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

TEST_F(Drivers, DestroyTheTargetOnceWhenAHandleEnds) {
    int destructions = 0;
    Dispose(static_cast<Invokable*>(new ProcessorHandle(new CountedTarget(&destructions))));
    EXPECT_EQ(destructions, 1);
}

TEST_F(Drivers, FreeTheHandleAndItsTarget) {
    int destructions = 0;
    const std::size_t live = LiveBlocks();
    Dispose(static_cast<Invokable*>(new ProcessorHandle(new CountedTarget(&destructions))));
    EXPECT_EQ(LiveBlocks(), live);
}

TEST_F(Drivers, FreeAHandleWithoutATarget) {
    const std::size_t live = LiveBlocks();
    Dispose(static_cast<Invokable*>(new UpdaterHandle));
    EXPECT_EQ(LiveBlocks(), live);
}

/// A processor without an algorithm in a handle of its own, so that only the road to it is left.
struct Road : Processor<ProcessOptions, VoLInputData, VoLOutputData> {
    using Processor::Processor;
};
struct RoadHandle : InvokableProcessor {
    explicit RoadHandle(ProcessOptions* options) { target = new Road(options); }
    IProcessor* GetProcessor() override { return dynamic_cast<Road*>(target); }
};

TEST_F(Drivers, AllocateNothingOnTheWayToAProcessor) {
    auto options = FramedOptions<ProcessOptions>();
    RoadHandle handle(options.record());
    auto data = FramedInput<VoLInputData>();
    auto filled = FramedResult<VoLOutputData>();
    AllocationLog log;
    Process(&handle, data.as<ProcessData>(), filled.as<ProcessResult>());
    DisposeResult(&handle, filled.as<ProcessResult>());
    EXPECT_EQ(log.Sizes(), std::vector<std::size_t>{});
}

}  // namespace
