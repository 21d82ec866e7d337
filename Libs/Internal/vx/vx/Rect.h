#pragma once

#include <libvxLog/Log.h>

#include "vx/Api.h"

/// A position in pixels.
struct vxPoint {
    vxPoint() : x(0), y(0) {}
    /// Any coordinates are allowed.
    vxPoint(int anX, int aY) : x(anX), y(aY) {}

    int x;  ///< grows to the right
    int y;  ///< grows downward
};

/// A rectangle in pixels; its right and bottom edges are the first pixels outside.
///
/// Any coordinates are allowed; a rectangle whose edges are swapped has negative sizes.
///
/// Threads:  one at a time.
class VX_EXPORT vxRect {
public:
    /// The empty rectangle at the origin.
    vxRect() = default;
    /// Takes the edges as they are.
    vxRect(int aLeft, int aTop, int aRight, int aBottom) : ul(aLeft, aTop), lr(aRight, aBottom) {}

    int Left() const { return ul.x; }    ///< Returns the first column inside.
    int Right() const { return lr.x; }   ///< Returns the first column outside.
    int Top() const { return ul.y; }     ///< Returns the first row inside.
    int Bottom() const { return lr.y; }  ///< Returns the first row outside.

    /// Returns right minus left, limited to the range of int.
    int Width() const;
    /// Returns bottom minus top, limited to the range of int.
    int Height() const;

    /// Returns whether both corners are the same point.
    ///
    /// A rectangle without width that has a height is not empty by this test. Programs depend on
    /// it; to ask whether there is a pixel inside, test Width() and Height().
    bool IsEmpty() const { return ul.x == lr.x && ul.y == lr.y; }

    /// Moves both corners to the origin.
    void Empty();

    /// Reduces the rectangle to what it has in common with `anOther` and returns whether there is
    /// such an area; without one the rectangle is emptied.
    bool Intersect(const vxRect& anOther);

    /// Grows the rectangle to hold `anOther` too; an empty rectangle becomes a copy of it.
    ///
    /// An empty `anOther` counts with its corner as any other rectangle.
    void Union(const vxRect& anOther);

    /// Cuts off a band at an edge: `anOther` must reach across the whole width or the whole height
    /// and leaves the rectangle unchanged otherwise.
    ///
    /// The far edge is moved first: it becomes the near edge of the band, when that lies within the
    /// rectangle or on its edges. Then, measured against the edges as they are now, the near edge
    /// becomes the far edge of the band. So a band that starts exactly on the near edge leaves a
    /// rectangle without size, and one that reaches beyond both edges changes nothing. Programs
    /// depend on this order.
    void Subtract(const vxRect& anOther);

    /// Logs the edges as "(left, top)-(right, bottom)".
    void Log(int aLevel, vxLogModule aModule) const;

    vxPoint ul;  ///< upper left corner, inside
    vxPoint lr;  ///< lower right corner, outside
};
