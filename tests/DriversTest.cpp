#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <new>
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
#include "support/WrongFrames.h"

namespace {

using quarry::test::AllocationLog;
using quarry::test::Apply;
using quarry::test::FailingAllocation;
using quarry::test::FramedInput;
using quarry::test::FramedOptions;
using quarry::test::FramedResult;
using quarry::test::LiveBlocks;
using quarry::test::WrongFrame;
using quarry::test::WrongFrames;

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

// ---- factories

template <class Options>
struct Factory {
    const char* name;
    void (*create)(void** handle, Options* options);
};

/// Calls `test` with the factory of a processor and with that of an updater.
template <class Test>
void ForEitherFactory(Test test) {
    test(Factory<ProcessOptions>{"CreateCVLaplacianVarianceProcessor", CreateCVLaplacianVarianceProcessor});
    test(Factory<BackgroundOptions>{"CreateCVBackgroundModel", CreateCVBackgroundModel});
}

void* const kUntouched = reinterpret_cast<void*>(0x5EED);

template <class Options>
auto FramedOptionsOf(const Factory<Options>& /*factory*/) {
    return FramedOptions<Options>();
}

TEST(Factories, WriteAHandleThatDisposeEnds) {
    ForEitherFactory([](const auto& factory) {
        auto options = FramedOptionsOf(factory);
        const std::size_t live = LiveBlocks();
        void* handle = nullptr;
        factory.create(&handle, options.record());
        ASSERT_NE(handle, nullptr) << factory.name;
        Dispose(handle);
        EXPECT_EQ(LiveBlocks(), live) << factory.name;
    });
}

TEST(Factories, OverwriteWhatTheHostHadInTheHandle) {
    ForEitherFactory([](const auto& factory) {
        auto options = FramedOptionsOf(factory);
        void* handle = kUntouched;
        factory.create(&handle, options.record());
        EXPECT_NE(handle, kUntouched) << factory.name;
        Dispose(handle);
    });
}

TEST(Factories, KeepNothingWhenTheOptionsFrameIsWrong) {
    ForEitherFactory([](const auto& factory) {
        auto options = FramedOptionsOf(factory);
        for (const WrongFrame& frame : WrongFrames(sizeof(*options), QUARRY_OPTIONS_TAG)) {
            Apply(frame, options);
            const std::size_t live = LiveBlocks();
            void* handle = kUntouched;
            EXPECT_THROW(factory.create(&handle, options.record()), MarshalingException) << factory.name << frame;
            EXPECT_EQ(LiveBlocks(), live) << factory.name << ", " << frame;
            EXPECT_EQ(handle, kUntouched) << factory.name << ", " << frame;
        }
    });
}

TEST(Factories, KeepNothingWhenMemoryEnds) {
    constexpr std::size_t kHandleAndTarget = 2;
    ForEitherFactory([](const auto& factory) {
        auto options = FramedOptionsOf(factory);
        for (std::size_t served = 0; served < kHandleAndTarget; ++served) {
            const std::size_t live = LiveBlocks();
            void* handle = kUntouched;
            bool thrown = false;
            {
                const FailingAllocation failing(served);
                try {
                    factory.create(&handle, options.record());
                } catch (const std::bad_alloc&) {
                    thrown = true;
                }
            }
            EXPECT_TRUE(thrown) << factory.name << " after " << served << " allocations";
            EXPECT_EQ(LiveBlocks(), live) << factory.name << " after " << served << " allocations";
            EXPECT_EQ(handle, kUntouched) << factory.name << " after " << served << " allocations";
        }
    });
}

TEST(Factories, ThrowInvalidArgumentForNullOptions) {
    ForEitherFactory([](const auto& factory) {
        const std::size_t live = LiveBlocks();
        void* handle = kUntouched;
        EXPECT_THROW(factory.create(&handle, nullptr), std::invalid_argument) << factory.name;
        EXPECT_EQ(handle, kUntouched) << factory.name;
        EXPECT_EQ(LiveBlocks(), live) << factory.name;
    });
}

TEST(Factories, ThrowInvalidArgumentForANullAddressOfTheHandle) {
    ForEitherFactory([](const auto& factory) {
        auto options = FramedOptionsOf(factory);
        const std::size_t live = LiveBlocks();
        EXPECT_THROW(factory.create(nullptr, options.record()), std::invalid_argument) << factory.name;
        EXPECT_EQ(LiveBlocks(), live) << factory.name;
    });
}

TEST(Factories, LeaveTheHostsOptionsAsTheyAre) {
    ForEitherFactory([](const auto& factory) {
        auto options = FramedOptionsOf(factory);
        std::memset(options.record(), 0x3A, sizeof(*options));
        const auto before = options.Bytes();
        void* handle = nullptr;
        factory.create(&handle, options.record());
        EXPECT_EQ(options.Bytes(), before) << factory.name;
        Dispose(handle);
    });
}

}  // namespace
