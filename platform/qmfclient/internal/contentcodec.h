// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>

class MimeNode;

/** The form that content has in the store: received messages byte for byte, all others as their tree of
 * parts. */
struct StoredContent
{
    enum Format { Tree = 1, Received = 2 };
    int format = Tree;
    QByteArray data;
};

StoredContent encodeContent(const MimeNode &node);
/** Leaves the node empty if the data is not of the format. */
void decodeContent(const StoredContent &content, MimeNode &node);
