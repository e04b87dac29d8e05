// Feeds arbitrary bytes to the binary property list reader: it must answer with a value or
// an error, within bounds of time, memory and stack.

#include "core/binaryplist.h"

#include <cstdint>
#include <string_view>

using namespace zifora::core;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    auto value = decodeBinaryPlist(bytes, "input");
    (void)value;
    return 0;
}
