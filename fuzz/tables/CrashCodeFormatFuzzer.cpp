// Loads arbitrary bytes as a crash code table, walks it and looks keys up in it.

#include "FuzzInputFile.h"

#include "PRuntimeCrashCode.h"

#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const pallix::fuzz::InputFile input(data, size);
    if (!input.valid()) {
        return 0;
    }
    PRuntimeCrashCode table;
    table.format(input.path().c_str());
    std::size_t rows = 0;
    table.traverse([&rows](const PRuntimeInfoCrash&) { ++rows; });
    // The input's own leading bytes, arbitrary UTF-8 or not, are a query too.
    const std::string head(reinterpret_cast<const char*>(data), size < 16 ? size : 16);
    const NString queries[] = {NString(head), "AMRestore", "Ошибка", "", "\xC3"};
    for (const NString& query : queries) {
        int calls = 0;
        table.find(query, [&calls](const PRuntimeInfoCrash& row) {
            ++calls;
            (void)row.reason().size();
        });
        if (calls > 1 || (query.empty() && calls != 0) || (rows == 0 && calls != 0)) {
            __builtin_trap();
        }
    }
    return 0;
}
