// Feeds arbitrary bytes to the XML property-list reader of the settings. Whatever it reads
// and the writer takes must read back, and write again to the same bytes.

#include "core/xmlplist.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

using namespace zifora::core;

namespace {

[[noreturn]] void finding(const char* what, const std::string& detail) {
    std::fprintf(stderr, "%s: %s\n", what, detail.c_str());
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view xml(reinterpret_cast<const char*>(data), size);
    auto value = readXmlPlist(xml);
    if (!value) return 0;
    // Dates outside the years 1 to 9999 are refused by the writer: nothing else may be.
    auto written = writeXmlPlist(*value);
    if (!written) {
        if (written.error().message.find("date") != std::string::npos) return 0;
        finding("what was read cannot be written", written.error().message);
    }
    auto back = readXmlPlist(*written);
    if (!back) finding("the written property list does not read back", back.error().message);
    auto again = writeXmlPlist(*back);
    if (!again || *again != *written)
        finding("writing what was read back changes the text", *written);
    return 0;
}
