// Reads a configuration in a process of its own and prints the record:
//   config_record_dump <config-dir> <resources-dir> load_new|load_old|initialize
// so that tests can check what a fresh process makes of a file written by another.

#include "RecordText.h"

#include "PallixRuntime.h"

#include <cstdio>
#include <cstring>
#include <iostream>

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: %s CONFIG_DIR RESOURCES_DIR load_new|load_old|initialize\n",
                     argv[0]);
        return 2;
    }
    NApplication::setDirectoryConfig(argv[1]);
    NApplication::setDirectoryResources(argv[2]);
    PRuntimeConfig* config = PRuntime::getInstance()->config();
    if (std::strcmp(argv[3], "load_new") == 0) {
        config->load_new();
    } else if (std::strcmp(argv[3], "load_old") == 0) {
        config->load_old();
    } else if (std::strcmp(argv[3], "initialize") == 0) {
        config->initialize();
    } else {
        std::fprintf(stderr, "unknown step: %s\n", argv[3]);
        return 2;
    }
    std::cout << pallix::test::recordText(_globalFrameworkConfig);
    PRuntime::freeInstance();
    return 0;
}
