#include "Interruption.h"

#include <csignal>

namespace quarry::command {
namespace {

volatile std::sig_atomic_t requested = 0;
void (*before)(int) = SIG_DFL;  ///< the handler that is put back

void Request(int /*signal*/) {
    requested = 1;
    std::signal(SIGINT, before);
}

}  // namespace

Interruption::Interruption() {
    requested = 0;
    before = std::signal(SIGINT, SIG_IGN);
    if (before != SIG_IGN) std::signal(SIGINT, Request);
}

Interruption::~Interruption() {
    std::signal(SIGINT, before);
}

bool Interruption::IsRequested() const {
    return requested != 0;
}

}  // namespace quarry::command
