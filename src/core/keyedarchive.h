#pragma once
// The keyed object archive: the form of the database, the exchange files and the charts.

#include "core/error.h"
#include "core/value.h"

#include <string>
#include <string_view>

namespace zifora::core {

/// Archives `root` (usually a dictionary such as {"clients": [...]}) as a binary keyed
/// archive. Records are written under their class names with their archive keys;
/// dictionaries and arrays as the mutable collection classes; dates as date objects;
/// row icons as image objects that carry the icon's name.
[[nodiscard]] std::string encodeKeyedArchive(const Value& root);

/// Reads a keyed archive. Records of our classes come back as records (keys that the file
/// lacks stay absent); objects of other classes come back as foreign records that keep
/// their keys. Malformed input gives an error naming the file (`context`) and the place.
[[nodiscard]] Result<Value> decodeKeyedArchive(std::string_view bytes,
                                               const std::string& context = "archive");

/// True for the class names whose objects the reader takes for plain values (lists,
/// dictionaries, texts, dates, data) whatever they hold: no record may be written under one.
[[nodiscard]] bool isPlainValueClassName(std::string_view className);

/// Reads a file and decodes it; a missing file, and one that can't be read as a file (no
/// permission, a folder, a FIFO, a device, an I/O error), are errors of their own kind.
struct ArchiveFileError {
    bool missing = false;
    Error error;
    bool unreadable = false;
};
[[nodiscard]] std::expected<Value, ArchiveFileError> readKeyedArchiveFile(const std::string& path);

/// Encodes `root` and writes it to `path` atomically: the old file stays whole on failure.
[[nodiscard]] Result<void> writeKeyedArchiveFile(const std::string& path, const Value& root);

} // namespace zifora::core
