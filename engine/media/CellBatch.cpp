#include "media/CellBatch.h"

#include <cmath>
#include <cstring>

namespace vt {

namespace {

// A cell is a background quad and a glyph quad.
const std::size_t QUADS_PER_CELL = 2;

// Mesa's software renderer (llvmpipe) spends more on one long draw than on
// the same triangles in runs of a few hundred vertices: a full screen took
// about a quarter less CPU in runs of 384. A multiple of six keeps quads
// whole; the runs are drawn in order, so the picture is the same.
const std::size_t VERTICES_PER_DRAW = 384;

// SFML keeps a white square at the top-left of every font page; sampling its
// middle gives plain colour for the cell backgrounds.
const Edges WHITE_TEXEL = {1.0f, 1.0f, 1.0f, 1.0f};

// The tile holding the position along one axis; positions beyond the
// tiles count towards the tile at that end.
int tileIndex(float position, float tile_size, float offset, int shift, int count) {
  const float index = std::floor((position - offset) / tile_size) + static_cast<float>(shift);
  if (std::isnan(index)) return 0;
  return static_cast<int>(std::clamp(index, 0.0f, static_cast<float>(count - 1)));
}

std::uint64_t mixed(std::uint64_t hash, std::uint64_t value) {
  hash ^= value + 0x9e3779b97f4a7c15ULL + (hash << 6) + (hash >> 2);
  return hash * 0xff51afd7ed558ccdULL;
}

std::uint64_t bitsOf(float value) {
  std::uint32_t bits = 0;
  static_assert(sizeof(bits) == sizeof(value));
  std::memcpy(&bits, &value, sizeof(bits));
  return bits;
}

std::uint64_t pairOf(float first, float second) {
  return bitsOf(first) << 32 | bitsOf(second);
}

// Everything that decides what a cell's background or glyph paints: its
// corners, its texture's corners and its colour.
std::uint64_t paintHash(const Edges& quad, const Edges& tex, sf::Color color) {
  std::uint64_t hash = mixed(pairOf(quad.left, quad.top), pairOf(quad.right, quad.bottom));
  hash = mixed(hash, pairOf(tex.left, tex.top));
  hash = mixed(hash, pairOf(tex.right, tex.bottom));
  return mixed(hash, color.toInteger());
}

bool isWhole(const Edges& part, const Edges& rect) {
  return part.left == rect.left && part.top == rect.top && part.right == rect.right &&
         part.bottom == rect.bottom;
}

// Pixels are filled where their centres lie. A rectangle within a
// rasterizer's rounding (a 128th of a pixel) of a centre counts as holding
// it.
bool holdsPixelCentre(const Edges& rect) {
  const float slack = 1.0f / 128.0f;
  const auto holds = [&](float from, float to) {
    return std::ceil(from - 0.5f - slack) < std::ceil(to - 0.5f + slack);
  };
  return holds(rect.left, rect.right) && holds(rect.top, rect.bottom);
}

// The texture edges of the part of the quad that is cut out, by the same
// proportions as the quad's own.
Edges cutTexture(const Edges& quad, const Edges& tex, const Edges& cut) {
  const float scale_x = (tex.right - tex.left) / (quad.right - quad.left);
  const float scale_y = (tex.bottom - tex.top) / (quad.bottom - quad.top);
  return {tex.left + (cut.left - quad.left) * scale_x, tex.top + (cut.top - quad.top) * scale_y,
          tex.left + (cut.right - quad.left) * scale_x,
          tex.top + (cut.bottom - quad.top) * scale_y};
}

}  // namespace

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

CellBatch::CellBatch(sf::Vector2f cell_size, int columns, int rows, sf::Vector2f background_offset)
    : cell_size(cell_size),
      tile_offset(background_offset),
      // Tiles shifted off the window's edges need one more column or row to
      // cover it.
      columns(std::max(columns, 1) + 1),
      rows(std::max(rows, 1) + 1),
      column_shift(background_offset.x > 0 ? 1 : 0),
      row_shift(background_offset.y > 0 ? 1 : 0),
      window({0.0f, 0.0f, cell_size.x * static_cast<float>(std::max(columns, 1)),
              cell_size.y * static_cast<float>(std::max(rows, 1))}),
      glyphs_in_tile(static_cast<std::size_t>(this->columns * this->rows)),
      tile_hashes(glyphs_in_tile.size()),
      changed_tiles(glyphs_in_tile.size()) {
  quads.reserve(glyphs_in_tile.size() * QUADS_PER_CELL);
}

// Summed as a cell's background is, so that the edges are the very same
// floats.
Edges CellBatch::tileEdges(int column, int row) const {
  const auto x = [&](int edge) {
    return cell_size.x * static_cast<float>(edge - column_shift) + tile_offset.x;
  };
  const auto y = [&](int edge) {
    return cell_size.y * static_cast<float>(edge - row_shift) + tile_offset.y;
  };
  return {x(column), y(row), x(column + 1), y(row + 1)};
}

// Calls visit with the index and edges of every tile that shares pixels
// with the rectangle.
template <typename Visit>
void CellBatch::forEachTile(const Edges& rect, Visit visit) const {
  const int first_column = tileIndex(rect.left, cell_size.x, tile_offset.x, column_shift, columns);
  const int last_column = tileIndex(rect.right, cell_size.x, tile_offset.x, column_shift, columns);
  const int first_row = tileIndex(rect.top, cell_size.y, tile_offset.y, row_shift, rows);
  const int last_row = tileIndex(rect.bottom, cell_size.y, tile_offset.y, row_shift, rows);
  for (int row = first_row; row <= last_row; row++) {
    for (int column = first_column; column <= last_column; column++) {
      const Edges tile = tileEdges(column, row);
      if (tile.intersection(rect).isEmpty()) continue;
      visit(static_cast<std::size_t>(row * columns + column), tile);
    }
  }
}

void CellBatch::startFrame(sf::Color new_clear_color) {
  forget();
  clear_color = new_clear_color;
  cleared = false;
  plain_background = true;
  whole_frame = !kept_pixels;
}

void CellBatch::addBackground(const Edges& cell, sf::Color color) {
  if (isOffScreen(cell)) return;
  if (kept_pixels) hashIntoTiles(cell, paintHash(cell, WHITE_TEXEL, color));
  // A background of another colour covers glyphs the overlaps do not know
  // of: from there on backgrounds are drawn whole.
  if (color != clear_color) plain_background = false;
  if (plain_background) {
    paintOverGlyphs(cell);
  } else {
    quads.push_back({cell, WHITE_TEXEL, color, NO_GLYPH});
  }
}

void CellBatch::addGlyph(const Edges& quad, const Edges& tex, sf::Color color) {
  if (isOffScreen(quad)) return;
  const std::size_t index = glyph_count++;
  if (index == glyphs.size()) glyphs.emplace_back();
  Glyph& glyph = glyphs[index];
  glyph.pieces.assign(1, quad);
  glyph.stamp = 0;
  quads.push_back({quad, tex, color, index});
  const std::uint64_t hash = kept_pixels ? paintHash(quad, tex, color) : 0;
  forEachTile(quad, [&](std::size_t tile, const Edges& edges) {
    glyphs_in_tile[tile].push_back(index);
    // A glyph's padding often reaches into a neighbouring tile without
    // covering a pixel there: that tile's pixels do not depend on it.
    if (kept_pixels && holdsPixelCentre(edges.intersection(quad))) {
      tile_hashes[tile] = mixed(tile_hashes[tile], hash);
    }
  });
}

void CellBatch::drawBeforeOther(sf::RenderTarget& target, const sf::Texture& texture) {
  drawWhole(target, texture);
  forget();
  // What the other drawing puts into the window is not known here.
  plain_background = false;
  whole_frame = true;
}

void CellBatch::finishFrame(sf::RenderTarget& target, const sf::Texture& texture) {
  const bool compare = !whole_frame && last_tiles_known && clear_color == last_clear_color;
  // Where most tiles changed, cutting quads to them costs more than drawing
  // the whole frame.
  if (compare && markChangedTiles() * 2 <= changed_tiles.size()) {
    drawChangedTiles(target, texture);
  } else {
    drawWhole(target, texture);
  }
  last_tiles_known = !whole_frame;
  last_clear_color = clear_color;
  last_tile_hashes.swap(tile_hashes);
}

void CellBatch::clearIfNeeded(sf::RenderTarget& target) {
  if (cleared) return;
  target.clear(clear_color);
  cleared = true;
}

void CellBatch::drawWhole(sf::RenderTarget& target, const sf::Texture& texture) {
  clearIfNeeded(target);
  vertices.clear();
  forEachDrawnPart(
      [&](const Edges& rect, const Edges& tex, sf::Color color) { addVertices(rect, tex, color); });
  drawVertices(target, texture);
}

// Each tile's hash sums up what was painted into it, in order: a tile
// whose hash is the last frame's shows the same pixels.
void CellBatch::hashIntoTiles(const Edges& rect, std::uint64_t hash) {
  forEachTile(rect, [&](std::size_t tile, const Edges&) {
    tile_hashes[tile] = mixed(tile_hashes[tile], hash);
  });
}

std::size_t CellBatch::markChangedTiles() {
  std::size_t count = 0;
  for (std::size_t tile = 0; tile < tile_hashes.size(); tile++) {
    changed_tiles[tile] = tile_hashes[tile] != last_tile_hashes[tile];
    count += changed_tiles[tile];
  }
  return count;
}

void CellBatch::drawChangedTiles(sf::RenderTarget& target, const sf::Texture& texture) {
  vertices.clear();
  // Each run of changed tiles in a row is cleared at once.
  for (int row = 0; row < rows; row++) {
    for (int column = 0; column < columns; column++) {
      if (!isChanged(column, row)) continue;
      Edges run = tileEdges(column, row);
      while (column + 1 < columns && isChanged(column + 1, row)) {
        run.right = tileEdges(++column, row).right;
      }
      addVertices(run, WHITE_TEXEL, clear_color);
    }
  }
  forEachDrawnPart([&](const Edges& rect, const Edges& tex, sf::Color color) {
    addChangedParts(rect, tex, color);
  });
  drawVertices(target, texture);
}

bool CellBatch::isChanged(int column, int row) const {
  return changed_tiles[static_cast<std::size_t>(row * columns + column)] != 0;
}

void CellBatch::addChangedParts(const Edges& rect, const Edges& tex, sf::Color color) {
  runs.clear();
  bool all_changed = true;
  forEachTile(rect, [&](std::size_t tile, const Edges& edges) {
    if (!changed_tiles[tile]) {
      all_changed = false;
      return;
    }
    const bool extends_run =
        !runs.empty() && runs.back().right == edges.left && runs.back().top == edges.top;
    if (extends_run) {
      runs.back().right = edges.right;
    } else {
      runs.push_back(edges);
    }
  });
  if (all_changed) {
    addVertices(rect, tex, color);
    return;
  }
  for (const Edges& run : runs) {
    const Edges cut = rect.intersection(run);
    addVertices(cut, cutTexture(rect, tex, cut), color);
  }
}

void CellBatch::drawVertices(sf::RenderTarget& target, const sf::Texture& texture) {
  const sf::RenderStates states(&texture);
  for (std::size_t first = 0; first < vertices.size(); first += VERTICES_PER_DRAW) {
    const std::size_t count = std::min(VERTICES_PER_DRAW, vertices.size() - first);
    target.draw(vertices.data() + first, count, sf::Triangles, states);
  }
}

void CellBatch::forget() {
  quads.clear();
  tile_hashes.assign(glyphs_in_tile.size(), 0);
  glyph_count = 0;
  stamp = 0;
  for (std::vector<std::size_t>& tile : glyphs_in_tile) tile.clear();
}

// A background in the clear colour paints over the parts of earlier glyphs
// in its cell, each glyph once: those parts are not drawn at all, which
// leaves the clear colour there as painting would. Glyphs painted over
// whole leave the tile, so that a cell drawn over many times (a heads-up
// display drawn over itself) is not walked over all its past glyphs.
void CellBatch::paintOverGlyphs(const Edges& cell) {
  stamp++;
  forEachTile(cell, [&](std::size_t tile, const Edges&) {
    std::vector<std::size_t>& indices = glyphs_in_tile[tile];
    for (std::size_t index : indices) {
      Glyph& glyph = glyphs[index];
      if (glyph.stamp == stamp) continue;
      glyph.stamp = stamp;
      unpainted.clear();
      for (const Edges& piece : glyph.pieces) piece.subtract(cell, unpainted);
      glyph.pieces.swap(unpainted);
    }
    indices.erase(std::remove_if(indices.begin(), indices.end(),
                                 [&](std::size_t index) { return glyphs[index].pieces.empty(); }),
                  indices.end());
  });
}

// Calls draw with every rectangle the frame draws, in order: backgrounds
// drawn whole, and the parts of each glyph nothing painted over. Parts that
// hold no pixel's centre would draw nothing and are left out.
template <typename Draw>
void CellBatch::forEachDrawnPart(Draw draw) const {
  for (const Quad& quad : quads) {
    if (quad.glyph == NO_GLYPH) {
      draw(quad.rect, quad.tex, quad.color);
      continue;
    }
    for (const Edges& piece : glyphs[quad.glyph].pieces) {
      if (isWhole(piece, quad.rect)) {
        draw(quad.rect, quad.tex, quad.color);
      } else if (holdsPixelCentre(piece)) {
        draw(piece, cutTexture(quad.rect, quad.tex, piece), quad.color);
      }
    }
  }
}

// Two triangles, in the order sf::Text builds a glyph. The vertices are
// copied from one whose fields are set here: sf::Vertex's constructors are
// calls into SFML's library, costly at tens of thousands of quads a frame.
void CellBatch::addVertices(const Edges& rect, const Edges& tex, sf::Color color) {
  sf::Vertex corner;
  corner.color = color;
  const auto add = [&](float x, float y, float tex_x, float tex_y) {
    corner.position.x = x;
    corner.position.y = y;
    corner.texCoords.x = tex_x;
    corner.texCoords.y = tex_y;
    vertices.push_back(corner);
  };
  add(rect.left, rect.top, tex.left, tex.top);
  add(rect.right, rect.top, tex.right, tex.top);
  add(rect.left, rect.bottom, tex.left, tex.bottom);
  add(rect.left, rect.bottom, tex.left, tex.bottom);
  add(rect.right, rect.top, tex.right, tex.top);
  add(rect.right, rect.bottom, tex.right, tex.bottom);
}

}  // namespace vt
