#include "render/cairo_output.hpp"

#include <cairo-pdf.h>
#include <cairo-svg.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <memory>

#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

cairo_status_t append(void* closure, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

struct SurfaceDeleter {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using Surface = std::unique_ptr<cairo_surface_t, SurfaceDeleter>;

struct ContextDeleter {
  void operator()(cairo_t* cairo) const { cairo_destroy(cairo); }
};

void check(cairo_status_t status) {
  if (status != CAIRO_STATUS_SUCCESS)
    throw ToolError(std::string("could not draw the picture: ") + cairo_status_to_string(status));
}

Surface surfaceFor(ImageFormat format, double width, double height, std::string& bytes) {
  switch (format) {
    case ImageFormat::svg: {
      Surface surface(cairo_svg_surface_create_for_stream(append, &bytes, width, height));
      cairo_svg_surface_set_document_unit(surface.get(), CAIRO_SVG_UNIT_PX);
      return surface;
    }
    case ImageFormat::pdf:
      return Surface(cairo_pdf_surface_create_for_stream(append, &bytes, width, height));
    case ImageFormat::png:
      break;
  }
  return Surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(std::ceil(width)),
                                            static_cast<int>(std::ceil(height))));
}

}  // namespace

std::optional<ImageFormat> imageFormatOf(const std::filesystem::path& path) {
  std::string extension = path.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (extension == ".svg") return ImageFormat::svg;
  if (extension == ".png") return ImageFormat::png;
  if (extension == ".pdf") return ImageFormat::pdf;
  return std::nullopt;
}

std::string renderImage(ImageFormat format, double width, double height,
                        const std::function<void(cairo_t*)>& draw) {
  std::string bytes;
  const Surface surface = surfaceFor(format, width, height, bytes);
  check(cairo_surface_status(surface.get()));
  {
    const std::unique_ptr<cairo_t, ContextDeleter> cairo(cairo_create(surface.get()));
    if (format == ImageFormat::png) {  // an image starts black; the vector formats start blank
      cairo_set_source_rgb(cairo.get(), 1, 1, 1);
      cairo_paint(cairo.get());
    }
    draw(cairo.get());
    check(cairo_status(cairo.get()));
  }
  if (format == ImageFormat::png) check(cairo_surface_write_to_png_stream(surface.get(), append, &bytes));
  cairo_surface_finish(surface.get());
  check(cairo_surface_status(surface.get()));
  return bytes;
}

}  // namespace cardiolith::tool
