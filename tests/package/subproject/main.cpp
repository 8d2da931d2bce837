// An application that builds the library as part of its own build sees only the public headers.
#include <PallixRuntime.h>

#if __has_include("XmlFile.h") || __has_include("ConfigMaps.h") ||                                 \
                                                __has_include("ProductAddress.h") ||               \
                                                              __has_include("Base64.h")
#error "an internal header of PallixRuntime is on the include path"
#endif

#include <cstdio>

int main() {
    PRuntime* root = PRuntime::getInstance();
    if (root == nullptr || root->value() == nullptr) {
        std::puts("subproject consumer: no root");
        return 1;
    }
    root->value()->set(static_cast<EPALLIX_RUNTIME_VALUE>(1), NVariant("ready"));
    const NVariant fallback;
    const bool ready =
        root->value()->find(static_cast<EPALLIX_RUNTIME_VALUE>(1), fallback) == NVariant("ready");
    std::printf("subproject consumer: root %s\n", ready ? "ready" : "broken");
    PRuntime::freeInstance();
    return ready ? 0 : 1;
}
