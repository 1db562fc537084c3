/* Measures the sharpness of a white frame, which has none. */
#include <Quarry/Guard.h>
#include <Quarry/Version.h>
#include <stdio.h>
#include <string.h>

enum { kWidth = 8, kHeight = 8, kChannels = 3 };

int main(void) {
    static uint8_t pixels[kWidth * kHeight * kChannels];
    QUARRY_FRAMED(ProcessOptions) options = {0, sizeof(ProcessOptions), {0, 0}, QUARRY_OPTIONS_TAG};
    QUARRY_FRAMED(VoLInputData) input = {0, sizeof(VoLInputData), {0}, QUARRY_INPUT_TAG};
    QUARRY_FRAMED(VoLOutputData) result = {0, sizeof(VoLOutputData), {0, -1.0F}, QUARRY_RESULT_TAG};
    void* handle = NULL;
    memset(pixels, 255, sizeof(pixels));
    input.Record.Image = (Image){pixels, kWidth, kHeight, kWidth * kChannels, 0};
    if (GuardCreateCVLaplacianVarianceProcessor(&handle, &options.Record) != GuardOk ||
        GuardProcess(handle, (ProcessData*)&input.Record, (ProcessResult*)&result.Record) != GuardOk) {
        puts(GuardMessage());
        return 1;
    }
    printf("Quarry %s: sharpness %g\n", QUARRY_VERSION, (double)result.Record.Variance);
    GuardDispose(handle);
    return result.Record.Variance == 0.0F ? 0 : 1;
}
