/// @file
/// One thread at a time per operation, its results' ends included; Python threads that wait let others run.
#pragma once

#include <mutex>

namespace quarry::python {

/// The lock of an operation and its results. All but `Wait` and `Give` are called under the interpreter's lock: nobody
/// forks in between.
class Lock {
public:
    /// Takes it, if nobody holds it.
    bool Try() {
        if (!mutex.try_lock()) return false;
        takenIn = Generation();
        return true;
    }
    /// Whether it is held by a thread that a fork has left behind in the parent process. It will never be given.
    bool IsOrphaned() {
        if (takenIn == Generation()) return false;
        if (!mutex.try_lock()) return true;
        mutex.unlock();
        return false;
    }
    /// Takes it once its holder gives it. The interpreter's lock is not held meanwhile.
    void Wait() { mutex.lock(); }
    void Give() { mutex.unlock(); }

private:
    /// How many forks lie between this process and the one that loaded the module.
    static int Generation();

    std::mutex mutex;
    int takenIn = Generation();  ///< when it was last found free
};

}  // namespace quarry::python
