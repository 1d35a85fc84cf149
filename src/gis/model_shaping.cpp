#include "gis/model_shaping.h"

#include <ostream>
#include <set>

#include "common/failure.h"
#include "gis/model_build.h"
#include "gis/model_relations.h"
#include "gis/outline_cleaning.h"
#include "gis/outline_thinning.h"

namespace tesseramill {

namespace {

// Each round of thinning divides the tolerance of the pieces whose
// relations broke by this; after kThinRounds rounds such a piece keeps
// every vertex, which is the model that passed the checks.
constexpr double kLessThinning = 4.0;
constexpr int kThinRounds = 6;

bool is_ring_piece(const ImportModel& model, std::size_t index) {
  return index <= model.holes.size() || index > model.holes.size() + model.lines.size();
}

}  // namespace

std::vector<ModelPiece*> shaped_pieces(ImportModel& model) {
  std::vector<ModelPiece*> pieces{&model.boundary};
  for (ModelPiece& p : model.holes) pieces.push_back(&p);
  for (ModelPiece& p : model.lines) pieces.push_back(&p);
  for (ModelPiece& p : model.zones) pieces.push_back(&p);
  return pieces;
}

void clean_model(RunState& state, ImportModel& model, const ImportOptions& o, std::ostream& screen) {
  if (o.clean && *o.clean == 0.0) return;
  const InsideFlags inside = inside_flags(model);
  std::vector<ModelPiece*> pieces = shaped_pieces(model);
  std::vector<std::vector<double>> originals;
  for (ModelPiece* p : pieces) originals.push_back(p->xy);
  std::vector<char> gone(pieces.size(), 0);
  for (std::size_t k = 0; k < pieces.size(); ++k) {
    if (!is_ring_piece(model, k)) continue;
    ModelPiece& piece = *pieces[k];
    const double radius = o.clean ? *o.clean : 0.5 * piece.spacing;
    CleanedRing cleaned = clean_ring(piece.xy, radius);
    if (cleaned.ring.empty()) {
      if (k == 0) {
        fail(state, "Nothing is left of the boundary (" + piece_name(piece) + ") when it is cleaned at " +
                        screen_number(radius) + ": it is narrower than twice that everywhere. Give a smaller --clean.");
      }
      screen << " - " << piece_name(piece) << " left out: cleaned at " << screen_number(radius)
             << " nothing is left of its area of " << screen_number(cleaned.removed) << ".\n";
      gone[k] = 1;
      continue;
    }
    screen << " - " << piece_name(piece) << " cleaned at " << screen_number(radius) << ": "
           << screen_number(cleaned.added) << " added, " << screen_number(cleaned.removed) << " removed.\n";
    for (double area : cleaned.left_out) {
      screen << " - a part of " << piece_name(piece) << " that cleaning cut off left out: its area is "
             << screen_number(area) << ".\n";
    }
    piece.xy = std::move(cleaned.ring);
  }
  // Rings that vanished go before the relations are judged.
  ImportModel judged;
  judged.boundary = model.boundary;
  judged.points = model.points;
  InsideFlags judged_inside;
  for (std::size_t h = 0; h < model.holes.size(); ++h) {
    if (gone[1 + h] == 0) judged.holes.push_back(model.holes[h]);
  }
  judged.lines = model.lines;
  judged_inside.lines = inside.lines;
  for (std::size_t z = 0; z < model.zones.size(); ++z) {
    if (gone[1 + model.holes.size() + model.lines.size() + z] == 0) {
      judged.zones.push_back(model.zones[z]);
      judged_inside.zones.push_back(inside.zones[z]);
    }
  }
  model = std::move(judged);
  // Where cleaning broke a relation, the rings involved go back to their
  // first form; the model before cleaning passed every check.
  pieces = shaped_pieces(model);
  std::vector<std::vector<double>> kept_originals;
  for (std::size_t k = 0; k < originals.size(); ++k) {
    if (gone[k] == 0) kept_originals.push_back(originals[k]);
  }
  for (std::size_t round = 0; round < pieces.size() + 1; ++round) {
    const std::vector<Breach> breaches = model_breaches(model, &judged_inside);
    if (breaches.empty()) return;
    for (const Breach& b : breaches) {
      for (std::size_t k : b.pieces) {
        if (pieces[k]->xy == kept_originals[k]) continue;
        screen << " - cleaning of " << piece_name(*pieces[k]) << " undone: " << b.message << "\n";
        pieces[k]->xy = kept_originals[k];
      }
    }
  }
}

void thin_model(ImportModel& model, const ImportOptions& o, std::ostream& screen) {
  if (o.keep_vertices) return;
  const InsideFlags inside = inside_flags(model);
  std::vector<ModelPiece*> pieces = shaped_pieces(model);
  std::vector<std::vector<double>> originals;
  std::vector<double> tolerance;
  for (ModelPiece* p : pieces) {
    originals.push_back(p->xy);
    tolerance.push_back(o.simplify ? *o.simplify : 0.1 * p->spacing);
  }
  std::set<std::size_t> lessened;
  for (int round = 0;; ++round) {
    for (std::size_t k = 0; k < pieces.size(); ++k) {
      pieces[k]->xy = is_ring_piece(model, k) ? thin_ring(originals[k], tolerance[k])
                                              : thin_line(originals[k], tolerance[k]);
    }
    std::vector<Breach> breaches = model_breaches(model, &inside);
    for (Breach& b : gap_breaches(model)) breaches.push_back(std::move(b));
    // Every piece of a breach keeps all its vertices after the last round,
    // so the round after it can break no relation the checks passed.
    if (breaches.empty() || round > kThinRounds) break;
    for (const Breach& b : breaches) {
      for (std::size_t k : b.pieces) {
        tolerance[k] = round + 1 >= kThinRounds ? 0.0 : tolerance[k] / kLessThinning;
        lessened.insert(k);
      }
    }
  }
  for (std::size_t k : lessened) {
    screen << " - " << piece_name(*pieces[k]) << " thinned less, to keep it "
           << (is_ring_piece(model, k) ? "a simple ring apart from the others" : "inside the boundary") << ".\n";
  }
}

void check_gaps(RunState& state, const ImportModel& model) {
  const std::vector<Breach> breaches = gap_breaches(model);
  if (!breaches.empty()) fail(state, breaches.front().message);
}

}  // namespace tesseramill
