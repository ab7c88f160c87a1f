#include "host/pdf/text_run.h"

#include <cmath>
#include <utility>

namespace quillo::host::pdf {

namespace {

// In ems. A blank between two words is at most as wide as kWidestGap; glyphs overlap by kerning and
// marks, and places are rounded to whole pixels.
constexpr double kWidestGap = 2, kOverlap = 0.6, kOffLine = 0.03;

bool Same(const cairo_matrix_t& a, const cairo_matrix_t& b) {
  const double size = std::abs(a.xx) + std::abs(a.xy) + std::abs(a.yx) + std::abs(a.yy);
  const auto is_near = [size](double x, double y) { return std::abs(x - y) <= size * 1e-4; };
  return is_near(a.xx, b.xx) && is_near(a.xy, b.xy) && is_near(a.yx, b.yx) && is_near(a.yy, b.yy);
}

}  // namespace

PointD TextRun::Step(const PointD& origin) const {
  PointD step{origin.x - glyphs_.back().x, origin.y - glyphs_.back().y};
  cairo_matrix_t to_ems = look_.matrix;
  cairo_matrix_invert(&to_ems);
  cairo_matrix_transform_distance(&to_ems, &step.x, &step.y);
  return step;
}

bool TextRun::Continues(const Look& look, const PointD& origin) const {
  if (glyphs_.empty() || look.font != look_.font || look.colour != look_.colour ||
      !Same(look.matrix, look_.matrix)) {
    return false;
  }
  const PointD step = Step(origin);
  const double gap = step.x - last_advance_;
  return std::abs(step.y) <= kOffLine && gap >= -kOverlap && gap <= kWidestGap;
}

void TextRun::Add(unsigned long glyph, const PointD& origin, double advance,
                  std::string_view character) {
  glyphs_.push_back({glyph, origin.x, origin.y});
  clusters_.push_back({static_cast<int>(character.size()), 1});
  text_ += character;
  last_advance_ = advance;
}

/// Glyphs that are drawings have characters by the word: those stay readable wherever one drawing
/// stands for several characters.
void TextRun::JoinWords() {
  std::vector<cairo_text_cluster_t> words;
  size_t at = 0;
  bool in_word = false;
  for (const cairo_text_cluster_t& cluster : clusters_) {
    const bool blank = cluster.num_bytes == 1 && text_[at] == ' ';
    if (in_word && !blank) {
      words.back().num_bytes += cluster.num_bytes;
      words.back().num_glyphs += cluster.num_glyphs;
    } else {
      words.push_back(cluster);
    }
    in_word = !blank;
    at += static_cast<size_t>(cluster.num_bytes);
  }
  clusters_ = std::move(words);
}

void TextRun::Draw(cairo_t* context) {
  if (glyphs_.empty()) return;
  if (look_.font->outlines) JoinWords();
  cairo_set_operator(context, CAIRO_OPERATOR_OVER);
  cairo_set_source_rgb(context, GetRValue(look_.colour) / 255.0, GetGValue(look_.colour) / 255.0,
                       GetBValue(look_.colour) / 255.0);
  cairo_set_font_face(context, look_.font->face.get());
  cairo_set_font_matrix(context, &look_.matrix);
  cairo_show_text_glyphs(context, text_.data(), static_cast<int>(text_.size()), glyphs_.data(),
                         static_cast<int>(glyphs_.size()), clusters_.data(),
                         static_cast<int>(clusters_.size()), cairo_text_cluster_flags_t{});
  glyphs_.clear();
  clusters_.clear();
  text_.clear();
}

}  // namespace quillo::host::pdf
