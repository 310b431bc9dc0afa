#include <connector/common/Lifecycle.hpp>

namespace connector::common {

Lifecycle::Lifecycle() = default;
Lifecycle::~Lifecycle() = default;

void Lifecycle::start() {
    onStart();
    running = true;
}

void Lifecycle::stop() {
    onStop();
    running = false;
}

void Lifecycle::onStart() {
}
void Lifecycle::onStop() {
}

} // namespace connector::common
