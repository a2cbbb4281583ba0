#include "render/cairo_text.hpp"

#include <pango/pangocairo.h>

#include <memory>

namespace cardiolith::tool {
namespace {

struct LayoutDeleter {
  void operator()(PangoLayout* layout) const { g_object_unref(layout); }
};
using Layout = std::unique_ptr<PangoLayout, LayoutDeleter>;

struct FontDeleter {
  void operator()(PangoFontDescription* font) const { pango_font_description_free(font); }
};

int pangoUnits(double value) { return static_cast<int>(value * PANGO_SCALE); }

Layout layoutOf(cairo_t* cairo, std::string_view text, const TextStyle& style) {
  Layout layout(pango_cairo_create_layout(cairo));
  const std::unique_ptr<PangoFontDescription, FontDeleter> font(pango_font_description_new());
  pango_font_description_set_family(font.get(), "DejaVu Sans");
  pango_font_description_set_weight(font.get(), style.bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
  // Absolute: the size is in user units, not points at the context's resolution.
  pango_font_description_set_absolute_size(font.get(), style.size * PANGO_SCALE);
  pango_layout_set_font_description(layout.get(), font.get());
  pango_layout_set_text(layout.get(), text.data(), static_cast<int>(text.size()));
  if (style.wrapWidth > 0) {
    pango_layout_set_width(layout.get(), pangoUnits(style.wrapWidth));
    pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
  }
  return layout;
}

}  // namespace

void Color::use(cairo_t* cairo, double alpha) const {
  const auto channel = [&](int shift) { return static_cast<double>((rgb >> shift) & 0xffU) / 255.0; };
  cairo_set_source_rgba(cairo, channel(16), channel(8), channel(0), alpha);
}

double drawText(cairo_t* cairo, double x, double y, std::string_view text, const TextStyle& style) {
  const Layout layout = layoutOf(cairo, text, style);
  int width = 0, height = 0;
  pango_layout_get_size(layout.get(), &width, &height);
  const double scale = PANGO_SCALE;
  double left = x;
  if (style.align == Align::center) left -= width / scale / 2;
  if (style.align == Align::right) left -= width / scale;
  cairo_save(cairo);
  style.color.use(cairo);
  cairo_move_to(cairo, left, y - pango_layout_get_baseline(layout.get()) / scale);
  pango_cairo_show_layout(cairo, layout.get());
  cairo_restore(cairo);
  return height / scale;
}

std::vector<std::string> wrappedLines(cairo_t* cairo, std::string_view text, const TextStyle& style) {
  const Layout layout = layoutOf(cairo, text, style);
  std::vector<std::string> lines;
  for (GSList* line = pango_layout_get_lines_readonly(layout.get()); line; line = line->next) {
    const auto* layoutLine = static_cast<const PangoLayoutLine*>(line->data);
    lines.emplace_back(text.substr(static_cast<std::size_t>(layoutLine->start_index),
                                   static_cast<std::size_t>(layoutLine->length)));
  }
  return lines;
}

double textWidth(cairo_t* cairo, std::string_view text, const TextStyle& style) {
  TextStyle oneLine = style;
  oneLine.wrapWidth = 0;
  int width = 0, height = 0;
  pango_layout_get_size(layoutOf(cairo, text, oneLine).get(), &width, &height);
  return width / static_cast<double>(PANGO_SCALE);
}

}  // namespace cardiolith::tool
