#include "media/CellBatch.h"

#include <cmath>

namespace vt {

namespace {

// A quad is two triangles; a cell is a background quad and a glyph quad.
const std::size_t VERTICES_PER_QUAD = 6;
const std::size_t VERTICES_PER_CELL = 2 * VERTICES_PER_QUAD;

// Mesa's software renderer (llvmpipe) spends more on one long draw than on
// the same triangles in runs of a few hundred vertices: a full screen took
// about a quarter less CPU in runs of 384. A multiple of six keeps quads
// whole; the runs are drawn in order, so the picture is the same.
const std::size_t VERTICES_PER_DRAW = 384;

// SFML keeps a white square at the top-left of every font page; sampling its
// middle gives plain colour for the cell backgrounds.
const Edges WHITE_TEXEL = {1.0f, 1.0f, 1.0f, 1.0f};

int clampedIndex(float position, float bucket_size, int count) {
  const float index = std::floor(position / bucket_size);
  if (std::isnan(index)) return 0;
  return static_cast<int>(std::clamp(index, 0.0f, static_cast<float>(count - 1)));
}

}  // namespace

// Calls visit with every bucket the rectangle touches; parts beyond the
// window count towards the buckets at its edge.
template <typename Visit>
void CellBatch::forEachBucket(const Edges& rect, Visit visit) {
  const int first_column = clampedIndex(rect.left, cell_size.x, columns);
  const int last_column = clampedIndex(rect.right, cell_size.x, columns);
  const int first_row = clampedIndex(rect.top, cell_size.y, rows);
  const int last_row = clampedIndex(rect.bottom, cell_size.y, rows);
  for (int row = first_row; row <= last_row; row++) {
    for (int column = first_column; column <= last_column; column++) {
      visit(buckets[static_cast<std::size_t>(row * columns + column)]);
    }
  }
}

void Edges::subtract(const Edges& cover, std::vector<Edges>& rest) const {
  const Edges inside = intersection(cover);
  if (inside.isEmpty()) {
    rest.push_back(*this);
    return;
  }
  if (top < inside.top) rest.push_back({left, top, right, inside.top});
  if (inside.bottom < bottom) rest.push_back({left, inside.bottom, right, bottom});
  if (left < inside.left) rest.push_back({left, inside.top, inside.left, inside.bottom});
  if (inside.right < right) rest.push_back({inside.right, inside.top, right, inside.bottom});
}

CellBatch::CellBatch(sf::Vector2f cell_size, int columns, int rows)
    : cell_size(cell_size),
      columns(std::max(columns, 1)),
      rows(std::max(rows, 1)),
      window({0.0f, 0.0f, cell_size.x * static_cast<float>(this->columns),
              cell_size.y * static_cast<float>(this->rows)}),
      buckets(static_cast<std::size_t>(this->columns * this->rows)) {
  vertices.reserve(buckets.size() * VERTICES_PER_CELL);
}

void CellBatch::addBackground(const Edges& cell, sf::Color color) {
  if (isOffScreen(cell)) return;
  if (plain_background) {
    addOverlaps(cell, color);
  } else {
    addQuad(cell, WHITE_TEXEL, color);
  }
}

void CellBatch::addGlyph(const Edges& quad, const Edges& tex, sf::Color color) {
  if (isOffScreen(quad)) return;
  const std::size_t index = glyph_pieces.size();
  glyph_quads.push_back({vertices.size()});
  addQuad(quad, tex, color);
  glyph_pieces.push_back({quad});
  glyph_stamps.push_back(0);
  forEachBucket(quad, [&](std::vector<std::size_t>& bucket) { bucket.push_back(index); });
}

void CellBatch::draw(sf::RenderTarget& target, const sf::Texture& texture) {
  const sf::RenderStates states(&texture);
  for (std::size_t first = 0; first < vertices.size(); first += VERTICES_PER_DRAW) {
    const std::size_t count = std::min(VERTICES_PER_DRAW, vertices.size() - first);
    target.draw(vertices.data() + first, count, sf::Triangles, states);
  }
  vertices.clear();
  glyph_pieces.clear();
  glyph_stamps.clear();
  glyph_quads.clear();
  stamp = 0;
  for (std::vector<std::size_t>& bucket : buckets) bucket.clear();
  plain_background = false;
}

// The parts of the cell that earlier glyphs cover, each glyph once. What
// is painted over is forgotten: many glyphs drawn into one cell (a heads-
// up display drawn over itself) then cost one quad each, not one for every
// later background. A glyph painted over whole is dropped with the quads
// that painted it: the plain background shows there either way.
void CellBatch::addOverlaps(const Edges& cell, sf::Color color) {
  stamp++;
  forEachBucket(cell, [&](std::vector<std::size_t>& bucket) {
    for (std::size_t index : bucket) {
      if (glyph_stamps[index] == stamp) continue;
      glyph_stamps[index] = stamp;
      std::vector<Edges>& pieces = glyph_pieces[index];
      unpainted.clear();
      for (const Edges& piece : pieces) {
        const Edges overlap = cell.intersection(piece);
        if (!overlap.isEmpty()) {
          glyph_quads[index].push_back(vertices.size());
          addQuad(overlap, WHITE_TEXEL, color);
        }
        piece.subtract(cell, unpainted);
      }
      pieces.swap(unpainted);
      if (pieces.empty()) dropQuads(glyph_quads[index]);
    }
    // Glyphs painted over whole leave the bucket, so that a cell drawn
    // over many times is not walked over all its past glyphs each time.
    bucket.erase(std::remove_if(bucket.begin(), bucket.end(),
                                [&](std::size_t index) { return glyph_pieces[index].empty(); }),
                 bucket.end());
  });
}

// Collapses each quad to a point, which draws nothing.
void CellBatch::dropQuads(std::vector<std::size_t>& starts) {
  for (const std::size_t start : starts) {
    for (std::size_t i = start + 1; i < start + VERTICES_PER_QUAD; i++) {
      vertices[i].position = vertices[start].position;
    }
  }
  starts.clear();
}

// Two triangles, in the order sf::Text builds a glyph.
void CellBatch::addQuad(const Edges& quad, const Edges& tex, sf::Color color) {
  const sf::Vertex top_left({quad.left, quad.top}, color, {tex.left, tex.top});
  const sf::Vertex top_right({quad.right, quad.top}, color, {tex.right, tex.top});
  const sf::Vertex bottom_left({quad.left, quad.bottom}, color, {tex.left, tex.bottom});
  const sf::Vertex bottom_right({quad.right, quad.bottom}, color, {tex.right, tex.bottom});
  vertices.insert(vertices.end(),
                  {top_left, top_right, bottom_left, bottom_left, top_right, bottom_right});
}

}  // namespace vt
