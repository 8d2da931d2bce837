// Loads arbitrary bytes as a plug-in mapping table and looks versions up in it.

#include "FuzzInputFile.h"

#include "PRuntimePluginMapping.h"

#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const pallix::fuzz::InputFile input(data, size);
    if (!input.valid()) {
        return 0;
    }
    PRuntimePluginMapping table;
    table.format(input.path().c_str());
    const std::string head(reinterpret_cast<const char*>(data), size < 8 ? size : 8);
    const NString versions[] = {NString(head), "16.4.1", "17.0", ""};
    for (const NString& version : versions) {
        NString out;
        const bool copied = table.find(version, out);
        bool called = false;
        const bool reported = table.find(version, [&called, &out](const NString& value) {
            called = true;
            // Both forms answer with the same mapped text, never an empty one.
            if (value != out || value.empty()) {
                __builtin_trap();
            }
        });
        if (copied != reported || called != reported || (version.empty() && copied)) {
            __builtin_trap();
        }
    }
    return 0;
}
