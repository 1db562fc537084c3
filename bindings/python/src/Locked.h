/// @file
/// Operations and results as Python objects hold them.
#pragma once

#include <pybind11/pybind11.h>
#include <unistd.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "Lock.h"

namespace quarry::python {

namespace py = pybind11;

/// Releases the interpreter's lock and takes it again at the end.
class Released {
public:
    Released() : thread(PyEval_SaveThread()) {}
    Released(const Released&) = delete;
    Released& operator=(const Released&) = delete;
    Released(Released&&) = delete;
    Released& operator=(Released&&) = delete;
    ~Released() {
        try {
            PyEval_RestoreThread(thread);
        } catch (...) {
            // The interpreter has ended meanwhile and wants to end this thread by an exception, which must not leave a
            // destructor. Wait instead: the process is about to exit.
            while (true) pause();
        }
    }

private:
    PyThreadState* thread;
};

/// A result that is destroyed under the lock of its operation.
template <class Result>
class Kept {
public:
    Kept(Result&& result_, std::shared_ptr<Lock> lock_)
        : lock(std::move(lock_)), result(std::make_unique<Result>(std::move(result_))) {}
    Kept(const Kept&) = delete;
    Kept& operator=(const Kept&) = delete;
    Kept(Kept&&) = delete;
    Kept& operator=(Kept&&) = delete;
    /// Call it under the interpreter's lock, which it releases while it waits.
    ~Kept() {
        if (lock->Try()) {
            End();
        } else if (lock->IsOrphaned()) {
            // The fork may have interrupted the operation in any state, so the result is leaked.
            static_cast<void>(result.release());
        } else {
            const Released released;
            lock->Wait();
            End();
        }
    }

    const Result& operator*() const { return *result; }

private:
    void End() {
        result.reset();
        lock->Give();
    }

    std::shared_ptr<Lock> lock;
    std::unique_ptr<Result> result;
};

/// A Python object that owns `content`, for use as the base of arrays over it.
template <class Content>
py::capsule CapsuleOf(std::unique_ptr<Content> content) {
    py::capsule capsule(content.get(),
                        [](void* owned) { std::unique_ptr<Content>(static_cast<Content*>(owned)).reset(); });
    static_cast<void>(content.release());
    return capsule;
}

/// A result and the Python object that owns it.
template <class Result>
struct Given {
    const Result& result;
    py::capsule owner;
};

/// An operation that Python threads may share.
template <class Operation>
class Locked {
public:
    template <class... Options>
    explicit Locked(Options&&... options) : operation(std::make_unique<Operation>(std::forward<Options>(options)...)) {}
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    Locked(Locked&&) = delete;
    Locked& operator=(Locked&&) = delete;
    ~Locked() {
        // The fork may have interrupted the operation in any state, so it is leaked.
        if (lock->IsOrphaned()) static_cast<void>(operation.release());
    }

    /// Runs a task with the operation, under the operation's lock and without the interpreter's lock.
    /// @throws std::runtime_error  another thread was using it when this process was forked
    template <class Task>
    auto Run(Task task) {
        const bool taken = lock->Try();
        if (!taken && lock->IsOrphaned()) {
            throw std::runtime_error(
                "quarry: another thread was using this object when the process was forked; create another");
        }
        const Released released;
        if (!taken) lock->Wait();
        const Turn turn{*lock};
        return task(*operation);
    }

    /// The same for a task whose result owns buffers of the library.
    template <class Task>
    auto Give(Task task) {
        auto result = Run(std::move(task));
        auto kept = std::make_unique<Kept<decltype(result)>>(std::move(result), lock);
        const auto& content = **kept;
        return Given<decltype(result)>{content, CapsuleOf(std::move(kept))};
    }

private:
    struct Turn {
        Lock& lock;
        ~Turn() { lock.Give(); }
    };

    std::shared_ptr<Lock> lock = std::make_shared<Lock>();
    std::unique_ptr<Operation> operation;
};

}  // namespace quarry::python

namespace pybind11::detail {

/// Refuses an object whose `__init__` has not run; pybind11 would pass on uninitialised memory.
template <class Operation>
struct type_caster<quarry::python::Locked<Operation>> : type_caster_base<quarry::python::Locked<Operation>> {
    using Base = type_caster_base<quarry::python::Locked<Operation>>;

    bool load(handle given, bool convert) {
        const type_info* const type = get_type_info(typeid(quarry::python::Locked<Operation>));
        if (PyObject_TypeCheck(given.ptr(), type->type) == 0) return false;
        return reinterpret_cast<instance*>(given.ptr())->get_value_and_holder(type).holder_constructed() &&
               Base::load(given, convert);
    }
};

}  // namespace pybind11::detail
