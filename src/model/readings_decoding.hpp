#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "cardiolith/model/readings.hpp"

namespace cardiolith::json_detail {

// How many bytes past the end of its input the document decoder may read. A buffer whose capacity leaves
// this much spare is decoded where it is, without a padded copy.
inline constexpr std::size_t kReadPadding = 64;

// json::decode<Readings> of the whole text at once, reading it in place when its capacity allows. Names
// the fault of a document that can't be decoded.
Readings decodeReadingsInPlace(const std::string& text);

// Copies the next bytes of a document into `into`, at most `capacity` of them; 0 at the end.
using ReadMore = std::function<std::size_t(char* into, std::size_t capacity)>;

// A ReadMore that copies `text` piece by piece; the text must outlive it.
ReadMore readMoreFrom(std::string_view text);

// How much of a document one window holds, unless a single reading needs more.
inline constexpr std::size_t kDefaultWindowSize = std::size_t{1} << 20;

// The readings of a document in its usual shape, {"readings":[...]} with nothing else and the key
// unescaped, decoded one window of readings at a time. Only a window's text and its parser index are held
// at once, so a large log costs little beyond its readings, and the index stays in the processor's cache.
// Nothing when the document has any other shape or any window fails to decode: the caller then decodes
// the whole text, which gives the same readings or names the fault. `expectedSize` (the document's size,
// when known) keeps the window of a small document small.
std::optional<Readings> decodeReadingsInWindows(const ReadMore& readMore, std::size_t expectedSize,
                                                std::size_t windowSize = kDefaultWindowSize);

}  // namespace cardiolith::json_detail
