/// @file
/// Options that several verbs have, and checks of their values.
#pragma once

#include <Quarry/Quarry.h>

#include <CLI/CLI.hpp>
#include <array>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "SelectedFrames.h"

namespace quarry::command {

/// Checks that a value is a number from `low` to `high`.
CLI::Validator Within(double low, double high);

/// Checks that a file name ends in one of these.
CLI::Validator EndsIn(const std::vector<std::string>& extensions);

/// Checks that a file name is that of a picture that can be written.
CLI::Validator EndsAsPicture();

/// Reads two whole numbers of 16 bits with a comma between them; parameters as for FourWholeNumbers.
std::array<int, 2> TwoWholeNumbers(const std::string& option, const std::string& text, const std::string& form);

/// Reads four whole numbers of 16 bits with commas between them.
/// @param option  the option that has the value, for the error
/// @param form    what the numbers are, for the error: "X,Y,WIDTH,HEIGHT"
/// @throws CLI::ValidationError  the text is anything else
std::array<int, 4> FourWholeNumbers(const std::string& option, const std::string& text, const std::string& form);

/// Reads four numbers from 0 to 1 with commas between them; parameters as for FourWholeNumbers.
std::array<float, 4> FourShares(const std::string& option, const std::string& text, const std::string& form);

/// Reads a part of a picture, in fractions of its width and height, from X,Y,WIDTH,HEIGHT.
/// @throws CLI::ValidationError  the text is anything else, or the part is empty or reaches beyond the picture
RelRect AreaOf(const std::string& option, const std::string& text);

/// Reads a width and a height, both whole numbers from 1 to 32767, such as 640x480.
/// @param form  what the numbers are, for the error: "WIDTHxHEIGHT"
/// @throws CLI::ValidationError  the text is anything else
cv::Size WidthAndHeight(const std::string& option, const std::string& text, const std::string& form);

/// The type name of an option whose value is a file that the results depend on.
constexpr const char* kFileType = "FILE";

/// Checks that a verb does not overwrite a file that it reads.
/// @param written  the file that the verb writes; empty when it writes none
/// @throws CLI::ValidationError  it is one of the files in `read`
void CheckIsNotAnInput(const std::string& option, const std::string& written, const std::vector<std::string>& read);

/// Adds --frames and --every.
void AddFrameOptions(CLI::App& command, FrameRange& range);

}  // namespace quarry::command
