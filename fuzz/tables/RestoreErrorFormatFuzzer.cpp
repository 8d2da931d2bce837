// Loads arbitrary bytes as a restore error table and looks codes up in it.

#include "FuzzInputFile.h"

#include "PRuntimeRestoreError.h"

#include <climits>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const pallix::fuzz::InputFile input(data, size);
    if (!input.valid()) {
        return 0;
    }
    PRuntimeRestoreError table;
    table.format(input.path().c_str());
    const auto code = static_cast<long long>(pallix::fuzz::inputNumber(data, size, 0, 8));
    const long long codes[] = {code, -1, 0, 16, LLONG_MAX, LLONG_MIN};
    for (const long long wanted : codes) {
        int calls = 0;
        table.find(wanted, [&calls, wanted](const PRuntimeInfoRestoreError& row) {
            ++calls;
            if (!row.isMatch(wanted)) {
                __builtin_trap();
            }
        });
        if (calls > 1) {
            __builtin_trap();
        }
    }
    return 0;
}
