// A program written as an application would write it against the installed library.
#include <PallixRuntime.h>

#include <cstdio>

int main() {
    PRuntime* root = PRuntime::getInstance();
    if (root == nullptr || root->value() == nullptr) {
        std::puts("consumer: no root");
        return 1;
    }
    root->value()->set(static_cast<EPALLIX_RUNTIME_VALUE>(1), NVariant("ready"));
    const NVariant fallback;
    const bool ready =
        root->value()->find(static_cast<EPALLIX_RUNTIME_VALUE>(1), fallback) == NVariant("ready");
    std::printf("consumer: root %s\n", ready ? "ready" : "broken");
    PRuntime::freeInstance();
    return ready ? 0 : 1;
}
