/// @file
/// What the verbs share in reading their options and in writing their lines.
#pragma once

#include <Quarry/Quarry.h>

#include <CLI/CLI.hpp>
#include <array>
#include <nlohmann/json.hpp>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace quarry::command {

/// A number from `low` to `high`.
CLI::Validator Within(double low, double high);

/// A file name that ends in one of these.
CLI::Validator EndsIn(const std::vector<std::string>& extensions);

/// The same for pictures that are written.
CLI::Validator EndsAsPicture();

/// Two whole numbers of 16 bits with a comma between them; parameters as below.
std::array<int, 2> TwoWholeNumbers(const std::string& option, const std::string& text, const std::string& form);

/// Four whole numbers of 16 bits with commas between them.
/// @param option  the option that they are the value of, as errors name it
/// @param form    how they are meant: "X,Y,WIDTH,HEIGHT"
/// @throws CLI::ValidationError  they are not
std::array<int, 4> FourWholeNumbers(const std::string& option, const std::string& text, const std::string& form);

/// Four numbers from 0 to 1 with commas between them.
std::array<float, 4> FourShares(const std::string& option, const std::string& text, const std::string& form);

/// Part of a picture, in fractions of its width and height, from the value X,Y,WIDTH,HEIGHT.
/// @throws CLI::ValidationError  it is not that, or it is empty or does not lie within the picture
RelRect AreaOf(const std::string& option, const std::string& text);

/// The type of an option whose value is a file that shapes the results.
constexpr const char* kFileType = "FILE";

/// Refuses to write over a file that is read.
/// @param written  empty: nothing is written
/// @throws CLI::ValidationError  it is one of the files that are read
void CheckIsNotAnInput(const std::string& option, const std::string& written, const std::vector<std::string>& read);

/// A width and a height, both whole numbers from 1 to 32767: "640x480".
/// @param form  how they are meant: "WIDTHxHEIGHT"
/// @throws CLI::ValidationError  they are not
cv::Size WidthAndHeight(const std::string& option, const std::string& text, const std::string& form);

/// Text as printf formats it.
[[gnu::format(printf, 1, 2)]] std::string Format(const char* format, ...);

/// The members x, y, width and height.
nlohmann::ordered_json JsonOf(const cv::Rect& rect);

/// The object on a line of its own; what is not UTF-8 in it is replaced.
std::string JsonLine(const nlohmann::ordered_json& object);

}  // namespace quarry::command
