#pragma once

#include <cairo.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace cardiolith::tool {

// A colour from its 0xRRGGBB value.
struct Color {
  std::uint32_t rgb = 0;
  void use(cairo_t* cairo, double alpha = 1.0) const;
};

enum class Align { left, center, right };

struct TextStyle {
  double size = 12;  // in the context's user units, whatever its scale
  bool bold = false;
  Color color{0x111827};
  Align align = Align::left;
  double wrapWidth = 0;  // wrap into lines no wider than this; 0 keeps one line
};

// Text laid out by pango in DejaVu Sans (fonts-dejavu-core, so that every machine draws the same), placed
// with the first line's baseline at y and x at the side that `align` names. Returns the height of the
// text. Surfaces that keep text (PDF, SVG) keep it as text, with the font embedded as a subset.
double drawText(cairo_t* cairo, double x, double y, std::string_view text, const TextStyle& style);
// The lines drawText would break the text into at style.wrapWidth (one line when it is 0), so that a caller
// can place them one by one, e.g. across pages.
std::vector<std::string> wrappedLines(cairo_t* cairo, std::string_view text, const TextStyle& style);
// The width that drawText would take for the text on one line.
double textWidth(cairo_t* cairo, std::string_view text, const TextStyle& style);

}  // namespace cardiolith::tool
