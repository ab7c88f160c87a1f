#pragma once

namespace quillo::host::emf {

// Work is counted in points that the page has to hold. Every call takes the outline of its clip and
// the pixels of its pattern to the page, so that a small file can ask for a page of gigabytes.

inline constexpr double kBytesPerPoint = 8;

/// The most that one file may ask for: a page of a quarter of a gigabyte.
inline constexpr double kMaxPoints = 30e6;

/// The most rows of pixels that the edges of one filled path may cross (see path_work.h): enough
/// for a hatching of the whole sheet.
inline constexpr double kMaxCrossings = 3e6;
/// The same for a stroked path, whose inside the platform computes at a cost that grows faster than
/// the path.
inline constexpr double kMaxStrokedCrossings = 1e5;
inline constexpr double kPointsPerCrossing = 0.15;

/// Counts what one file asks for.
class WorkBudget {
 public:
  /// Adds to the count. False once the file has asked for more than any real one does.
  bool Spend(double points) {
    spent_ += points;
    return !Exhausted();
  }
  bool Exhausted() const { return spent_ > kMaxPoints; }

 private:
  double spent_ = 0;
};

}  // namespace quillo::host::emf
