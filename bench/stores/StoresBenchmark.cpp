// The cost of a notification append on a store that already holds 1,000 and 10,000
// notifications, against the floor of any save of the same file: a durable atomic replace of the
// same bytes (DurableReplace.h), measured in turns in every iteration of the same run
// (SaveAgainstBaseline.h).
//
// The ratio depends on what an fsync costs on the file system under the temporary directory: the
// cheaper the fsync, the larger the library's own share of an append shows. The files live in
// the system's temporary directory, on the file system a user's configuration directory is on.

#include "DurableReplace.h"
#include "NApplication.h"
#include "PRuntimeNotify.h"
#include "SaveAgainstBaseline.h"
#include "ScratchDirectory.h"

#include <benchmark/benchmark.h>

#include <fstream>
#include <string>

namespace {

// Texts like the application's, with characters that need escaping and some beyond ASCII.
std::string title(unsigned long long id, char variant) {
    return "Notice " + std::to_string(id) + variant +
           ": firmware 17.2 & \"news\" for <your> device \xe2\x80\x94 \xe6\x9b\xb4\xe6\x96\xb0";
}

std::string address(unsigned long long id) {
    return "https://example.invalid/notice?id=" + std::to_string(id) + "&lang=en";
}

PRuntimeNotifyItem item(unsigned long long id, char variant) {
    PRuntimeNotifyItem result;
    result.setID(id);
    result.setUserID(4000000000ULL + id % 7);
    result.setTitle(NString(title(id, variant)));
    result.setTimestamp(1700000000000LL + static_cast<long long>(id) * 1000);
    result.setURL(NString(address(id)));
    result.setIsPopup(id % 3 == 0);
    result.setAlreadyRead(id % 2 == 0);
    result.setRemove(id % 11 == 0);
    return result;
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

// A "/notify.xml" of `count` notifications with every field, for the store to load. Written
// here, since filling the store by appends would rewrite the file `count` times; the first
// append below rewrites it in the store's own layout.
void writeStoreFile(const std::string& path, unsigned long long count) {
    std::ofstream out(path, std::ios::binary);
    out << "<?xml version=\"1.0\"?>\n<Nevor><Notify>\n";
    for (unsigned long long id = 1; id <= count; ++id) {
        const PRuntimeNotifyItem notification = item(id, 'a');
        const auto flag = [](bool value) { return value ? "true" : "false"; };
        out << "<Item><ID VALUE=\"" << id << "\"/><UserID VALUE=\"" << notification.userID()
            << "\"/><Title VALUE=\"" << escaped(title(id, 'a')) << "\"/><Timestamp VALUE=\""
            << notification.timestamp() << "\"/><URL VALUE=\"" << escaped(address(id))
            << "\"/><Read VALUE=\"" << flag(notification.isAlreadyRead()) << "\"/><Popup VALUE=\""
            << flag(notification.isPopup()) << "\"/><AlreadyPopup VALUE=\""
            << flag(notification.isAlreadyRead()) << "\"/><Remove VALUE=\""
            << flag(notification.isRemove()) << "\"/></Item>\n";
    }
    out << "</Notify></Nevor>\n";
}

// Every iteration appends over one stored id, alternating between two titles of the same
// length, so that the file keeps its size; an append over a stored id rewrites the whole file
// just as the insertion of a new one does. The first append, before the timing, renders every
// notification of the loaded store once; it is a load's cost, paid once a run.
void BM_NotifyAppend(benchmark::State& state) {
    const auto count = static_cast<unsigned long long>(state.range(0));
    pallix::bench::ScratchDirectory directory("stores-" + std::to_string(count));
    NApplication::setDirectoryConfig(NString(directory.path()));
    const std::string storeFile = directory.file("notify.xml");
    writeStoreFile(storeFile, count);

    PRuntimeNotify store;
    if (!store.exist(count)) {
        state.SkipWithError("the generated store did not load");
        return;
    }
    const unsigned long long target = count / 2;
    const PRuntimeNotifyItem items[2] = {item(target, 'b'), item(target, 'a')};
    std::string bytes[2];
    for (int side : {0, 1}) {
        store.append(target, items[side]);
        bytes[side] = pallix::bench::readFile(storeFile);
    }
    pallix::bench::saveAgainstDurableReplace(
        state, [&](long long round) { store.append(target, items[round & 1]); }, bytes,
        directory.path());
    state.counters["notifications"] = static_cast<double>(count);
}
BENCHMARK(BM_NotifyAppend)->Arg(1000)->Arg(10000)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
