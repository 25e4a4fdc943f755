// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>

class MimeNode;

/**
 * Fills a node from a message as it was received. Anything is a message: what has no structure becomes one
 * text. Depth and number of parts are bounded; what lies beyond stays together as one body.
 */
void parseMime(const QByteArray &received, MimeNode &node);
