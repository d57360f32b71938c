// Taxis names one coordinate axis. The enumerators are the axis' index into a point's or
// vector's components, so that code can index with them directly (v[XAxis] is v.x).
#ifndef OBRIX_GEOMETRY_TAXIS_H
#define OBRIX_GEOMETRY_TAXIS_H

/// A coordinate axis: 0 for x, 1 for y, 2 for z.
enum Taxis : int { XAxis = 0, YAxis = 1, ZAxis = 2 };

#endif
