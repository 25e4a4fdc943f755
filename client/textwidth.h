// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/** Texts by the columns of a terminal, of which some characters take none and some take two. */
namespace TextWidth {

int of(const QString &text);
/** The text in at most so many columns; what is cut off is told by an ellipsis. */
QString cut(const QString &text, int width);
/** The text with blanks up to a width; longer ones stay as they are. */
QString padded(const QString &text, int width);

} // namespace TextWidth
