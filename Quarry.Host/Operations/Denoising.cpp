#include "Operations/Denoising.h"

#include "Operations/Call.h"

namespace quarry::host {

Denoiser::Denoiser() : handle(Create(CreateCVFastNlMeansDenoisingFilter, FilterOptions{})) {}

cv::Mat Denoiser::Denoise(const cv::Mat& picture) {
    return PictureOf(*Processed<FilterResult>(handle, FilterData{0, ImageOf(picture)})->Image);
}

}  // namespace quarry::host
