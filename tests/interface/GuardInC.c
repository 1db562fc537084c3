/* A host in plain C that is told of every failure by a status. */
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "Quarry/Guard.h"

enum { kWidth = 24, kHeight = 16, kChannels = 3 };

static int failures = 0;

static void Check(int holds, const char* what) {
    if (holds) return;
    printf("failed: %s (message: %s)\n", what, GuardMessage());
    ++failures;
}

static uint8_t pixels[kWidth * kHeight * kChannels];

static QUARRY_FRAMED(ProcessOptions) options = {0, sizeof(ProcessOptions), {0, 0}, QUARRY_OPTIONS_TAG};
static QUARRY_FRAMED(VoLInputData) input = {0, sizeof(VoLInputData), {0}, QUARRY_INPUT_TAG};
static QUARRY_FRAMED(VoLOutputData) output = {0, sizeof(VoLOutputData), {0, 0.0F}, QUARRY_RESULT_TAG};

static void* NewSharpness(void) {
    void* handle = NULL;
    Check(GuardCreateCVLaplacianVarianceProcessor(&handle, &options.Record) == GuardOk, "a processor is created");
    return handle;
}

static int32_t Measure(void* handle) {
    return GuardProcess(handle, (ProcessData*)&input.Record, (ProcessResult*)&output.Record);
}

static void SucceedsSilently(void) {
    void* const handle = NewSharpness();
    Check(Measure(handle) == GuardOk, "a frame is processed");
    Check(output.Record.Variance > 0, "and measured");
    Check(strcmp(GuardMessage(), "") == 0, "without a message");
    Check(GuardDisposeResult(handle, (ProcessResult*)&output.Record) == GuardOk, "the result is given back");
    Check(GuardDispose(handle) == GuardOk, "the handle ends");
    Check(GuardDispose(NULL) == GuardOk, "no handle is fine, too");
}

static void TellsOfAWrongFrame(void) {
    void* const handle = NewSharpness();
    input.Tag = 0;
    output.Record.Variance = -1;
    Check(Measure(handle) == GuardMarshaling, "a wrong tag is a marshaling failure");
    Check(strcmp(GuardMessage(), "Analysis System data marshaling error") == 0, "with its message");
    Check(output.Record.Variance == -1, "and the result is untouched");
    input.Tag = QUARRY_INPUT_TAG;
    Check(Measure(handle) == GuardOk && strcmp(GuardMessage(), "") == 0, "a success clears the message");
    GuardDispose(handle);
}

static void TellsOfBadArguments(void) {
    void* const handle = NewSharpness();
    int32_t state = -1;
    Check(Measure(NULL) == GuardBadArgument, "a null handle is a bad argument");
    Check(strstr(GuardMessage(), "handle is null") != NULL, "and named");
    Check(GuardUpdate(handle, (UpdateData*)&input.Record, &state) == GuardBadArgument, "a processor takes no update");
    Check(state == -1, "and leaves the state");
    Check(GuardCreateCVLaplacianVarianceProcessor(NULL, &options.Record) == GuardBadArgument, "nowhere to store it");
    GuardDispose(handle);
}

static void TellsOfACallOutOfTurn(void) {
    QUARRY_FRAMED(OFCOptions) flowOptions = {0, sizeof(OFCOptions), {0}, QUARRY_OPTIONS_TAG};
    QUARRY_FRAMED(OFCResult) flow = {0, sizeof(OFCResult), {0}, QUARRY_RESULT_TAG};
    void* handle = NULL;
    Check(GuardCreateCVDenseOpticalFlowCalculator(&handle, &flowOptions.Record) == GuardOk, "an updater is created");
    Check(GuardGetUpdateResult(handle, (UpdateResult*)&flow.Record) == GuardBadArgument, "there is no result yet");
    GuardDispose(handle);
}

static void GivesTheStateWhereItIsWanted(void) {
    QUARRY_FRAMED(OFCOptions) flowOptions = {0, sizeof(OFCOptions), {0}, QUARRY_OPTIONS_TAG};
    QUARRY_FRAMED(OFCData) frame = {0, sizeof(OFCData), {0}, QUARRY_INPUT_TAG};
    void* handle = NULL;
    int32_t state = -1;
    frame.Record.Image = input.Record.Image;
    Check(GuardCreateCVDenseOpticalFlowCalculator(&handle, &flowOptions.Record) == GuardOk, "an updater is created");
    Check(GuardUpdate(handle, (UpdateData*)&frame.Record, NULL) == GuardOk, "the state may be unwanted");
    Check(GuardUpdate(handle, (UpdateData*)&frame.Record, &state) == GuardOk, "and wanted");
    Check(state == Ready, "and is that after both frames");
    GuardDispose(handle);
}

static void TellsWhatOpenCVRefuses(void) {
    void* const handle = NewSharpness();
    input.Record.Image.data = NULL;
    Check(Measure(handle) == GuardOpenCV, "OpenCV refuses a frame without pixels");
    Check(strstr(GuardMessage(), "total() == 0 || data != NULL") != NULL, "and says why");
    input.Record.Image.data = pixels;
    GuardDispose(handle);
}

static void TellsOfALackOfMemory(void) {
    QUARRY_FRAMED(ContourRateMeasuringOptions)
    rateOptions = {0, sizeof(ContourRateMeasuringOptions), {0, 0, 1}, QUARRY_OPTIONS_TAG};
    QUARRY_FRAMED(ContourRateMeasuringInputData)
    shapes = {0, sizeof(ContourRateMeasuringInputData), {0}, QUARRY_INPUT_TAG};
    QUARRY_FRAMED(ContourRateMeasuringOutputData)
    rate = {0, sizeof(ContourRateMeasuringOutputData), {0}, QUARRY_RESULT_TAG};
    void* handle = NULL;
    shapes.Record.CurrentContour.Count = -1; /* no allocation can serve it */
    shapes.Record.PreviousContour.Count = -1;
    shapes.Record.FrameWidth = 1;
    shapes.Record.FrameHeight = 1;
    Check(GuardCreateCVContourRateCalculator(&handle, &rateOptions.Record) == GuardOk, "a processor is created");
    Check(GuardProcess(handle, (ProcessData*)&shapes.Record, (ProcessResult*)&rate.Record) == GuardOutOfMemory,
          "an impossible count is a lack of memory");
    GuardDispose(handle);
}

static void CutsALongReason(void) {
    QUARRY_FRAMED(ClassificationOptions)
    modelOptions = {0, sizeof(ClassificationOptions), {0}, QUARRY_OPTIONS_TAG};
    static const char kName[] = "quarry-guard-broken.xml";
    enum { kDetour = 1200 };
    char path[kDetour + sizeof(kName)];
    void* handle = NULL;
    FILE* const model = fopen(kName, "w");
    Check(model != NULL && fputs("<?xml version=\"1.0\"?>\n<opencv_storage>\n<a></b>\n", model) >= 0,
          "a model is there");
    if (model != NULL) fclose(model);
    for (int i = 0; i < kDetour; ++i) path[i] = i % 2 == 0 ? '.' : '/';
    memcpy(path + kDetour, kName, sizeof(kName));
    modelOptions.Record.CascadePath = path;
    Check(GuardCreateCVCascadeClassifier(&handle, &modelOptions.Record) == GuardOpenCV,
          "OpenCV names the broken model");
    Check(strlen(GuardMessage()) == 511, "a long reason is cut");
    Check(GuardDispose(NULL) == GuardOk && strcmp(GuardMessage(), "") == 0, "and forgotten");
    remove(kName);
}

static void ReleasesTheGrid(void) {
    QUARRY_FRAMED(ContourMaskProcessorOptions)
    gridOptions = {0, sizeof(ContourMaskProcessorOptions), {0, 0.5F, 0.0F}, QUARRY_OPTIONS_TAG};
    QUARRY_FRAMED(ContourMaskProcessorData) frame = {0, sizeof(ContourMaskProcessorData), {0}, QUARRY_INPUT_TAG};
    QUARRY_FRAMED(ContourMaskProcessorResult) grid = {0, sizeof(ContourMaskProcessorResult), {0}, QUARRY_RESULT_TAG};
    void* handle = NULL;
    frame.Record.Image = input.Record.Image;
    frame.Record.GridWidth = 3;
    frame.Record.GridHeight = 2;
    Check(GuardCreateCVContourMaskProcessor(&handle, &gridOptions.Record) == GuardOk, "a processor is created");
    Check(GuardProcess(handle, (ProcessData*)&frame.Record, (ProcessResult*)&grid.Record) == GuardOk, "a grid is made");
    Check(GuardDisposeResult(handle, (ProcessResult*)&grid.Record) == GuardOk, "giving it back succeeds");
    Check(grid.Record.Mask != NULL, "and leaves it");
    Check(GuardDestroyContourMaskProcessorResult(&grid.Record) == GuardOk, "it is released");
    Check(grid.Record.Mask == NULL, "and gone");
    Check(GuardDestroyContourMaskProcessorResult(NULL) == GuardOk, "no grid is fine, too");
    GuardDispose(handle);
}

static void* FailElsewhere(void* handle) {
    Check(strcmp(GuardMessage(), "") == 0, "a new thread has no message");
    Check(Measure(NULL) == GuardBadArgument, "a call of another thread fails");
    return handle;
}

static void KeepsAMessagePerThread(void) {
    pthread_t thread;
    input.Tag = 0;
    void* const handle = NewSharpness();
    Check(Measure(handle) == GuardMarshaling, "a call of this thread fails");
    Check(pthread_create(&thread, NULL, FailElsewhere, NULL) == 0, "a thread starts");
    pthread_join(thread, NULL);
    Check(strcmp(GuardMessage(), "Analysis System data marshaling error") == 0, "the other thread's is not ours");
    input.Tag = QUARRY_INPUT_TAG;
    GuardDispose(handle);
}

int main(void) {
    for (size_t i = 0; i < sizeof(pixels); ++i) pixels[i] = (uint8_t)(i * i % 251);
    input.Record.Image = (Image){pixels, kWidth, kHeight, kWidth * kChannels, 0};
    SucceedsSilently();
    TellsOfAWrongFrame();
    TellsOfBadArguments();
    TellsOfACallOutOfTurn();
    GivesTheStateWhereItIsWanted();
    TellsWhatOpenCVRefuses();
    TellsOfALackOfMemory();
    ReleasesTheGrid();
    CutsALongReason();
    KeepsAMessagePerThread();
    return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
