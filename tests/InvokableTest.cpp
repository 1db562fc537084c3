#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "Quarry.Frame/BackgroundUpdater.h"
#include "Quarry.Frame/BinaryInvokable.h"
#include "Quarry.Frame/ClassificationInvokable.h"
#include "Quarry.Frame/ClustererInvoker.h"
#include "Quarry.Frame/ContourInstersectionInvokableProcessor.h"
#include "Quarry.Frame/ContourMaskInvokableProcessor.h"
#include "Quarry.Frame/FilterInvoker.h"
#include "Quarry.Frame/Invokable.h"
#include "Quarry.Frame/InvokableProcessor.h"
#include "Quarry.Frame/InvokableUpdater.h"
#include "Quarry.Frame/OpticalFlowUpdater.h"
#include "Quarry.OpenCV/CVBackgroundUpdater.h"
#include "Quarry.OpenCV/CVLaplacianVarianceProcessor.h"
#include "Quarry.OpenCV/KMeanColorExtractorInvoker.h"
#include "Quarry.OpenCV/OpticalFlowLineInvoker.h"
#include "Quarry.OpenCV/RectExtractorInvoker.h"
#include "Quarry/Quarry.h"
#include "support/Framed.h"
#include "support/Slots.h"

namespace {

using quarry::test::CallSlot;
using quarry::test::FramedOptions;

/// A handle of a class with a target of the test's choice.
template <class Handle>
class Holding : public Handle {
public:
    explicit Holding(Disposable* held = nullptr) { this->target = held; }
};

/// Counts how often targets of this test were destroyed.
int destructions = 0;

struct Counted : Disposable {
    Counted() { destructions = 0; }
    ~Counted() override { ++destructions; }
};

/// A handle base, the class it casts its target to, and a target of another class that works on the same records.
template <class HandleBase, class Base, class Frame, class Options>
struct ProcessorFamily {
    using Handle = HandleBase;
    using Kind = InvokableProcessor;
    using Interface = IProcessor;
    using OptionsRecord = Options;
    struct Target : Base {
        using Base::Base;
    };
    struct Stranger : Frame {
        using Frame::Frame;
    };
    static Interface* Of(Handle& handle) { return handle.GetProcessor(); }
};

template <class HandleBase, class Base, class Options, class Data, class Result>
struct UpdaterFamily {
    using Handle = HandleBase;
    using Kind = InvokableUpdater;
    using Interface = IUpdatable;
    using OptionsRecord = Options;
    struct Target : Base {
        using Base::Base;
        void DoInitialize(Data /*data*/) override {}
    };
    struct Stranger : Updatable<Options, Data, Result> {
        using Updatable<Options, Data, Result>::Updatable;
        bool NeedInitialize(Data /*data*/) override { return false; }
        void DoInitialize(Data /*data*/) override {}
    };
    static Interface* Of(Handle& handle) { return handle.GetUpdater(); }
};

// One class per family, so that the name of a test says which one failed.
struct Binary : ProcessorFamily<BinaryInvokable, BinaryProcessor,
                                Processor<BinaryImageOperationOptions, BinaryImageOperationData, ImageOperationResult>,
                                BinaryImageOperationOptions> {};
struct Classification : ProcessorFamily<ClassificationInvokable, ClassificationProcessor,
                                        Processor<ClassificationOptions, ClassificationData, ClassificationResult>,
                                        ClassificationOptions> {};
struct Clusterer : ProcessorFamily<ClustererInvoker, ClustererBase,
                                   Processor<ClustererOptions, ClustererData, ClustererResult>, ClustererOptions> {};
struct ContourIntersection
    : ProcessorFamily<ContourInstersectionInvokableProcessor, ContourIntersectionProcessor,
                      Processor<ContourIntersectionProcessorOptions, ContourIntersectionProcessorData,
                                ContourInstersectionProcessorResult>,
                      ContourIntersectionProcessorOptions> {};
struct ContourMask
    : ProcessorFamily<ContourMaskInvokableProcessor, ContourMaskProcessor,
                      Processor<ContourMaskProcessorOptions, ContourMaskProcessorData, ContourMaskProcessorResult>,
                      ContourMaskProcessorOptions> {};
struct Filter
    : ProcessorFamily<FilterInvoker, FilterBase, Processor<FilterOptions, FilterData, FilterResult>, FilterOptions> {};
struct KMeanColor : ProcessorFamily<KMeanColorExtractorInvoker, KMeanColorExtractor,
                                    Processor<KMeanOptions, KMeanData, KMeanResult>, KMeanOptions> {};
struct OpticalFlowLine : ProcessorFamily<OpticalFlowLineInvoker, OpticalFlowLineProcessor,
                                         Processor<OFLineOptions, OFLineData, OFLineResult>, OFLineOptions> {};
struct Rectangle
    : ProcessorFamily<RectExtractorInvoker, RectExtractor,
                      Processor<RectExtractorOptions, RectExtractorData, RectExtractorResult>, RectExtractorOptions> {};
struct Background
    : UpdaterFamily<BackgroundUpdater, BackgroungModel, BackgroundOptions, BackgroundData, BackgroundResult> {};
struct OpticalFlow : UpdaterFamily<OpticalFlowUpdater, OFCBase, OFCOptions, OFCData, OFCResult> {};

using Families = testing::Types<Binary, Classification, Clusterer, ContourIntersection, ContourMask, Filter, KMeanColor,
                                OpticalFlowLine, Rectangle, Background, OpticalFlow>;

template <class Family>
class HandleFamilies : public testing::Test {
protected:
    template <class Target>
    Target* Make() {
        auto options = FramedOptions<typename Family::OptionsRecord>();
        return new Target(options.record());
    }
};
TYPED_TEST_SUITE(HandleFamilies, Families, );

TYPED_TEST(HandleFamilies, GiveNullWithoutATarget) {
    Holding<typename TypeParam::Handle> handle;
    EXPECT_EQ(TypeParam::Of(handle), nullptr);
}

TYPED_TEST(HandleFamilies, GiveTheInterfaceOfATargetOfTheirClass) {
    auto* const target = this->template Make<typename TypeParam::Target>();
    Holding<typename TypeParam::Handle> handle(target);
    EXPECT_EQ(TypeParam::Of(handle), static_cast<typename TypeParam::Interface*>(target));
}

TYPED_TEST(HandleFamilies, GiveNullForATargetThatOnlyHasTheSameRecords) {
    Holding<typename TypeParam::Handle> handle(this->template Make<typename TypeParam::Stranger>());
    EXPECT_EQ(TypeParam::Of(handle), nullptr);
}

TYPED_TEST(HandleFamilies, GiveNullForATargetThatIsNothingButDisposable) {
    Holding<typename TypeParam::Handle> handle(new Counted);
    EXPECT_EQ(TypeParam::Of(handle), nullptr);
}

TYPED_TEST(HandleFamilies, HaveTheirAnswerInTheSecondSlot) {
    auto* const target = this->template Make<typename TypeParam::Target>();
    Holding<typename TypeParam::Handle> handle(target);
    EXPECT_EQ(CallSlot<typename TypeParam::Interface*>(&handle, 1),
              static_cast<typename TypeParam::Interface*>(target));
}

TYPED_TEST(HandleFamilies, HaveTheirTargetInTheFirstSlot) {
    auto* const target = this->template Make<typename TypeParam::Target>();
    Holding<typename TypeParam::Handle> handle(target);
    EXPECT_EQ(CallSlot<Disposable*>(&handle, 0), static_cast<Disposable*>(target));
}

TYPED_TEST(HandleFamilies, AreHandlesOfTheirKind) {
    EXPECT_TRUE((std::is_base_of_v<typename TypeParam::Kind, typename TypeParam::Handle>));
    EXPECT_TRUE((std::is_base_of_v<Invokable, typename TypeParam::Kind>));
}

TYPED_TEST(HandleFamilies, HoldNothingBesidesTheTarget) {
    EXPECT_EQ(sizeof(typename TypeParam::Handle), sizeof(Invokable));
}

TYPED_TEST(HandleFamilies, DestroyTheirTargetOnce) {
    struct Watched : TypeParam::Target {
        using TypeParam::Target::Target;
        ~Watched() override { ++destructions; }
    };
    destructions = 0;
    Dispose(new Holding<typename TypeParam::Handle>(this->template Make<Watched>()));
    EXPECT_EQ(destructions, 1);
}

TEST(Invokable, HoldsATableAndOnePointer) {
    EXPECT_EQ(sizeof(Invokable), 2 * sizeof(void*));
}

TEST(Invokable, HasNoDestructorAmongItsSlots) {
    EXPECT_TRUE(std::is_polymorphic_v<Invokable>);
    EXPECT_FALSE(std::has_virtual_destructor_v<Invokable>);
}

TEST(Invokable, HasNoTargetAtFirst) {
    Invokable handle;
    EXPECT_EQ(handle.GetTarget(), nullptr);
}

TEST(Invokable, GivesItsTarget) {
    auto* const target = new Counted;
    Holding<Invokable> handle(target);
    EXPECT_EQ(handle.GetTarget(), target);
}

TEST(Invokable, HasTheTargetInItsFirstSlot) {
    auto* const target = new Counted;
    Holding<Invokable> handle(target);
    EXPECT_EQ(CallSlot<Disposable*>(&handle, 0), target);
}

TEST(Invokable, KeepsTheTargetBehindItsTable) {
    auto* const target = new Counted;
    Holding<Invokable> handle(target);
    EXPECT_EQ(reinterpret_cast<Disposable**>(&handle)[1], target);
}

TEST(Invokable, DestroysItsTargetOnce) {
    auto* const target = new Counted;
    { const Holding<Invokable> handle(target); }
    EXPECT_EQ(destructions, 1);
}

TEST(Invokable, DestroysNothingWithoutATarget) {
    { const Counted bystander; }
    { const Holding<Invokable> handle; }
    EXPECT_EQ(destructions, 1) << "the bystander alone";
}

TEST(Invokable, CanNotBeCopied) {
    EXPECT_FALSE(std::is_copy_constructible_v<Invokable>);
    EXPECT_FALSE(std::is_copy_assignable_v<Invokable>);
}

TEST(InvokableProcessor, GivesNoProcessorByDefault) {
    auto options = FramedOptions<ProcessOptions>();
    Holding<InvokableProcessor> handle(new VarianceOfLaplacianProcessor(options.record()));
    EXPECT_EQ(handle.GetProcessor(), nullptr);
}

TEST(InvokableUpdater, GivesNoUpdaterByDefault) {
    auto options = FramedOptions<BackgroundOptions>();
    Holding<InvokableUpdater> handle(new BackgroundUpdatingSystem(options.record()));
    EXPECT_EQ(handle.GetUpdater(), nullptr);
}

/// A handle that notes which of its functions are called.
template <class Handle>
struct Noting : Handle {
    Disposable* GetTarget() override {
        slots += "GetTarget ";
        return nullptr;
    }
    std::string slots;
};

TEST(InvokableSlots, OfAProcessorsHandleAreGetTargetAndGetProcessor) {
    struct NotingProcessor : Noting<InvokableProcessor> {
        IProcessor* GetProcessor() override {
            slots += "GetProcessor";
            return nullptr;
        }
    };
    NotingProcessor handle;
    CallSlot<Disposable*>(&handle, 0);
    CallSlot<IProcessor*>(&handle, 1);
    EXPECT_EQ(handle.slots, "GetTarget GetProcessor");
}

TEST(InvokableSlots, OfAnUpdatersHandleAreGetTargetAndGetUpdater) {
    struct NotingUpdater : Noting<InvokableUpdater> {
        IUpdatable* GetUpdater() override {
            slots += "GetUpdater";
            return nullptr;
        }
    };
    NotingUpdater handle;
    CallSlot<Disposable*>(&handle, 0);
    CallSlot<IUpdatable*>(&handle, 1);
    EXPECT_EQ(handle.slots, "GetTarget GetUpdater");
}

TEST(HandleOfASharpness, CastsItsTargetItself) {
    EXPECT_TRUE((std::is_base_of_v<InvokableProcessor, CVLaplacianVarianceProcessor>));
    auto options = FramedOptions<ProcessOptions>();
    CVLaplacianVarianceProcessor handle(options.record());
    ASSERT_NE(handle.GetProcessor(), nullptr);
    EXPECT_EQ(dynamic_cast<VarianceOfLaplacianProcessor*>(handle.GetTarget()), handle.GetProcessor());
}

TEST(HandleOfABackgroundModel, IsOfItsFamily) {
    EXPECT_TRUE((std::is_base_of_v<BackgroundUpdater, CVBackgroundUpdater>));
    auto options = FramedOptions<BackgroundOptions>();
    CVBackgroundUpdater handle(options.record());
    ASSERT_NE(handle.GetUpdater(), nullptr);
    EXPECT_EQ(dynamic_cast<BackgroundUpdatingSystem*>(handle.GetTarget()), handle.GetUpdater());
}

}  // namespace
