#include <new>
#include <stdexcept>
#include <string>

#include "Quarry.Frame/InvokableProcessor.h"
#include "Quarry.Frame/InvokableUpdater.h"
#include "Quarry/Quarry.h"

namespace {

/// The handle as a Kind (InvokableProcessor or InvokableUpdater).
template <class Kind>
Kind& HandleAs(void* handle, const char* kind) {
    auto* const invokable = dynamic_cast<Kind*>(static_cast<Invokable*>(handle));
    if (invokable == nullptr) {
        const char* const fault = handle == nullptr ? "null" : "of the wrong kind";
        throw std::invalid_argument(std::string("handle is ") + fault + "; " + kind + " handle is needed");
    }
    return *invokable;
}

template <class Interface>
Interface& Required(Interface* target) {
    if (target == nullptr) throw std::logic_error("handle has no target of its class");
    return *target;
}

IProcessor& ProcessorOf(void* handle) {
    return Required(HandleAs<InvokableProcessor>(handle, "a processor's").GetProcessor());
}

IUpdatable& UpdaterOf(void* handle) {
    return Required(HandleAs<InvokableUpdater>(handle, "an updater's").GetUpdater());
}

}  // namespace

extern "C" {

void Process(void* handle, ProcessData* input, ProcessResult* result) {
    ProcessorOf(handle).Process(input, result);
}

void DisposeResult(void* handle, ProcessResult* result) {
    ProcessorOf(handle).DisposeResult(result);
}

int32_t Update(void* handle, UpdateData* data) {
    IUpdatable& updater = UpdaterOf(handle);
    updater.Update(data);
    return updater.GetState();
}

void GetUpdateResult(void* handle, UpdateResult* result) {
    UpdaterOf(handle).GetResult(result);
}

void Dispose(void* handle) {
    if (handle == nullptr) return;
    static_cast<Invokable*>(handle)->Invokable::~Invokable();
    ::operator delete(handle);
}

}  // extern "C"
