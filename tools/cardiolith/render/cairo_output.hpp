#pragma once

#include <cairo.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace cardiolith::tool {

enum class ImageFormat { svg, png, pdf };

// The format that a file name's extension asks for (".svg", ".png" or ".pdf", in any case); nothing for
// any other name.
std::optional<ImageFormat> imageFormatOf(const std::filesystem::path& path);

// The bytes of a file of that format, width by height user units (pixels; points for PDF), with whatever
// `draw` draws. For PDF, `draw` may end pages with cairo_show_page to make several; the last page ends by
// itself. ToolError when cairo fails.
std::string renderImage(ImageFormat format, double width, double height,
                        const std::function<void(cairo_t*)>& draw);

}  // namespace cardiolith::tool
