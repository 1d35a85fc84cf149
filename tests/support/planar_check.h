// Plane geometry written plainly for the tests, to check the report's
// results by other means than the report's own.
#pragma once

#include <vector>

namespace tesseramill_test {

// The area of the part of polygon `subject` inside the convex polygon
// `clip` (both x,y pairs, any orientation), by Sutherland-Hodgman clipping.
double clipped_area(std::vector<double> subject, std::vector<double> clip);

// Whether (x, y) lies inside the polygon of x,y pairs, by the even-odd rule
// (a repeated closing corner does no harm).
bool inside_polygon(const std::vector<double>& xy, double x, double y);

// The length of a polyline of x,y pairs.
double polyline_length(const std::vector<double>& xy);

// The length of the polyline's parts that lie inside `outer` and outside
// every one of `holes`.
double length_inside(const std::vector<double>& line, const std::vector<double>& outer,
                     const std::vector<std::vector<double>>& holes);

// The point at distance `s` along the polyline.
void point_along(const std::vector<double>& line, double s, double& x, double& y);

}  // namespace tesseramill_test
