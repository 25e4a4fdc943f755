// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>

/** Pictures as servers send them, and what only claims to be one. */
namespace TestPictures {

/** A small PNG of one colour, as bytes. */
QByteArray png(int red = 200, int width = 8, int height = 8);
/** A photograph's worth of noise: as JPEG it does not get small. */
QByteArray noise(int side);
/**
 * A photograph as cameras write it: red on the left, blue on the right, and the word that it has to be turned
 * by a quarter clockwise. Too large to go up as it is.
 */
QByteArray lyingPhoto(int width, int height);
/** A well-formed PNG header of this size, with next to nothing behind it. */
QByteArray hollowPng(quint32 width, quint32 height);

} // namespace TestPictures
