#pragma once

#include <dlfcn.h>

#include <stdexcept>
#include <string>

#include "Quarry/Quarry.h"

namespace quarry::test {

/// The shared object as a stranger has it: loaded at run time, functions found by name. Nothing here links the library.
class Library {
public:
    Library() : object(dlopen(QUARRY_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
        if (object == nullptr) throw std::runtime_error(dlerror());
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() { dlclose(object); }

    /// The function of this name, or null.
    template <class Function>
    Function* Find(const char* name) const {
        return reinterpret_cast<Function*>(dlsym(object, name));
    }

private:
    void* object;

    template <class Function>
    Function* Required(const char* name) const {
        auto* const function = Find<Function>(name);
        if (function == nullptr) throw std::runtime_error(std::string("the shared object lacks ") + name);
        return function;
    }

public:
    decltype(&::Process) Process = Required<decltype(::Process)>("Process");
    decltype(&::DisposeResult) DisposeResult = Required<decltype(::DisposeResult)>("DisposeResult");
    decltype(&::Update) Update = Required<decltype(::Update)>("Update");
    decltype(&::GetUpdateResult) GetUpdateResult = Required<decltype(::GetUpdateResult)>("GetUpdateResult");
    decltype(&::Dispose) Dispose = Required<decltype(::Dispose)>("Dispose");

    /// A factory, by its own name: `library.Factory<ProcessOptions>("CreateCVLaplacianVarianceProcessor")`.
    template <class Options>
    auto Factory(const char* name) const {
        return Required<void(void**, Options*)>(name);
    }
};

}  // namespace quarry::test
