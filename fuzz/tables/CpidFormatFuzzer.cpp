// Loads arbitrary bytes as a chip identifier table and looks a few devices up in it.

#include "FuzzInputFile.h"

#include "PRuntimeCpid.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const pallix::fuzz::InputFile input(data, size);
    if (!input.valid()) {
        return 0;
    }
    PRuntimeCpid table;
    table.format(input.path().c_str());
    const auto chip = static_cast<unsigned int>(pallix::fuzz::inputNumber(data, size, 0, 4));
    const auto board = static_cast<unsigned int>(pallix::fuzz::inputNumber(data, size, 4, 4));
    const NDeviceInfoRecovery devices[] = {
        {chip, board}, {0x8020, 0x0C}, {0x8020, 0x0E}, {0x10000, 0x00}, {0xFFFFFFFFu, 0xFFu}};
    for (const NDeviceInfoRecovery& device : devices) {
        PRuntimeInfoCpid row;
        if (table.find(device, row) && row.cpid().empty()) {
            // A found row always carries the chip text it was matched on, four digits or more.
            __builtin_trap();
        }
        table.find(device, [](const PRuntimeInfoCpid& found) { (void)found.mode().size(); });
    }
    // A second load must replace, not add to, the first.
    table.format(input.path().c_str());
    return 0;
}
