#pragma once

#include <SFML/Graphics/RenderTarget.hpp>
#include <SFML/Graphics/Texture.hpp>
#include <SFML/Graphics/Vertex.hpp>
#include <algorithm>
#include <cstddef>
#include <vector>

namespace vt {

// A rectangle by its edges: an intersection keeps the very floats that the
// rectangles are drawn with, so it covers exactly the pixels both cover.
struct Edges {
  float left;
  float top;
  float right;
  float bottom;

  bool isEmpty() const { return left >= right || top >= bottom; }
  Edges intersection(const Edges& other) const {
    return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
            std::min(bottom, other.bottom)};
  }
  // Appends what is left of this rectangle outside cover: itself, nothing,
  // or up to four pieces around the part covered.
  void subtract(const Edges& cover, std::vector<Edges>& rest) const;
};

// The characters drawn since the last flush, as one list of triangles over
// the font's page texture in call order: each cell's background, then its
// glyph. While the window shows only the background colour apart from this
// batch's glyphs (right after a clear), a background changes pixels only
// where earlier glyphs reach into its cell, so only those overlaps are drawn:
// the picture is the same with far fewer pixels filled. Glyphs are found
// through a grid of cell-sized buckets. Quads that reach no pixel of the
// window are left out.
class CellBatch {
 public:
  CellBatch(sf::Vector2f cell_size, int columns, int rows);

  // Set after the window was cleared to the colour the backgrounds to come
  // are drawn in; anything else drawn into the window ends it.
  void setPlainBackground(bool plain) { plain_background = plain; }

  void addBackground(const Edges& cell, sf::Color color);
  void addGlyph(const Edges& quad, const Edges& tex, sf::Color color);
  // Draws and forgets the batch. Its glyphs stay in the window unrecorded,
  // so the background is no longer plain.
  void draw(sf::RenderTarget& target, const sf::Texture& texture);

 private:
  // Nothing of it would reach a pixel of the window.
  bool isOffScreen(const Edges& rect) const { return window.intersection(rect).isEmpty(); }
  void addOverlaps(const Edges& cell, sf::Color color);
  void dropQuads(std::vector<std::size_t>& starts);
  void addQuad(const Edges& quad, const Edges& tex, sf::Color color);
  template <typename Visit>
  void forEachBucket(const Edges& rect, Visit visit);

  sf::Vector2f cell_size;
  int columns;
  int rows;
  Edges window;
  std::vector<sf::Vertex> vertices;
  // The parts of each glyph not yet painted over.
  std::vector<std::vector<Edges>> glyph_pieces;
  std::vector<Edges> unpainted;
  // The last background query that met each glyph, so that it meets it once.
  std::vector<unsigned int> glyph_stamps;
  // Where each glyph's quad and the quads painted over it start.
  std::vector<std::vector<std::size_t>> glyph_quads;
  unsigned int stamp = 0;
  std::vector<std::vector<std::size_t>> buckets;
  bool plain_background = false;
};

}  // namespace vt
