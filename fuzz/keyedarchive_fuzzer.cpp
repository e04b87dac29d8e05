// Feeds arbitrary bytes to the keyed-archive reader. Whatever it accepts must survive being
// written again and read back, and writing what was read back must give the same bytes.

#include "core/keyedarchive.h"
#include "core/record.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

using namespace zifora::core;

namespace {

// The text "$null" is the archive's word for "nothing", so such a text read from a plain
// value comes back absent once written: the one change a round trip may make.
bool holdsNullText(const Value& v) {
    switch (v.kind()) {
    case Kind::String:
        return v.text() == "$null";
    case Kind::Dict:
        for (const auto& [key, member] : v.asDict())
            if (holdsNullText(member)) return true;
        return false;
    case Kind::Array:
        for (const Value& member : v.asArray())
            if (holdsNullText(member)) return true;
        return false;
    case Kind::Record: {
        const Record& r = *v.asRecord();
        bool found = false;
        r.properties().forEach(
            [&](const std::string&, const Value& p) { found = found || holdsNullText(p); });
        for (size_t i = 0; i < r.listCount() && !found; ++i)
            for (const auto& child : r.list(i))
                found = found || holdsNullText(Value::record(child));
        return found;
    }
    default:
        return false;
    }
}

[[noreturn]] void finding(const char* what, const std::string& detail) {
    std::fprintf(stderr, "%s: %s\n", what, detail.c_str());
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    auto first = decodeKeyedArchive(bytes, "input");
    if (!first) return 0;
    const std::string written = encodeKeyedArchive(*first);
    auto second = decodeKeyedArchive(written, "written again");
    if (!second) finding("the written archive does not read back", second.error().message);
    const std::string writtenTwice = encodeKeyedArchive(*second);
    if (writtenTwice != written && !holdsNullText(*first))
        finding("writing the read-back archive gives different bytes",
                std::to_string(writtenTwice.size()) + " vs " + std::to_string(written.size()));
    return 0;
}
