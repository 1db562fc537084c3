#pragma once

#include <opencv2/core.hpp>

namespace quarry::test {

/// Makes the pixels of one matrix impossible to allocate while it lives: those of the one after `served` more. OpenCV
/// takes them from where `operator new` does not see them.
class FailingMatrix : private cv::MatAllocator {
public:
    explicit FailingMatrix(std::size_t served) : left(served) { cv::Mat::setDefaultAllocator(this); }
    FailingMatrix(const FailingMatrix&) = delete;
    FailingMatrix& operator=(const FailingMatrix&) = delete;
    ~FailingMatrix() override { cv::Mat::setDefaultAllocator(usual); }

    bool HasHappened() const { return happened; }

private:
#if CV_VERSION_MAJOR < 4
    using Access = int;
#else
    using Access = cv::AccessFlag;
#endif

    cv::UMatData* allocate(int dims, const int* sizes, int type, void* data, size_t* step, Access access,
                           cv::UMatUsageFlags usage) const override {
        if (!happened && left-- == 0) {
            happened = true;
            throw cv::Exception(cv::Error::StsNoMem, "no memory for a matrix", __func__, __FILE__, __LINE__);
        }
        // The usual one becomes the matrix's own, so that it may outlive this.
        return usual->allocate(dims, sizes, type, data, step, access, usage);
    }
    bool allocate(cv::UMatData* data, Access access, cv::UMatUsageFlags usage) const override {
        return usual->allocate(data, access, usage);
    }
    void deallocate(cv::UMatData* data) const override {
        usual->deallocate(data);
    }

    cv::MatAllocator* const usual = cv::Mat::getDefaultAllocator();
    mutable std::size_t left;
    mutable bool happened = false;
};

}  // namespace quarry::test
