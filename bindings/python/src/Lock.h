/// @file
/// Locks that let one thread at a time use an operation or destroy its results.
#pragma once

#include <mutex>

namespace quarry::python {

/// The lock of an operation and its results. Call all functions but `Wait` and `Give` under the interpreter's lock, so
/// that no other thread forks meanwhile.
class Lock {
public:
    /// Takes the lock if no thread holds it.
    /// @return whether it was taken
    bool Try() {
        if (!mutex.try_lock()) return false;
        takenIn = Generation();
        return true;
    }
    /// Whether the lock is held by a thread of the parent process, which does not exist in this forked one. Such a lock
    /// is never given.
    bool IsOrphaned() {
        if (takenIn == Generation()) return false;
        if (!mutex.try_lock()) return true;
        mutex.unlock();
        return false;
    }
    /// Waits until the lock is free and takes it. Call it without the interpreter's lock.
    void Wait() { mutex.lock(); }
    void Give() { mutex.unlock(); }

private:
    /// Number of forks between the process that loaded the module and this one.
    static int Generation();

    std::mutex mutex;
    int takenIn = Generation();  ///< generation of the process in which the lock was last found free
};

}  // namespace quarry::python
