// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>

class MimeNode;

/** Fills a node that stands for content in the store. Content that cannot be read leaves it empty. */
void loadContent(MimeNode &node);

/** A piece of a body that the store keeps apart; empty if it has none of that number. */
QByteArray storedPiece(quint64 body, int piece);
