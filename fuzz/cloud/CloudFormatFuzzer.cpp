// Feeds arbitrary bytes to the cloud document reader, twice into the same object so that the
// merge of a second document is exercised too, and then asks every query of the result.

#include "PRuntimeCloud.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace {

// The input as a file of its own; removed when the harness is done with it.
class InputFile {
public:
    InputFile(const std::uint8_t* data, std::size_t size) {
        const char* directory = std::getenv("TMPDIR");
        m_path = std::string(directory != nullptr && *directory != '\0' ? directory : "/tmp") +
                 "/pallix-cloud-fuzz-XXXXXX";
        const int descriptor = ::mkstemp(&m_path[0]);
        if (descriptor < 0) {
            m_path.clear();
            return;
        }
        std::size_t written = 0;
        while (written < size) {
            const ssize_t step = ::write(descriptor, data + written, size - written);
            if (step <= 0) {
                break;
            }
            written += static_cast<std::size_t>(step);
        }
        ::close(descriptor);
    }
    ~InputFile() {
        if (!m_path.empty()) {
            std::remove(m_path.c_str());
        }
    }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

void query(const PRuntimeCloud& cloud, const NString& probe) {
    volatile std::size_t sink = 0;
    sink = sink + cloud.application_advertisement_iosapp_popup();
    sink = sink + cloud.application_advertisement_iosapp_auto_install();
    sink = sink + cloud.applet_verify_guide_status();
    sink = sink + cloud.applet_verify_guide_pixmap().size();
    sink = sink + cloud.application_hash_cpid().url().size();
    sink = sink + cloud.application_hash_crash_code().hash().size();
    sink = sink + cloud.application_hash_restore_code().name().size();
    sink = sink + cloud.application_hash_restore_version().url().size();
    sink = sink + cloud.application_hash_developer_plugin_mapping().hash().size();
    sink = sink + cloud.cooperate_hsb_sell_status();
    sink = sink + cloud.cooperate_hsb_sell_text_device_info().size();
    sink = sink + cloud.cooperate_hsb_sell_text_device_verify().size();
    sink = sink + cloud.cooperate_hsb_device_authorize_ipaddress().size();
    sink = sink + cloud.cooperate_hsb_device_authorize_ipport();
    sink = sink + cloud.device_plugins_find(probe).url().size();
    sink = sink + cloud.device_plugins_find_by_rvq(probe).hash().size();
    sink = sink + cloud.device_drive_version().size();
    sink = sink + cloud.device_drive_itunes_32().size();
    sink = sink + cloud.device_drive_itunes_64().size();
    const auto visit = [&sink](const PRuntimeCloudDeviceProcessItem& rule) {
        sink = sink + rule.name().size();
    };
    sink = sink + cloud.device_process_plugins_find(probe, visit);
    sink = sink + cloud.device_process_application_find(probe, visit);
    sink = sink + cloud.device_process_application_find(NString(), visit);
    sink = sink + cloud.version().size();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const InputFile input(data, size);
    if (input.path().empty()) {
        return 0;
    }
    PRuntimeCloud cloud;
    const bool first = cloud.format(NString(input.path()));
    const bool second = cloud.format(NString(input.path()));
    // The same file reads the same way both times.
    if (first != second) {
        std::abort();
    }
    // Some text of the input as a version and a program name to look up.
    const std::size_t take = size < 16 ? size : 16;
    const NString probe(reinterpret_cast<const char*>(data), take);
    query(cloud, probe);
    query(cloud, NString("17.0"));
    return 0;
}
