// Subtracts a frame from itself, and is told of a short buffer.
#include <Quarry/Host.hpp>
#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <vector>

int main() {
    const std::vector<uint8_t> pixels(64 * 48 * 3, 200);
    quarry::ImageSubtractor subtract;
    const quarry::ImageView frame(pixels, 64, 48);
    const auto difference = subtract(frame, frame);

    const auto bytes = difference.view().elements();
    const bool black = std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte == 0; });
    bool refused = false;
    try {
        (void)quarry::ImageView(pixels, 640, 480);
    } catch (const std::invalid_argument& tooShort) {
        std::puts(tooShort.what());
        refused = true;
    }
    std::printf("difference %d x %d, %s\n", difference.width(), difference.height(), black ? "black" : "not black");
    return black && refused ? 0 : 1;
}
