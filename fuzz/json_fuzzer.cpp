// Feeds arbitrary text to the JSON loader of `zifora-cli load` and to the tagged values of
// the script language. Whatever it accepts must dump to text that loads again to the same
// dump, and must write as a keyed archive that reads back: nothing may be loaded that
// cannot be stored.

#include "core/jsondump.h"
#include "core/keyedarchive.h"

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
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (auto loaded = loadJson(text)) {
        const std::string dumped = dumpJson(*loaded);
        auto again = loadJson(dumped);
        if (!again) finding("the dump does not load again", again.error().message);
        if (dumpJson(*again) != dumped) finding("dump, load, dump changes the text", dumped);
        auto archived = decodeKeyedArchive(encodeKeyedArchive(*loaded), "written");
        if (!archived)
            finding("the loaded value does not read back as an archive", archived.error().message);
    }
    if (auto value = loadTaggedJson(text)) {
        const std::string tagged = taggedJson(*value);
        auto again = loadTaggedJson(tagged);
        if (!again) finding("the tagged value does not load again", again.error().message);
        if (taggedJson(*again) != tagged) finding("the tagged value changes", tagged);
    }
    return 0;
}
