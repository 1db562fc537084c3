#pragma once

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace quarry::host {

/// What all verbs that go over pictures can be told.
struct PictureOptions {
    std::vector<std::string> pictures;
    std::string annotated;  ///< empty: not wanted
    bool json = false;
};

/// @param read   what is done with the pictures: "Pictures to search"
/// @param shown  what the annotated picture shows: "what was found outlined"
void AddPictureOptions(CLI::App& command, PictureOptions& options, const std::string& read, const std::string& shown);

/// What a verb makes of pictures: it takes one after the other and is asked about the last one.
class PictureByPicture {
public:
    PictureByPicture() = default;
    PictureByPicture(const PictureByPicture&) = delete;
    PictureByPicture& operator=(const PictureByPicture&) = delete;
    virtual ~PictureByPicture() = default;

    /// @param picture  8-bit B, G, R, rows packed
    virtual void Take(const cv::Mat& picture) = 0;

    /// The columns of the table, without those of the file.
    virtual std::string TableHead() const = 0;
    virtual std::string TableRow() const = 0;
    /// The fields of the JSON object, without those of the file.
    virtual nlohmann::ordered_json Fields() const = 0;
    /// Asked only of verbs that have --out.
    virtual cv::Mat Annotated() const { return {}; }
};

/// Refuses an annotated picture where it is not that of one picture.
/// @throws CLI::ValidationError  there are more, or it is the one that is read
void CheckAnnotated(const PictureOptions& options);

/// Goes over the pictures and writes a line for each one, and the annotated picture where it is wanted. After a picture
/// that fails it goes on.
/// @param label  of the progress bar
/// @return the exit code
int RunOverPictures(const PictureOptions& options, const std::string& label, PictureByPicture& verb);

}  // namespace quarry::host
