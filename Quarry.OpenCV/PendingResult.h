#pragma once

namespace quarry {

/// A result under construction: its buffers are released unless it is handed over, so that an exception on the way
/// leaves nothing behind.
template <class Result>
class PendingResult {
public:
    PendingResult(const Result& created, void (*release)(Result*)) : result(created), destroy(release) {}
    PendingResult(const PendingResult&) = delete;
    PendingResult& operator=(const PendingResult&) = delete;
    ~PendingResult() {
        if (destroy != nullptr) destroy(&result);
    }

    const Result* operator->() const { return &result; }

    Result HandOver() {
        destroy = nullptr;
        return result;
    }

private:
    Result result;
    void (*destroy)(Result*);
};

}  // namespace quarry
