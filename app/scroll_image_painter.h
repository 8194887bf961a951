#pragma once
// Draws the visible part of a scan at an integer zoom: pixels are repeated to
// zoom in and dropped to zoom out, never blended, so the operator sees the
// scanner's pixels as they are.
#include <QImage>
#include <QPoint>
#include <QSize>

// Maps a displayed coordinate to the image's at a zoom factor: 0 is 1:1, f > 0
// shows f + 1 pixels for each image pixel, f < 0 one for each 1 - f.
int image_coordinate_of_scale(int displayed, int scale);

// The viewport's picture, 32 bits: viewport pixel (x, y) shows displayed pixel
// (x, y) + origin. What lies outside the displayed size or the image is white.
// `image` must be of a 32-bit format.
QImage compose_scroll_view(const QImage &image, int scale, QPoint origin, QSize viewport, QSize displayed);
