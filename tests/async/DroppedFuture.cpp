// A program that drops a future. It is compiled by a test that expects the compiler to say so.
#include <connector/async/Future.hpp>

void dropAFuture() {
    connector::makeReadyFuture(1);
}
