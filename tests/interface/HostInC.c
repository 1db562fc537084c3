/* A host in plain C: loads the library, lays its records out, and checks what comes back against its own arithmetic.
 * A failure of the library is a C++ exception and ends this program, so every call here must succeed. */
#include <dlfcn.h>
#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "Quarry/Quarry.h"

enum { kWidth = 24, kHeight = 16, kChannels = 3, kSquare = 6 };

static int failures = 0;

static void Check(int holds, const char* what) {
    if (holds) return;
    printf("failed: %s\n", what);
    ++failures;
}

/* The functions that this host uses, found by name. */
static struct {
    void (*CreateSharpness)(void**, ProcessOptions*);
    void (*CreateBackground)(void**, BackgroundOptions*);
    void (*Process)(void*, ProcessData*, ProcessResult*);
    void (*DisposeResult)(void*, ProcessResult*);
    int32_t (*Update)(void*, UpdateData*);
    void (*GetUpdateResult)(void*, UpdateResult*);
    void (*Dispose)(void*);
} quarry;

// NOLINTBEGIN(concurrency-mt-unsafe): this host has one thread
static void Find(void* library, const char* name, void* function) {
    void* const address = dlsym(library, name);
    if (address == NULL) {
        printf("the library lacks %s\n", name);
        exit(EXIT_FAILURE);
    }
    memcpy(function, &address, sizeof(address));
}

static void Load(const char* path) {
    void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (library == NULL) {
        printf("%s\n", dlerror());
        exit(EXIT_FAILURE);
    }
    Find(library, "CreateCVLaplacianVarianceProcessor", &quarry.CreateSharpness);
    Find(library, "CreateCVBackgroundModel", &quarry.CreateBackground);
    Find(library, "Process", &quarry.Process);
    Find(library, "DisposeResult", &quarry.DisposeResult);
    Find(library, "Update", &quarry.Update);
    Find(library, "GetUpdateResult", &quarry.GetUpdateResult);
    Find(library, "Dispose", &quarry.Dispose);
}
// NOLINTEND(concurrency-mt-unsafe)

static uint8_t* PixelAt(uint8_t* pixels, int x, int y) {
    return pixels + ((size_t)y * kWidth + (size_t)x) * kChannels;
}

/* A grey gradient, and a bright square at (left, top) when there is room for it. */
static void Draw(uint8_t* pixels, int left, int top) {
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const int inside = x >= left && x < left + kSquare && y >= top && y < top + kSquare;
            const int level = inside ? 250 : 20 + 2 * x + y;
            memset(PixelAt(pixels, x, y), level, kChannels);
        }
    }
}

/* Mirrors an index at the border without repeating the border pixel. */
static int Mirrored(int index, int size) {
    return index < 0 ? -index : index >= size ? 2 * size - 2 - index : index;
}

static double LevelAt(uint8_t* pixels, int x, int y) {
    return *PixelAt(pixels, Mirrored(x, kWidth), Mirrored(y, kHeight));
}

/* Variance of the sum of the second differences of a grey frame. */
static double VarianceOfLaplacian(uint8_t* pixels) {
    double sum = 0;
    double squares = 0;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const double horizontal = LevelAt(pixels, x - 1, y) - 2 * LevelAt(pixels, x, y) + LevelAt(pixels, x + 1, y);
            const double vertical = LevelAt(pixels, x, y - 1) - 2 * LevelAt(pixels, x, y) + LevelAt(pixels, x, y + 1);
            sum += horizontal + vertical;
            squares += (horizontal + vertical) * (horizontal + vertical);
        }
    }
    const double count = kWidth * kHeight;
    return squares / count - (sum / count) * (sum / count);
}

/* Writes a number at an offset of a record, as a host without these headers would. */
static void Put(unsigned char* record, int offset, const void* value, size_t width) {
    memcpy(record + offset, value, width);
}

static void Put32(unsigned char* record, int offset, int32_t value) {
    Put(record, offset, &value, sizeof(value));
}

/* Sharpness, with records that are nothing but bytes. */
static void MeasureSharpness(void) {
    uint8_t pixels[kWidth * kHeight * kChannels];
    Draw(pixels, 9, 5);
    const uint8_t* const first = pixels;

    _Alignas(8) unsigned char memory[8 + 8 + 4];
    unsigned char* const options = memory + 8;
    memset(memory, 0xEE, sizeof(memory));
    Put32(options, -4, 8);
    Put32(options, 8, 0x0F0F0F0F);

    void* handle = NULL;
    quarry.CreateSharpness(&handle, (ProcessOptions*)(void*)options);
    Check(handle != NULL, "a sharpness processor is created");
    memset(memory, 0, sizeof(memory));

    _Alignas(8) unsigned char inputMemory[8 + 40 + 4];
    unsigned char* const input = inputMemory + 8;
    memset(inputMemory, 0xEE, sizeof(inputMemory));
    Put32(input, -4, 40);
    Put(input, 8, &first, sizeof(first));
    Put32(input, 16, kWidth);
    Put32(input, 20, kHeight);
    Put32(input, 40, 0x10F0F0F0);

    _Alignas(8) unsigned char resultMemory[8 + 8 + 4];
    unsigned char* const result = resultMemory + 8;
    memset(resultMemory, 0xEE, sizeof(resultMemory));
    Put32(result, -4, 8);
    Put32(result, 8, 0x1FFF0000);

    quarry.Process(handle, (ProcessData*)(void*)input, (ProcessResult*)(void*)result);
    int32_t status = -1;
    float variance = 0;
    memcpy(&status, result, sizeof(status));
    memcpy(&variance, result + 4, sizeof(variance));
    const double expected = VarianceOfLaplacian(pixels);
    Check(status == 0, "the status of a sharpness is 0");
    Check(fabs((double)variance - expected) <= 1e-5 * expected, "the sharpness is the variance of the Laplacian");
    Check(resultMemory[0] == 0xEE && resultMemory[3] == 0xEE, "the bytes before the result's frame are untouched");

    quarry.DisposeResult(handle, (ProcessResult*)(void*)result);
    quarry.Dispose(handle);
}

/* How many pixels of a mask differ from what a bright square at (left, top) makes of it. */
static int CountWrongPixels(const uint8_t* mask, int left, int top) {
    int wrong = 0;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const int inside = x >= left && x < left + kSquare && y >= top && y < top + kSquare;
            wrong += mask[y * kWidth + x] != (inside ? 255 : 0);
        }
    }
    return wrong;
}

/* Background, with the frames around records that the headers declare. */
static void ModelBackground(void) {
    enum { kTicksPerSecond = 10000000, kNowhere = -100 };
    static uint8_t empty[kWidth * kHeight * kChannels];
    static uint8_t visited[kWidth * kHeight * kChannels];
    Draw(empty, kNowhere, kNowhere);
    Draw(visited, 12, 4);

    QUARRY_FRAMED(BackgroundOptions)
    options = {0, sizeof(BackgroundOptions), {0, 0.5F, 100, 60.0F, 0.0F}, QUARRY_OPTIONS_TAG};
    void* handle = NULL;
    quarry.CreateBackground(&handle, &options.Record);
    Check(handle != NULL, "a background model is created");

    QUARRY_FRAMED(BackgroundData)
    input = {0,
             sizeof(BackgroundData),
             {0, {empty, kWidth, kHeight, kWidth * kChannels, 5000ULL * kTicksPerSecond}, 0},
             QUARRY_INPUT_TAG};
    Check(quarry.Update(handle, (UpdateData*)(void*)&input.Record) == Accumulating, "the first frame is accumulated");

    QUARRY_FRAMED(BackgroundResult)
    result = {0, sizeof(BackgroundResult), {-1, NULL, NULL, NULL}, QUARRY_RESULT_TAG};
    quarry.GetUpdateResult(handle, (UpdateResult*)(void*)&result.Record);
    Check(result.Record.Status == 0, "the status of a background is 0");
    Check(result.Record.BackgroundImage->width == kWidth && result.Record.BackgroundImage->height == kHeight,
          "the background has the frame's size");
    Check(result.Record.BackgroundImage->stride == kWidth * kChannels, "the background's rows are packed");
    Check(result.Record.BackgroundImage->timestamp == 5000ULL * kTicksPerSecond, "the background has the frame's time");
    Check(memcmp(result.Record.BackgroundImage->data, empty, sizeof(empty)) == 0,
          "the first frame becomes the background");
    Check(CountWrongPixels(result.Record.ForegroundMask, kNowhere, kNowhere) == 0, "the first frame has no foreground");

    input.Record.Image.data = visited;
    input.Record.Image.timestamp += kTicksPerSecond / 25;
    Check(quarry.Update(handle, (UpdateData*)(void*)&input.Record) == Accumulating, "the second frame is accumulated");
    quarry.GetUpdateResult(handle, (UpdateResult*)(void*)&result.Record);
    Check(CountWrongPixels(result.Record.ForegroundMask, 12, 4) == 0, "a square that enters is the foreground");

    input.Record.Image.data = empty;
    input.Record.Image.timestamp += 61ULL * kTicksPerSecond;
    Check(quarry.Update(handle, (UpdateData*)(void*)&input.Record) == Ready, "a minute later the background is learnt");

    quarry.Dispose(handle);
}

int main(int argc, char** argv) {
    if (argc != 2) {
        printf("usage: %s <shared object>\n", argv[0]);
        return EXIT_FAILURE;
    }
    Load(argv[1]);
    MeasureSharpness();
    ModelBackground();
    quarry.Dispose(NULL);
    return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
