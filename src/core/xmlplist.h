#pragma once
// Reading and writing XML property lists (the "PropertyList-1.0" document type).

#include "core/error.h"
#include "core/value.h"

#include <functional>
#include <string>
#include <string_view>

namespace zifora::core {

/// Values nested deeper than this are refused by the reader and the writer alike: the
/// root stands at depth 1, so its members may nest `kMaxNesting` levels below it.
inline constexpr int kXmlPlistMaxDepth = kMaxNesting + 1;

/// Chooses the kind of a number read from a <real> or <integer> element. `key` is the key of
/// the dictionary entry that holds the number ("" for an array element or the root), `depth`
/// is 1 for the root value, 2 for the entries of the root dictionary and so on, and
/// `standardKind` is what the reader would choose by itself: Double for <real>, Integer for
/// <integer>. Answer Float or Double for a <real>, Int or Integer for an <integer>; any other
/// answer keeps the standard kind. A real that does not fit a float, or an integer that does
/// not fit 32 bits, keeps the standard kind too.
using PlistNumberKind = std::function<Kind(std::string_view key, int depth, Kind standardKind)>;

/// Parses an XML property list. <string> and <key> give String, <real> Double, <integer>
/// Integer (both unless `numberKind` says otherwise), <true/> and <false/> Bool, <date> Date,
/// <data> Data, <dict> Dict in the order of the file, <array> Array.
///
/// The parser is strict: the input must be well-formed UTF-8 XML with <plist> as its root
/// element holding exactly one value, and anything else gives an error with the line number.
/// It understands the XML declaration (whose encoding, if given, must be UTF-8), comments,
/// processing instructions, a DOCTYPE (whose internal subset is skipped, so no entity of it
/// is known), CDATA sections, the five predefined entities and numeric character references.
/// One liberty: character references may name control characters, since `writeXmlPlist`
/// keeps such characters of a text that way. Duplicate keys in a dictionary are an error.
[[nodiscard]] Result<Value> readXmlPlist(std::string_view xml,
                                         const PlistNumberKind& numberKind = {});

/// Writes `root` as an XML property list with the usual declaration and DOCTYPE, tab-indented.
/// String and Image give <string>, Float and Double <real> in the shortest text that reads
/// back to the same bits, Int and Integer <integer>, Date <date> in whole seconds (rounded
/// down), Data <data> in base64. Dictionary entries whose value is absent are left out.
/// Invalid UTF-8 in a text is replaced by U+FFFD; a carriage return and the control
/// characters XML 1.0 has no place for are written as character references.
/// Records, absent array elements, dates outside the years 1 to 9999 and nesting deeper than
/// `kXmlPlistMaxDepth` give an error.
[[nodiscard]] Result<std::string> writeXmlPlist(const Value& root);

/// True if `writeXmlPlist` can write `date` as a <date>: a time in the years 1 to 9999.
[[nodiscard]] bool isWritablePlistDate(Date date);

} // namespace zifora::core
