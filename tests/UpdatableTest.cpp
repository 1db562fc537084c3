#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "Quarry.Frame/BackgroungModel.h"
#include "Quarry.Frame/OFCBase.h"
#include "Quarry.Frame/Updatable.h"
#include "Quarry.OpenCV/BackgroundUpdating.h"
#include "Quarry.OpenCV/CVBackgroungModel.h"
#include "Quarry.OpenCV/CVOpticalFlowCalculator.h"
#include "Quarry.OpenCV/DenseOpticalFlowCalculator.h"
#include "Quarry.OpenCV/MosseTracker.h"
#include "support/Framed.h"
#include "support/Slots.h"
#include "support/WrongFrames.h"

using namespace quarry::test;

namespace {

using Log = std::vector<std::string>;

struct SumOptions {
    uint32_t Header;
    int32_t Start;
};

struct Term {
    uint32_t Header;
    int32_t Value;
    double Weight;
};

struct Sum {
    int32_t Status;
    int64_t Value;
    char Letter;
};

/// An updater whose hooks are the test's, and which notes what was called.
class Scripted : public Updatable<SumOptions, Term, Sum> {
public:
    using Updatable::Updatable;

    bool NeedInitialize(Term term) override {
        log.emplace_back("NeedInitialize");
        return needInitialize(term);
    }
    void DoInitialize(Term term) override {
        log.emplace_back("DoInitialize");
        doInitialize(term);
    }
    void DoUpdate(Term term) override {
        log.emplace_back("DoUpdate");
        doUpdate(term);
    }
    void InitResult() override { log.emplace_back("InitResult"); }
    void AssignResultData() override {
        log.emplace_back("AssignResultData");
        assign();
    }

    void SetState(int32_t value) { state = value; }
    void SetResult(Sum* value) { result = value; }
    const Sum* Result() const { return result; }

    std::function<bool(Term&)> needInitialize = [](Term&) { return false; };
    std::function<void(Term&)> doInitialize = [](Term&) {};
    std::function<void(Term&)> doUpdate = [](Term&) {};
    std::function<void()> assign = [] {};
    Log log;
};

/// An updater that overrides only what it must.
class Default : public Updatable<SumOptions, Term, Sum> {
public:
    using Updatable::Updatable;
    bool NeedInitialize(Term /*term*/) override { return true; }
    void DoInitialize(Term /*term*/) override {}
};

std::unique_ptr<Scripted> MakeScripted() {
    auto options = FramedOptions<SumOptions>();
    return std::make_unique<Scripted>(options.record());
}

}  // namespace

template <>
struct quarry::RecordFields<Sum> {
    static constexpr auto value = std::tuple{&Sum::Status, &Sum::Value, &Sum::Letter};
};

namespace {

// ---- Update

TEST(Updatable, AsksWhetherToInitializeBeforeEveryFrame) {
    const auto updater = MakeScripted();
    auto input = FramedInput<Term>();
    updater->Update(input.as<UpdateData>());
    updater->Update(input.as<UpdateData>());
    EXPECT_EQ(updater->log, (Log{"NeedInitialize", "DoUpdate", "NeedInitialize", "DoUpdate"}));
}

TEST(Updatable, InitializesBetweenTheQuestionAndTheUpdate) {
    const auto updater = MakeScripted();
    updater->needInitialize = [](Term&) { return true; };
    auto input = FramedInput<Term>();
    updater->Update(input.as<UpdateData>());
    EXPECT_EQ(updater->log, (Log{"NeedInitialize", "DoInitialize", "DoUpdate"}));
}

TEST(Updatable, InitializesOnlyForTheFramesThatNeedIt) {
    const auto updater = MakeScripted();
    updater->needInitialize = [](Term& term) { return term.Value == 1; };
    auto input = FramedInput<Term>();
    for (const int32_t value : {1, 2, 1}) {
        input->Value = value;
        updater->Update(input.as<UpdateData>());
    }
    EXPECT_EQ(updater->log, (Log{"NeedInitialize", "DoInitialize", "DoUpdate", "NeedInitialize", "DoUpdate",
                                 "NeedInitialize", "DoInitialize", "DoUpdate"}));
}

/// What a hook was given, byte by byte.
class Seen {
public:
    void operator()(const Term& term) { std::memcpy(bytes.data(), &term, sizeof(term)); }
    std::array<unsigned char, sizeof(Term)> bytes{};
};

TEST(Updatable, GivesEveryHookEveryByteOfTheFrame) {
    const auto updater = MakeScripted();
    Seen asked;
    Seen initialized;
    Seen updated;
    updater->needInitialize = [&](Term& term) {
        asked(term);
        return true;
    };
    updater->doInitialize = [&](Term& term) { initialized(term); };
    updater->doUpdate = [&](Term& term) { updated(term); };
    auto input = FramedInput<Term>(0x2E);
    updater->Update(input.as<UpdateData>());
    EXPECT_EQ(asked.bytes, input.Bytes());
    EXPECT_EQ(initialized.bytes, input.Bytes());
    EXPECT_EQ(updated.bytes, input.Bytes());
}

TEST(Updatable, HidesFromInitializationWhatTheQuestionDidToItsCopy) {
    const auto updater = MakeScripted();
    int32_t initialized = 0;
    updater->needInitialize = [](Term& term) {
        term.Value = -1;
        return true;
    };
    updater->doInitialize = [&](Term& term) { initialized = term.Value; };
    auto input = FramedInput<Term>();
    input->Value = 9;
    updater->Update(input.as<UpdateData>());
    EXPECT_EQ(initialized, 9);
}

TEST(Updatable, HidesFromTheUpdateWhatInitializationDidToItsCopy) {
    const auto updater = MakeScripted();
    int32_t updated = 0;
    updater->needInitialize = [](Term&) { return true; };
    updater->doInitialize = [](Term& term) { term.Value = -1; };
    updater->doUpdate = [&](Term& term) { updated = term.Value; };
    auto input = FramedInput<Term>();
    input->Value = 9;
    updater->Update(input.as<UpdateData>());
    EXPECT_EQ(updated, 9);
}

TEST(Updatable, CopiesTheFrameForTheUpdateAfterInitialization) {
    const auto updater = MakeScripted();
    auto input = FramedInput<Term>();
    int32_t updated = 0;
    updater->needInitialize = [](Term&) { return true; };
    updater->doInitialize = [&](Term&) { input->Value = 31; };
    updater->doUpdate = [&](Term& term) { updated = term.Value; };
    updater->Update(input.as<UpdateData>());
    EXPECT_EQ(updated, 31);
}

TEST(Updatable, DoesNotTouchItsResultWhenItUpdates) {
    const auto updater = MakeScripted();
    Sum own{3, 4, 'o'};
    updater->SetResult(&own);
    auto input = FramedInput<Term>();
    updater->Update(input.as<UpdateData>());
    EXPECT_EQ(updater->log, (Log{"NeedInitialize", "DoUpdate"}));
    EXPECT_EQ(updater->Result(), &own);
    EXPECT_EQ(own.Value, 4);
}

TEST(Updatable, DoesNothingWhenTheFramesFrameIsWrong) {
    const auto updater = MakeScripted();
    updater->SetState(Ready);
    for (const WrongFrame& frame : WrongFrames(sizeof(Term), QUARRY_INPUT_TAG)) {
        auto input = FramedInput<Term>();
        Apply(frame, input);
        EXPECT_THROW(updater->Update(input.as<UpdateData>()), MarshalingException);
        EXPECT_TRUE(updater->log.empty()) << frame;
        EXPECT_EQ(updater->GetState(), Ready) << frame;
    }
}

// ---- state

TEST(Updatable, HasNoResultAsItsFirstState) {
    EXPECT_EQ(MakeScripted()->GetState(), 0);
}

TEST(Updatable, ReportsTheStateThatItsAlgorithmSet) {
    const auto updater = MakeScripted();
    updater->doUpdate = [&](Term&) { updater->SetState(Accumulating); };
    auto input = FramedInput<Term>();
    updater->Update(input.as<UpdateData>());
    EXPECT_EQ(updater->GetState(), 1);
}

TEST(Updatable, NeverWritesTheStateItself) {
    const auto updater = MakeScripted();
    updater->SetState(12345);
    Sum own{};
    updater->SetResult(&own);
    updater->needInitialize = [](Term&) { return true; };
    auto input = FramedInput<Term>();
    auto result = FramedResult<Sum>();
    updater->Update(input.as<UpdateData>());
    updater->GetResult(result.as<UpdateResult>());
    EXPECT_EQ(updater->GetState(), 12345);
}

TEST(Updatable, DoesNotUpdateWhenInitializationThrows) {
    const auto updater = MakeScripted();
    updater->needInitialize = [](Term&) { return true; };
    updater->doInitialize = [](Term&) { throw std::bad_alloc(); };
    auto input = FramedInput<Term>();
    EXPECT_THROW(updater->Update(input.as<UpdateData>()), std::bad_alloc);
    EXPECT_EQ(updater->log, (Log{"NeedInitialize", "DoInitialize"}));
}

TEST(Updatable, KeepsTheStateSetBeforeInitializationThrew) {
    const auto updater = MakeScripted();
    updater->SetState(Ready);
    updater->needInitialize = [](Term&) { return true; };
    updater->doInitialize = [&](Term&) {
        updater->SetState(Accumulating);
        throw 5;
    };
    auto input = FramedInput<Term>();
    EXPECT_THROW(updater->Update(input.as<UpdateData>()), int);
    EXPECT_EQ(updater->GetState(), Accumulating);
}

TEST(Updatable, KeepsTheStateWhenTheUpdateThrows) {
    const auto updater = MakeScripted();
    updater->SetState(Ready);
    updater->doUpdate = [](Term&) { throw 5; };
    auto input = FramedInput<Term>();
    EXPECT_THROW(updater->Update(input.as<UpdateData>()), int);
    EXPECT_EQ(updater->GetState(), Ready);
}

TEST(Updatable, GoesOnAfterAnUpdateThatThrew) {
    const auto updater = MakeScripted();
    updater->doUpdate = [](Term&) { throw 5; };
    auto input = FramedInput<Term>();
    EXPECT_THROW(updater->Update(input.as<UpdateData>()), int);
    updater->doUpdate = [&](Term&) { updater->SetState(Ready); };
    updater->Update(input.as<UpdateData>());
    EXPECT_EQ(updater->GetState(), Ready);
}

// ---- GetResult

TEST(Updatable, HasNoResultBeforeTheFirstFrame) {
    EXPECT_EQ(MakeScripted()->Result(), nullptr);
}

TEST(Updatable, ThrowsLogicErrorForAResultBeforeTheFirstFrame) {
    const auto updater = MakeScripted();
    auto result = FramedResult<Sum>();
    EXPECT_THROW(updater->GetResult(result.as<UpdateResult>()), std::logic_error);
}

TEST(Updatable, LeavesTheHostsRecordUntouchedWhenThereIsNoResult) {
    const auto updater = MakeScripted();
    auto result = FramedResult<Sum>(0x58);
    const auto before = result.Bytes();
    EXPECT_THROW(updater->GetResult(result.as<UpdateResult>()), std::logic_error);
    EXPECT_EQ(result.Bytes(), before);
}

TEST(Updatable, AssignsNothingWhenThereIsNoResult) {
    const auto updater = MakeScripted();
    auto result = FramedResult<Sum>();
    EXPECT_THROW(updater->GetResult(result.as<UpdateResult>()), std::logic_error);
    EXPECT_TRUE(updater->log.empty());
}

TEST(Updatable, ChecksTheRecordBeforeItMissesAResult) {
    const auto updater = MakeScripted();
    auto result = FramedResult<Sum>();
    result.SetTag(QUARRY_INPUT_TAG);
    EXPECT_THROW(updater->GetResult(result.as<UpdateResult>()), MarshalingException);
}

TEST(Updatable, BringsItsResultUpToDateBeforeItIsCopied) {
    const auto updater = MakeScripted();
    Sum own{0, 1, 'a'};
    updater->SetResult(&own);
    updater->assign = [&] { own = {6, -70'000'000'000, 'z'}; };
    auto result = FramedResult<Sum>();
    updater->GetResult(result.as<UpdateResult>());
    EXPECT_EQ(result->Status, 6);
    EXPECT_EQ(result->Value, -70'000'000'000);
    EXPECT_EQ(result->Letter, 'z');
}

TEST(Updatable, BringsItsResultUpToDateEveryTime) {
    const auto updater = MakeScripted();
    Sum own{};
    updater->SetResult(&own);
    auto result = FramedResult<Sum>();
    updater->GetResult(result.as<UpdateResult>());
    updater->GetResult(result.as<UpdateResult>());
    EXPECT_EQ(updater->log, (Log{"AssignResultData", "AssignResultData"}));
}

TEST(Updatable, CopiesTheResultThatAssigningMade) {
    const auto updater = MakeScripted();
    Sum first{0, 1, 'a'};
    Sum second{0, 2, 'b'};
    updater->SetResult(&first);
    updater->assign = [&] { updater->SetResult(&second); };
    auto result = FramedResult<Sum>();
    updater->GetResult(result.as<UpdateResult>());
    EXPECT_EQ(result->Value, 2);
}

TEST(Updatable, LeavesTheHostsRecordUntouchedWhenAssigningThrows) {
    const auto updater = MakeScripted();
    Sum own{1, 2, 'c'};
    updater->SetResult(&own);
    updater->assign = [] { throw std::bad_alloc(); };
    auto result = FramedResult<Sum>(0x44);
    const auto before = result.Bytes();
    EXPECT_THROW(updater->GetResult(result.as<UpdateResult>()), std::bad_alloc);
    EXPECT_EQ(result.Bytes(), before);
}

// ---- hooks that an updater need not override

TEST(Updatable, HasHooksThatDoNothing) {
    auto options = FramedOptions<SumOptions>();
    Default updater(options.record());
    updater.DoUpdate(Term{});
    updater.InitResult();
    updater.AssignResultData();
    EXPECT_EQ(updater.GetState(), 0);
}

TEST(Updatable, UpdatesWithTheHooksThatDoNothing) {
    auto options = FramedOptions<SumOptions>();
    Default updater(options.record());
    auto input = FramedInput<Term>();
    updater.Update(input.as<UpdateData>());
    EXPECT_EQ(updater.GetState(), 0);
}

// ---- Initializable

TEST(Initializable, InitializesWhenItIsNeeded) {
    const auto updater = MakeScripted();
    updater->needInitialize = [](Term&) { return true; };
    updater->ReInitialize(Term{});
    EXPECT_EQ(updater->log, (Log{"NeedInitialize", "DoInitialize"}));
}

TEST(Initializable, DoesNothingMoreWhenItIsNotNeeded) {
    const auto updater = MakeScripted();
    updater->ReInitialize(Term{});
    EXPECT_EQ(updater->log, Log{"NeedInitialize"});
}

// ---- layout of the objects

Log slots;

/// Notes which of its functions a slot holds.
class SlotUpdater : public Updatable<ProcessOptions, VoLInputData, VoLOutputData> {
public:
    using Updatable::Updatable;
    void Update(UpdateData* /*data*/) override { slots.emplace_back("Update"); }
    int32_t GetState() override {
        slots.emplace_back("GetState");
        return 42;
    }
    void GetResult(UpdateResult* /*out*/) override { slots.emplace_back("GetResult"); }
    void DoUpdate(VoLInputData data) override { slots.push_back("DoUpdate " + std::to_string(data.Header)); }
    void InitResult() override { slots.emplace_back("InitResult"); }
    void AssignResultData() override { slots.emplace_back("AssignResultData"); }
    ~SlotUpdater() override { slots.emplace_back("destructor"); }
    bool NeedInitialize(VoLInputData data) override {
        slots.push_back("NeedInitialize " + std::to_string(data.Header));
        return true;
    }
    void DoInitialize(VoLInputData data) override { slots.push_back("DoInitialize " + std::to_string(data.Header)); }
    void ReInitialize(VoLInputData data) override { slots.push_back("ReInitialize " + std::to_string(data.Header)); }
    void Dispose() override { slots.emplace_back("Dispose"); }
};

class UpdatableSlots : public testing::Test {
protected:
    void SetUp() override {
        auto options = FramedOptions<ProcessOptions>();
        updater = new SlotUpdater(options.record());
        slots.clear();
    }
    void TearDown() override { delete updater; }

    SlotUpdater* updater = nullptr;
};

TEST_F(UpdatableSlots, OfTheInterfaceAreUpdateGetStateAndGetResult) {
    auto* const interface = static_cast<IUpdatable*>(updater);
    CallSlot<void, UpdateData*>(interface, 0, nullptr);
    EXPECT_EQ(CallSlot<int32_t>(interface, 1), 42);
    CallSlot<void, UpdateResult*>(interface, 2, nullptr);
    EXPECT_EQ(slots, (Log{"Update", "GetState", "GetResult"}));
}

TEST_F(UpdatableSlots, GoOnWithTheHooks) {
    CallSlot<void, VoLInputData>(updater, 3, VoLInputData{6, {}});
    CallSlot<void>(updater, 4);
    CallSlot<void>(updater, 5);
    EXPECT_EQ(slots, (Log{"DoUpdate 6", "InitResult", "AssignResultData"}));
}

TEST_F(UpdatableSlots, GoOnWithTheDestructor) {
    CallSlot<void>(updater, 7);  // slot 6 destroys, slot 7 frees as well
    updater = nullptr;
    EXPECT_EQ(slots, Log{"destructor"});
}

TEST_F(UpdatableSlots, OfTheInitializableAreTheQuestionTheInitializationAndBoth) {
    auto* const initializable = static_cast<Initializable<VoLInputData>*>(updater);
    EXPECT_TRUE((CallSlot<bool, VoLInputData>(initializable, 0, VoLInputData{1, {}})));
    CallSlot<void, VoLInputData>(initializable, 1, VoLInputData{2, {}});
    CallSlot<void, VoLInputData>(initializable, 2, VoLInputData{3, {}});
    EXPECT_EQ(slots, (Log{"NeedInitialize 1", "DoInitialize 2", "ReInitialize 3"}));
}

TEST_F(UpdatableSlots, OfAnInterfaceAloneDoNothing) {
    struct Idle : IUpdatable {};
    Idle idle;
    auto result = FramedResult<VoLOutputData>(0x12);
    const auto before = result.Bytes();
    CallSlot<void, UpdateData*>(&idle, 0, nullptr);
    EXPECT_EQ(CallSlot<int32_t>(&idle, 1), 0);
    CallSlot<void, UpdateResult*>(&idle, 2, result.as<UpdateResult>());
    EXPECT_EQ(result.Bytes(), before);
}

TEST_F(UpdatableSlots, OfABackgroundModelEndWithItsOverrides) {
    auto options = FramedOptions<BackgroundOptions>();
    *options = {0, 0.5F, 100, 10.0F, 0.0F};
    BackgroundUpdatingSystem model(options.record());
    std::vector<uint8_t> pixels(36, 50);  // 4 x 3 pixels
    BackgroundData frame{};
    frame.Image = {pixels.data(), 4, 3, 12, 10'000'000};
    EXPECT_TRUE((CallSlot<bool, BackgroundData>(&model, 8, frame))) << "NeedInitialize";
    CallSlot<void, BackgroundData>(&model, 9, frame);  // DoInitialize
    EXPECT_FALSE((CallSlot<bool, BackgroundData>(&model, 8, frame))) << "NeedInitialize";
    CallSlot<void>(&model, 10);  // Dispose
    auto result = FramedResult<BackgroundResult>();
    EXPECT_THROW(model.GetResult(result.as<UpdateResult>()), std::logic_error) << "the result is gone";
}

TEST_F(UpdatableSlots, OfADenseFlowEndWithItsOverridesAndItsEndKeepsTheSize) {
    auto options = FramedOptions<OFCOptions>();
    DenseOpticalFlowCalculator calculator(options.record());
    std::vector<uint8_t> pixels(36, 50);  // 4 x 3 pixels
    OFCData frame{};
    frame.Image = {pixels.data(), 4, 3, 12, 0};
    EXPECT_TRUE((CallSlot<bool, OFCData>(&calculator, 8, frame))) << "NeedInitialize";
    CallSlot<void, OFCData>(&calculator, 9, frame);  // DoInitialize
    EXPECT_FALSE((CallSlot<bool, OFCData>(&calculator, 8, frame))) << "NeedInitialize";
    CallSlot<void>(&calculator, 10);  // Dispose
    auto result = FramedResult<OFCResult>();
    EXPECT_THROW(calculator.GetResult(result.as<UpdateResult>()), std::logic_error) << "the result is gone";
    EXPECT_FALSE((CallSlot<bool, OFCData>(&calculator, 8, frame))) << "the size stays";
}

TEST_F(UpdatableSlots, OfATrackerEndWithItsOverridesOfWhichTheSecondTrainsIt) {
    auto options = FramedOptions<MosseTrackerOptions>();
    MosseTracker tracker(options.record());
    std::vector<uint8_t> pixels(std::size_t{16} * 16 * 3, 50);
    MosseTrackerData frame{};
    frame.Image = {pixels.data(), 16, 16, 48, 0};
    frame.InitialRect = {2, 3, 8, 9};
    EXPECT_TRUE((CallSlot<bool, MosseTrackerData>(&tracker, 8, frame))) << "NeedInitialize";
    CallSlot<void, MosseTrackerData>(&tracker, 9, frame);  // DoInitialize
    EXPECT_FALSE((CallSlot<bool, MosseTrackerData>(&tracker, 8, frame))) << "NeedInitialize";
    auto result = FramedResult<MosseTrackerResult>(0xA5);
    tracker.GetResult(result.as<UpdateResult>());
    EXPECT_EQ(result->TargetRect.X, 2);
    EXPECT_EQ(result->TargetRect.Width, 8);
    EXPECT_EQ(result->Found, 0) << "nothing was searched yet";
}

TEST(UpdatableLayout, HasTheInterfaceThenTheOptionsThenTheInitializable) {
    auto options = FramedOptions<ProcessOptions>();
    SlotUpdater updater(options.record());
    const auto* const start = reinterpret_cast<char*>(&updater);
    EXPECT_EQ(reinterpret_cast<char*>(static_cast<IUpdatable*>(&updater)) - start, 0);
    EXPECT_EQ(reinterpret_cast<char*>(static_cast<Disposable*>(&updater)) - start, 8);
    EXPECT_EQ(reinterpret_cast<char*>(static_cast<Initializable<VoLInputData>*>(&updater)) - start, 24)
        << "a table and eight bytes of options";
}

TEST(UpdatableLayout, AddsAStateAndAPointerToItsBases) {
    EXPECT_EQ(sizeof(Updatable<ProcessOptions, VoLInputData, VoLOutputData>), 32U + 8U + 8U);
}

TEST(UpdatableLayout, IsAnInterfaceOptionedAndInitializable) {
    using Frame = Updatable<BackgroundOptions, BackgroundData, BackgroundResult>;
    EXPECT_TRUE((std::is_base_of_v<IUpdatable, Frame>));
    EXPECT_TRUE((std::is_base_of_v<Optioned<BackgroundOptions>, Frame>));
    EXPECT_TRUE((std::is_base_of_v<Initializable<BackgroundData>, Frame>));
}

// ---- families

TEST(UpdaterFamilies, OfTheBackgroundStandInOneChain) {
    EXPECT_TRUE((std::is_base_of_v<Updatable<BackgroundOptions, BackgroundData, BackgroundResult>, BackgroungModel>));
    EXPECT_TRUE((std::is_base_of_v<BackgroungModel, CVBackgroungModel>));
    EXPECT_TRUE((std::is_base_of_v<CVBackgroungModel, BackgroundUpdatingSystem>));
}

TEST(UpdaterFamilies, OfTheFlowStandInOneChain) {
    EXPECT_TRUE((std::is_base_of_v<Updatable<OFCOptions, OFCData, OFCResult>, OFCBase>));
    EXPECT_TRUE((std::is_base_of_v<OFCBase, CVOpticalFlowCalculator>));
}

/// A family's base made concrete, with nothing of its own.
template <class Base, class Data>
class Plain : public Base {
public:
    using Base::Base;
    void DoInitialize(Data /*data*/) override {}
};

TEST(UpdaterFamilies, OfTheBackgroundNeedNoInitializationByDefault) {
    auto options = FramedOptions<BackgroundOptions>();
    Plain<BackgroungModel, BackgroundData> model(options.record());
    EXPECT_FALSE(model.NeedInitialize(BackgroundData{}));
}

TEST(UpdaterFamilies, OfTheFlowNeedNoInitializationByDefault) {
    auto options = FramedOptions<OFCOptions>();
    Plain<OFCBase, OFCData> calculator(options.record());
    EXPECT_FALSE(calculator.NeedInitialize(OFCData{}));
}

TEST(UpdaterFamilies, OfTheBackgroundOnOpenCVTakeNothingInByDefault) {
    auto options = FramedOptions<BackgroundOptions>();
    Plain<CVBackgroungModel, BackgroundData> model(options.record());
    auto input = FramedInput<BackgroundData>();
    model.Update(input.as<UpdateData>());
    EXPECT_EQ(model.GetState(), 0);
}

TEST(UpdaterFamilies, OfTheFlowOnOpenCVTakeNothingInByDefault) {
    auto options = FramedOptions<OFCOptions>();
    Plain<CVOpticalFlowCalculator, OFCData> calculator(options.record());
    auto input = FramedInput<OFCData>();
    calculator.Update(input.as<UpdateData>());
    EXPECT_EQ(calculator.GetState(), 0);
}

}  // namespace
