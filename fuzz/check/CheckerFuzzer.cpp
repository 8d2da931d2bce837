// Feeds arbitrary bytes to the checker: the first byte names the kind to check them as (or,
// past the last kind, none: the kind is told from the content), the rest is the file's text.
// Whatever the text, the findings lie inside it, come in the order of their positions, and are
// the same when the text is checked again.

#include "Checkers.h"
#include "FileKind.h"
#include "SourceFile.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

namespace {

std::vector<pallix::check::Finding> check(const std::string& text,
                                          std::optional<pallix::check::FileKind> kind) {
    pallix::check::SourceFile file("fuzz-input", text);
    pallix::check::checkFile(file, kind);
    return file.findings();
}

bool same(const std::vector<pallix::check::Finding>& a,
          const std::vector<pallix::check::Finding>& b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i].line != b[i].line || a[i].column != b[i].column ||
            a[i].severity != b[i].severity || a[i].message != b[i].message) {
            return false;
        }
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::size_t kinds = pallix::check::fileKindNames().size();
    const std::optional<pallix::check::FileKind> kind =
        data[0] < kinds ? std::optional(static_cast<pallix::check::FileKind>(data[0]))
                        : std::nullopt;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);

    const std::vector<pallix::check::Finding> findings = check(text, kind);
    // A line ends at "\r\n", a lone '\r' or a '\n', as XML ends lines.
    std::size_t lines = 1;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' || (text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n'))) {
            ++lines;
        }
    }
    for (std::size_t i = 0; i < findings.size(); ++i) {
        const pallix::check::Finding& finding = findings[i];
        if (finding.line < 1 || finding.line > lines || finding.column < 1 ||
            finding.message.empty()) {
            std::abort();
        }
        if (i > 0 &&
            (finding.line < findings[i - 1].line ||
             (finding.line == findings[i - 1].line && finding.column < findings[i - 1].column))) {
            std::abort();
        }
    }
    if (!same(findings, check(text, kind))) {
        std::abort();
    }
    return 0;
}
