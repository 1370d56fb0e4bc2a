#pragma once

#include <SFML/Graphics/RenderTarget.hpp>
#include <SFML/Graphics/Texture.hpp>
#include <SFML/Graphics/Vertex.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
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

// The characters of one frame, as one list of triangles over the font's
// page texture in call order: each cell's background, then its glyph.
// The window is cut into tiles the size of a cell, laid over the cells'
// backgrounds.
//
// On a cleared window a background in the clear colour changes pixels only
// where earlier glyphs reach into its cell: instead of drawing it, those
// parts of the glyphs are left out. The picture is the same with far fewer
// pixels filled. Glyphs are found through the tiles they reach into.
//
// Where the window keeps its pixels from one frame to the next, the end of
// a frame redraws only the tiles whose drawing changed: each such tile is
// cleared and the frame's triangles are drawn cut to it. Drawing of any
// other kind in a frame makes that frame and the next one whole again.
class CellBatch {
 public:
  // Each cell's background is drawn at the offset from its cell: the
  // tiles are laid out on the backgrounds.
  CellBatch(sf::Vector2f cell_size, int columns, int rows, sf::Vector2f background_offset);

  // The window still holds the last frame when a frame starts.
  void setKeptPixels(bool kept) { kept_pixels = kept; }
  // After a frame was shown: the next one starts from the given colour.
  void startFrame(sf::Color clear_color);

  void addBackground(const Edges& cell, sf::Color color);
  void addGlyph(const Edges& quad, const Edges& tex, sf::Color color);
  // Drawing of another kind goes into the window next: the window is
  // cleared if it was not yet, and what the batch holds is drawn whole.
  void drawBeforeOther(sf::RenderTarget& target, const sf::Texture& texture);
  // Draws what the frame still needs before it is shown.
  void finishFrame(sf::RenderTarget& target, const sf::Texture& texture);

 private:
  // A rectangle of texture stretched over a rectangle of the window, in a
  // colour: a quarter of the memory of its six vertices.
  // A glyph's quad is drawn as the parts of it no background painted over.
  struct Quad {
    Edges rect;
    Edges tex;
    sf::Color color;
    std::size_t glyph;
  };
  static constexpr std::size_t NO_GLYPH = static_cast<std::size_t>(-1);
  struct Glyph {
    std::vector<Edges> pieces;
    unsigned int stamp = 0;
  };

  // Nothing of it would reach a pixel of the window.
  bool isOffScreen(const Edges& rect) const { return window.intersection(rect).isEmpty(); }
  Edges tileEdges(int column, int row) const;
  template <typename Visit>
  void forEachTile(const Edges& rect, Visit visit) const;
  void paintOverGlyphs(const Edges& cell);
  template <typename Draw>
  void forEachDrawnPart(Draw draw) const;
  void clearIfNeeded(sf::RenderTarget& target);
  void drawWhole(sf::RenderTarget& target, const sf::Texture& texture);
  void hashIntoTiles(const Edges& rect, std::uint64_t hash);
  std::size_t markChangedTiles();
  void drawChangedTiles(sf::RenderTarget& target, const sf::Texture& texture);
  bool isChanged(int column, int row) const;
  void addChangedParts(const Edges& rect, const Edges& tex, sf::Color color);
  void addVertices(const Edges& rect, const Edges& tex, sf::Color color);
  void drawVertices(sf::RenderTarget& target, const sf::Texture& texture);
  void forget();

  sf::Vector2f cell_size;
  sf::Vector2f tile_offset;
  // Of tiles.
  int columns;
  int rows;
  // Tiles shifted right or down start a column or row before the window.
  int column_shift;
  int row_shift;
  Edges window;
  std::vector<Quad> quads;
  std::vector<Glyph> glyphs;
  std::size_t glyph_count = 0;
  std::vector<Edges> unpainted;
  unsigned int stamp = 0;
  std::vector<std::vector<std::size_t>> glyphs_in_tile;
  sf::Color clear_color = sf::Color::Black;
  bool cleared = false;
  // Backgrounds in the clear colour need drawing only over earlier glyphs.
  bool plain_background = false;

  bool kept_pixels = false;
  // Drawing of another kind made this frame whole.
  bool whole_frame = true;
  // The last frame's tiles can be compared with this one's.
  bool last_tiles_known = false;
  sf::Color last_clear_color = sf::Color::Black;
  std::vector<std::uint64_t> tile_hashes;
  std::vector<std::uint64_t> last_tile_hashes;
  std::vector<char> changed_tiles;
  // What is drawn, as SFML takes it.
  std::vector<sf::Vertex> vertices;
  std::vector<Edges> runs;
};

}  // namespace vt
